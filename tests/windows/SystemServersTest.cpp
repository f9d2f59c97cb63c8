// Queries over automation servers that come with Windows, as a host asks them: dictionaries, files, documents, regular
// expressions.

#include "support/Host.h"
#include "windows/Automation.h"
#include "windows/Servers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <initializer_list>
#include <objbase.h>
#include <string>
#include <vector>

#include <windows.h>

namespace OrvUQL::Tests {
namespace {

class SystemServersTest : public AutomationTest {
protected:
    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        AutomationTest::TearDown();
    }

    /// A new object of the class.
    static ComRef<IDispatch> Create(const wchar_t* className) {
        CLSID id;
        EXPECT_EQ(CLSIDFromProgID(className, &id), S_OK);
        ComRef<IDispatch> object;
        EXPECT_EQ(CoCreateInstance(id, nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, object.ReceiveAny()), S_OK);
        return object;
    }

    /// What a query cannot do: calls a method (or, with those flags, sets a property). The arguments as written.
    static Variant Invoke(IDispatch& object, const wchar_t* name, std::initializer_list<const Variant*> arguments,
                          WORD flags = DISPATCH_METHOD) {
        LPOLESTR names = const_cast<LPOLESTR>(name);
        DISPID id = DISPID_UNKNOWN;
        EXPECT_EQ(object.GetIDsOfNames(IID_NULL, &names, 1, LOCALE_SYSTEM_DEFAULT, &id), S_OK);
        std::vector<VARIANT> row;
        for (const Variant* argument : arguments) {
            row.insert(row.begin(), **argument);
        }
        Variant result;
        const Ref<ObjectCom> value = Make<ObjectCom>(&object);
        EXPECT_EQ(value->InvokeIDispatch(id, row.data(), static_cast<int>(row.size()), flags,
                                         flags == DISPATCH_METHOD ? result.Get() : nullptr),
                  S_OK);
        return result;
    }

    /// Makes the object the property source.
    void Ask(IDispatch* object) { host.engine.SetPropertySource(Make<ObjectCom>(object).Get()); }

    std::string Run(const wchar_t* query) { return host.Run(query); }

    Host host;
};

// ---- Scripting.Dictionary ----

class DictionaryTest : public SystemServersTest {
protected:
    void SetUp() override {
        SystemServersTest::SetUp();
        dictionary = Create(L"Scripting.Dictionary");
        Ask(dictionary.Get());
    }
    void TearDown() override {
        host.engine.SetPropertySource(nullptr);
        EXPECT_EQ(dictionary->AddRef(), 2u) << "the values gave back what they held";
        dictionary->Release();
        dictionary = ComRef<IDispatch>();
        SystemServersTest::TearDown();
    }

    void Add(const wchar_t* key, const Variant& item) {
        const Variant name = Text(key);
        Invoke(*dictionary, L"Add", {&name, &item});
    }

    ComRef<IDispatch> dictionary;
};

TEST_F(DictionaryTest, PropertiesAndItems) {
    Add(L"one", Integer(VT_I4, 1));
    Add(L"two", Text(L"zwei"));
    EXPECT_EQ(Run(L"@TypeName()"), "string COM:IDictionary");
    EXPECT_EQ(Run(L"@Count"), "int 2");
    EXPECT_EQ(Run(L"@Count + 1"), "int 3");
    EXPECT_EQ(Run(L"@Item('one') * 10"), "int 10");
    EXPECT_EQ(Run(L"@item('two').ToUpper()"), "string ZWEI");
    EXPECT_EQ(Run(L"@CompareMode"), "int 0");
}

TEST_F(DictionaryTest, ItsMethodsCannotBeCalled) {
    EXPECT_EQ(Run(L"@Keys"), "! 'Keys' is not a property of object 'COM:IDictionary'");
    EXPECT_EQ(Run(L"@Exists('a')"), "! 'Exists' is not a property of object 'COM:IDictionary'");
    EXPECT_EQ(Run(L"@RemoveAll()"), "! 'RemoveAll' is not a property of object 'COM:IDictionary'");
}

TEST_F(DictionaryTest, ToArrayListsTheKeys) {
    EXPECT_EQ(Run(L"@ToArray()"), "array ()");
    Add(L"c", Empty());
    Add(L"a", Empty());
    Add(L"b", Empty());
    EXPECT_EQ(Run(L"@ToArray()"), "array (c,a,b)");
    EXPECT_EQ(Run(L"@ToArray().Filter($item <> 'a').Join('-')"), "string c-b");
}

TEST_F(DictionaryTest, ItemsOfEveryKind) {
    Variant number = Integer(VT_I4, 1);
    Variant text = Text(L"x");
    Add(L"list", ArrayOf({&number, &text}));
    Add(L"date", Integer(VT_DATE, 0));
    Add(L"truth", Bool(VARIANT_TRUE));
    Add(L"nothing", OfType(VT_NULL));
    EXPECT_EQ(Run(L"@Item('list').Join('+')"), "string 1+x");
    EXPECT_EQ(Run(L"@Item('date')"), "! Unable to convert unsupported VARIANT data type: 7");
    EXPECT_EQ(Run(L"@Item('truth') ? 'yes' : 'no'"), "string yes");
    EXPECT_EQ(Run(L"@Item('nothing').IsNull()"), "bool true");
}

TEST_F(DictionaryTest, DictionariesInDictionaries) {
    const ComRef<IDispatch> inner = Create(L"Scripting.Dictionary");
    const Variant key = Text(L"price");
    const Variant price = Double(2.5);
    Invoke(*inner, L"Add", {&key, &price});
    Add(L"bolt", Object(inner.Get()));
    EXPECT_EQ(Run(L"@Item('bolt').Item('price') * 4"), "double 10");
    EXPECT_EQ(Run(L"@Item('bolt')[.Count + .Item('price')]"), "double 3.5");
    EXPECT_EQ(Run(L"@ToArray().Convert(@Item($item).Item('price'))"), "array (2.5)");
}

TEST_F(DictionaryTest, AnObjectOfOursGoesInAndComesBack) {
    Server* const server = new Server();
    Add(L"ours", Object(server));
    {
        const Ref<IObject> value = host.Evaluate(L"@Item('ours')");
        ASSERT_TRUE(value);
        EXPECT_EQ(dynamic_cast<const ObjectCom&>(*value).GetDispatch(), server);
    }
    Invoke(*dictionary, L"RemoveAll", {});
    EXPECT_EQ(server->Release(), 0u);
}

TEST_F(DictionaryTest, AsTheCurrentVariable) {
    Add(L"a", Integer(VT_I4, 7));
    host.engine.SetVariable(Make<ObjectCom>(dictionary.Get()).Get());
    EXPECT_EQ(Run(L"$Item('a') + $Count"), "int 8");
    host.engine.SetVariable(nullptr);
}

// ---- Scripting.FileSystemObject ----

/// A folder with two files and a folder in it, and the object that stands for it.
class FolderTest : public SystemServersTest {
protected:
    void SetUp() override {
        SystemServersTest::SetUp();
        wchar_t base[MAX_PATH];
        ASSERT_NE(GetTempPathW(MAX_PATH, base), 0u);
        path = std::wstring(base) + L"orvuql-test-" + std::to_wstring(GetCurrentProcessId());
        Remove();
        ASSERT_TRUE(CreateDirectoryW(path.c_str(), nullptr));
        ASSERT_TRUE(CreateDirectoryW((path + L"\\drawings").c_str(), nullptr));
        Write(L"\\bolt.txt", "hello");
        Write(L"\\N\u00FCsse.dat", "hello you");
        files = Create(L"Scripting.FileSystemObject");
        Ask(files.Get());
    }
    void TearDown() override {
        SystemServersTest::TearDown();
        Remove();
    }

    void Write(const wchar_t* name, std::string_view text) const {
        std::FILE* const file = _wfopen((path + name).c_str(), L"wb");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(std::fwrite(text.data(), 1, text.size(), file), text.size());
        EXPECT_EQ(std::fclose(file), 0);
    }
    void Remove() const {
        DeleteFileW((path + L"\\bolt.txt").c_str());
        DeleteFileW((path + L"\\N\u00FCsse.dat").c_str());
        RemoveDirectoryW((path + L"\\drawings").c_str());
        RemoveDirectoryW(path.c_str());
    }
    /// Makes the folder the property source.
    void AskFolder() {
        const Variant name = Text(path);
        const Variant folder = Invoke(*files, L"GetFolder", {&name});
        ASSERT_EQ((*folder).vt, VT_DISPATCH);
        Ask((*folder).pdispVal);
    }

    std::wstring path;
    ComRef<IDispatch> files;
};

TEST_F(FolderTest, Drives) {
    EXPECT_EQ(Run(L"@TypeName()"), "string COM:IFileSystem3");
    EXPECT_EQ(Run(L"@Drives.TypeName()"), "string COM:IDriveCollection");
    EXPECT_EQ(Run(L"@Drives.ToArray().Count() = @Drives.Count"), "bool true");
    EXPECT_EQ(Run(L"@Drives.ToArray().Filter($item.DriveLetter = 'C').Count()"), "int 1");
    EXPECT_EQ(Run(L"@Drives.ToArray().Convert($item.TypeName()).Unique().Join(',')"), "string COM:IDrive");
    EXPECT_EQ(Run(L"@Drives.ToArray().Filter($item.DriveLetter = 'C').First().IsReady"), "bool true");
}

TEST_F(FolderTest, MethodsOfTheFileSystem) {
    EXPECT_EQ(Run(L"@GetFolder('C:\\')"), "! 'GetFolder' is not a property of object 'COM:IFileSystem3'");
}

TEST_F(FolderTest, FilesAndFolders) {
    AskFolder();
    EXPECT_EQ(Run(L"@TypeName()"), "string COM:IFolder");
    EXPECT_EQ(Run(L"@Path.Length()"), "int " + std::to_string(path.size()));
    EXPECT_EQ(Run(L"@Name"), "string " + Utf8(OrvStringT(path.substr(path.rfind(L'\\') + 1))));
    EXPECT_EQ(Run(L"@Files.Count"), "int 2");
    EXPECT_EQ(Run(L"@SubFolders.ToArray().Convert($item.Name)"), "array (drawings)");
    EXPECT_EQ(Run(L"@SubFolders.ToArray().First().Files.Count"), "int 0");
    EXPECT_EQ(Run(L"@Files.ToArray().Convert($item.Name).Find('N\u00FCsse.dat')"), "bool true");
    EXPECT_EQ(Run(L"@Files.ToArray().Convert($item.Size).ForEach(0, $lasteval + $item)"), "int 14");
    EXPECT_EQ(Run(L"@Files.ToArray().Filter($item.Name.EndsWith('.txt')).Convert($item.Name + ':' + $item.Size)"),
              "array (bolt.txt:5)");
}

TEST_F(FolderTest, DatesAreRefused) {
    AskFolder();
    EXPECT_EQ(Run(L"@Files.ToArray().First().DateLastModified"),
              "! Unable to convert unsupported VARIANT data type: 7");
}

TEST_F(FolderTest, AFileThatIsNotThere) {
    AskFolder();
    EXPECT_EQ(Run(L"@Files.Item('missing.txt').Size"),
              "! Failed to invoke the method 'Item' of object 'COM:IFileCollection'. "
              "COM method returned error code 80020009");
    EXPECT_EQ(Run(L"@Files.Missing"), "! 'Missing' is not a property of object 'COM:IFileCollection'");
}

// ---- Msxml2.DOMDocument ----

class DocumentTest : public SystemServersTest {
protected:
    void SetUp() override {
        SystemServersTest::SetUp();
        document = Create(L"Msxml2.DOMDocument");
        const Variant text = Text(L"<parts kind='small' year='2026'><part id='1'>bolt</part><part id='2'>nut</part>"
                                  L"<box><part id='3'>screw</part></box></parts>");
        const Variant loaded = Invoke(*document, L"loadXML", {&text});
        EXPECT_EQ(Describe(*loaded), "BOOL -1");
        Ask(document.Get());
    }

    ComRef<IDispatch> document;
};

TEST_F(DocumentTest, PropertiesOfProperties) {
    EXPECT_EQ(Run(L"@documentElement.nodeName"), "string parts");
    EXPECT_EQ(Run(L"@documentElement.TypeName()"), "string COM:IXMLDOMElement");
    EXPECT_EQ(Run(L"@documentElement.firstChild.nextSibling.text"), "string nut");
    EXPECT_EQ(Run(L"@documentElement.lastChild.nextSibling"), "null null");
    EXPECT_EQ(Run(L"@documentElement.lastChild.nextSibling.text.length"), "null null");
    EXPECT_EQ(Run(L"@documentElement.parentNode.nodeType"), "int 9");
    EXPECT_EQ(Run(L"@parseError.errorCode"), "int 0");
}

TEST_F(DocumentTest, ChildNodes) {
    EXPECT_EQ(Run(L"@documentElement.childNodes.length"), "int 3");
    EXPECT_EQ(Run(L"@documentElement.childNodes.item(1).text"), "string nut");
    EXPECT_EQ(Run(L"@documentElement.childNodes.ToArray().Convert($item.nodeName).Join(',')"), "string part,part,box");
    EXPECT_EQ(Run(L"@documentElement.childNodes.ToArray().Filter($item.nodeName = 'part').Convert($item.text)"),
              "array (bolt,nut)");
    EXPECT_EQ(Run(L"@documentElement.childNodes.ToArray().Last().childNodes.ToArray().First().text"), "string screw");
    EXPECT_EQ(Run(L"@documentElement[.nodeName + .childNodes.length]"), "string parts3");
}

TEST_F(DocumentTest, Attributes) {
    EXPECT_EQ(Run(L"@documentElement.attributes.ToArray().Convert($item.name + '=' + $item.value).Join(';')"),
              "string kind=small;year=2026");
    EXPECT_EQ(Run(L"@documentElement.firstChild.attributes.item(0).value.ToInt() + 1"), "int 2");
}

TEST_F(DocumentTest, MethodsCannotBeCalled) {
    EXPECT_THAT(Run(L"@selectSingleNode('parts')"),
                ::testing::StartsWith("! 'selectSingleNode' is not a property of object 'COM:IXMLDOMDocument"));
}

TEST_F(DocumentTest, APropertyIsNotSetByReadingIt) {
    EXPECT_EQ(Run(L"@documentElement.firstChild.text = 'other'"), "bool false");
    EXPECT_EQ(Run(L"@documentElement.firstChild.text"), "string bolt");
}

// ---- VBScript.RegExp ----

TEST_F(SystemServersTest, RegularExpressions) {
    const ComRef<IDispatch> expression = Create(L"VBScript.RegExp");
    const Variant pattern = Text(L"(\\d)(\\w)");
    const Variant yes = Bool(VARIANT_TRUE);
    Invoke(*expression, L"Pattern", {&pattern}, DISPATCH_PROPERTYPUT);
    Invoke(*expression, L"Global", {&yes}, DISPATCH_PROPERTYPUT);
    Ask(expression.Get());
    EXPECT_EQ(Run(L"@TypeName()"), "string COM:IRegExp2");
    EXPECT_EQ(Run(L"@Pattern"), "string (\\d)(\\w)");
    EXPECT_EQ(Run(L"@Global and not @IgnoreCase"), "bool true");
    EXPECT_EQ(Run(L"@Test('1a')"), "! 'Test' is not a property of object 'COM:IRegExp2'");

    const Variant text = Text(L"1a 2b 3c");
    const Variant matches = Invoke(*expression, L"Execute", {&text});
    ASSERT_EQ((*matches).vt, VT_DISPATCH);
    Ask((*matches).pdispVal);
    EXPECT_EQ(Run(L"@ToArray().Count()"), "int 3");
}

} // namespace
} // namespace OrvUQL::Tests
