// A host's value that fails, in each of its operations and each of its ways, wherever a query can have it: what comes
// of it is a value or none, and never a crash, a leak or an engine that does not work afterwards.

#include "support/Counted.h"
#include "support/Host.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace OrvUQL::Tests {
namespace {

/// The operation that does not do what it should.
enum Operation {
    None,
    TypeName,
    StaticInstance,
    Null,
    Unit,
    Bool,
    Int,
    Double,
    Text,
    Numeric,
    ConvertToUnit,
    ConvertType,
    Compare,
    Call,
    operationCount,
};

/// And what it does instead.
enum Fault {
    FailsQuietly,   ///< no result and no error
    FailsWithError, ///< no result
    GivesItself,    ///< where an object is due
    GivesNullValue,
    GivesText,
    GivesArray,
    GivesUnit,
    faultCount,
};

/// Says to be of a type, without being of its class, and keeps every promise but one.
class FaultyObject : public RefCountImpl<IObject> {
public:
    FaultyObject(EType toldType, Operation faultyOperation, Fault operationFault)
        : type(toldType), operation(faultyOperation), fault(operationFault) {
        Counted::Begin();
    }
    FaultyObject(const FaultyObject&) = delete;
    FaultyObject& operator=(const FaultyObject&) = delete;
    ~FaultyObject() override { Counted::End({}); }

    EType GetType() const override { return type; }
    OrvStringT GetTypeName() const override { return operation == TypeName ? OrvStringT() : ORV_TEXT(L"faulty"); }
    bool IsStaticInstance() const override { return operation == StaticInstance; }
    bool IsNull() const override { return (operation == Null) != (type == TypeNull); }
    // With the fault a unit without a face, or a face without a unit.
    bool IsUnit() const override { return (operation == Unit) != (type == TypeUnit); }
    IUnit* GetUnitInterface() override { return nullptr; }
    const IUnit* GetUnitInterface() const override { return nullptr; }

    bool ToBool(bool& out, IError** err) const override {
        out = true;
        return Succeeds(Bool, err);
    }
    bool ToInt(int& out, IError** err) const override {
        out = 3;
        return Succeeds(Int, err);
    }
    bool ToDouble(double& out, IError** err) const override {
        out = 3.5;
        return Succeeds(Double, err);
    }
    bool ToString(OrvStringT& out, IError** err) const override {
        out = ORV_TEXT(L"3");
        return Succeeds(Text, err);
    }
    VariantResult ToVariant(VARIANT&, IError**) const override { return static_cast<VariantResult>(0x80004001); }
    IObject* ToNumeric(IError** err) override {
        return Give(Numeric, err, [] { return new ObjectInt(3); });
    }
    IUnit* ToUnit(IUnitDefinition* unit, IError** err) override {
        if (operation == ConvertToUnit && fault <= FailsWithError) {
            Report(err);
            return nullptr;
        }
        // With another fault a unit of no catalogue.
        return new ObjectUnit(operation == ConvertToUnit && fault > FailsWithError ? nullptr : unit, 3, 1, true);
    }
    IObject* ChangeType(EType, IError** err) override {
        return Give(ConvertType, err, [] { return new ObjectString(L"3"); });
    }
    bool CompareTo(EOperType, IObject*, bool, bool& result, IError** err) const override {
        result = true;
        return Succeeds(Compare, err);
    }
    IObject* Invoke(QueryEngine*, const wchar_t*, const QueryElementList&, IError** err) override {
        return Give(Call, err, [] { return new ObjectInt(4); });
    }

private:
    static void Report(IError** err) {
        if (err != nullptr && *err == nullptr) {
            *err = Error::Create(L"faulty");
        }
    }

    bool Succeeds(Operation asked, IError** err) const {
        if (asked != operation) {
            return true;
        }
        if (fault == FailsWithError) {
            Report(err);
        }
        return fault > FailsWithError;
    }

    template <class Make> IObject* Give(Operation asked, IError** err, Make&& make) {
        if (asked != operation) {
            return make();
        }
        switch (fault) {
        case FailsQuietly:
            return nullptr;
        case FailsWithError:
            Report(err);
            return nullptr;
        case GivesNullValue:
            return new ObjectNull();
        case GivesText:
            return new ObjectString(L"word");
        case GivesArray:
            return new ObjectArray(ObjectList{new ObjectInt(1), nullptr});
        case GivesUnit:
            return new ObjectUnit(nullptr, 1, 2, false);
        default:
            AddRef();
            return this;
        }
    }

    EType type;
    Operation operation;
    Fault fault;
};

/// The property source: every member of it is the faulty value.
class Source : public ObjectBase {
public:
    explicit Source(IObject* member) : value(member) {}

    EType GetType() const override { return TypeGlobal; }
    OrvStringT GetTypeName() const override { return ORV_TEXT(L"source"); }
    const MethodMap* GetMethodMap() const override { return _GetMethodMap(); }

private:
    const MethodMap* _GetMethodMap() const {
        static const MethodMap table[] = {
            MethodMap::CatchAll(L"", &Source::Method_Member),
            MethodMap::End(),
        };
        return table;
    }
    IObject* Method_Member(QueryEngine*, const OrvStringT&, const ObjectList&, IError**) { return value.Share(); }

    Ref<IObject> value;
};

constexpr const wchar_t* queries[] = {
    L"@x",
    L"@x + 1",
    L"1 + @x",
    L"@x + 1.5",
    L"@x + 'a'",
    L"@x + null",
    L"@x + {1 cm}",
    L"{1 cm} - @x",
    L"@x + array(1)",
    L"@x + @x",
    L"@x - 1",
    L"1 - @x",
    L"@x * 2",
    L"2 * @x",
    L"'2' * @x",
    L"@x / 2",
    L"2 / @x",
    L"{1 cm} / @x",
    L"@x \\ 2",
    L"7 \\ @x",
    L"@x ^ 2",
    L"2 ^ @x",
    L"{2 cm} ^ @x",
    L"-@x",
    L"+@x",
    L"not @x",
    L"@x and true",
    L"true and @x",
    L"@x or false",
    L"false or @x",
    L"@x ? 1 : 2",
    L"true ? @x : 1",
    L"@x = 1",
    L"1 = @x",
    L"@x == 1.5",
    L"@x <> 'a'",
    L"'a' < @x",
    L"@x > null",
    L"true = @x",
    L"@x <= {1 cm}",
    L"{1 cm} >= @x",
    L"@x = array(1)",
    L"@x == @x",
    L"@x.Abs",
    L"@x.a.b.c",
    L"@x.Round(@x)",
    L"@x.ForEach(0, $item)",
    L"@x[.a]",
    L"@x[.a + .b(1)]",
    L"(1)[@x]",
    L"min(@x, 1)",
    L"max(1, @x, 2.5)",
    L"sqrt(@x)",
    L"iif(@x, 1, 2)",
    L"iif(true, @x, 2)",
    L"array(@x)",
    L"array(1, @x, @x)",
    L"chr(@x)",
    L"rnd(@x)",
    L"radix(@x, 2, @x)",
    L"round(@x, 1)",
    L"round(1.25, @x)",
    L"(5).Radix(@x)",
    L"(1.25).Round(@x)",
    L"'abc'.SubStr(@x, @x)",
    L"'abc'.Delete(@x)",
    L"'abc'.Trim(@x)",
    L"'abc'.Repeat(@x)",
    L"'abc'.Contains(@x, @x)",
    L"'abc'.Replace(@x, 'b')",
    L"'abc'.Replace('b', @x, @x)",
    L"'abc'.Split(@x)",
    L"'abc'.CharAt(@x)",
    L"'abc'.IndexOf(@x)",
    L"'12'.ParseInt(@x)",
    L"'abc'.RegMatch(@x, @x)",
    L"'abc'.RegMatchEx(@x)",
    L"'abc'.RegReplace('b', @x)",
    L"'abc'.RegReplaceEx('[a-c]', @x)",
    L"'abc'.RegReplaceEx(@x, 'x')",
    L"'abc'.RegSplit(@x)",
    L"array(@x).Join(',')",
    L"array(1, 2).Join(@x)",
    L"array(@x, 1).ToString()",
    L"array(@x, 1).First()",
    L"array(@x, 1).Item(@x)",
    L"array(1).Add(@x).Last()",
    L"array(@x, 1).Find(1)",
    L"array(1, 3).Find(@x)",
    L"array(@x, 1).IndexOf(@x)",
    L"array(@x, 1).Contains($item = 1)",
    L"array(1, 3).Contains(@x)",
    L"array(@x, 1).ForEach(@x, $lasteval + $item)",
    L"array(1, 3).ForEach(@x, @x, @x)",
    L"array(1, 3).ForEach(0, $data, @x)",
    L"array(@x, 1).Filter($item)",
    L"array(1, 3).Filter(@x)",
    L"array(@x, 1).Convert($item.a)",
    L"array(1, 3).Convert(@x)",
    L"array(@x) + @x",
    L"array(@x, 1) = @x",
    L"array(@x, @x)[.First() + .Last()]",
    L"{1 cm}.Convert(@x)",
    L"{1 cm}.Round(@x)",
    L"@x + 1 + 2 * @x - @x ^ 2",
    L"@x > 1 and @x < 5 or @x = @x",
    L"@x = 1 ? 'a' : @x = 2 ? 'b' : @x + 'c'",
};

class FaultyHost : public CountedTest {
protected:
    /// Every query with a value that has that fault.
    void RunAll(IObject::EType type, Operation operation, Fault fault) {
        SCOPED_TRACE("type " + std::to_string(type) + ", operation " + std::to_string(operation) + ", fault " +
                     std::to_string(fault));
        const Ref<Source> source = Make<Source>(new FaultyObject(type, operation, fault));
        host.engine.SetPropertySource(source.Get());
        for (std::size_t index = 0; index < trees.size(); ++index) {
            // Twice: the second time the call sites know what they found.
            const std::string first = Evaluate(*trees[index]);
            EXPECT_EQ(Counted::live, 1) << Utf8(queries[index]) << " keeps a reference";
            if (std::wstring_view(queries[index]).substr(0, 3) != L"rnd") {
                EXPECT_EQ(Evaluate(*trees[index]), first) << Utf8(queries[index]);
            }
            EXPECT_EQ(host.engine.GetPropertySource(), source.Get());
            EXPECT_EQ(host.engine.GetVariable(), nullptr) << Utf8(queries[index]);
            EXPECT_EQ(host.engine.GetGroupParent(), nullptr) << Utf8(queries[index]);
            ASSERT_EQ(Evaluate(*sum), "int 3") << Utf8(queries[index]);
        }
        host.engine.SetPropertySource(nullptr);
    }

    /// Not by Host::Run, which takes a value with an error for a mistake.
    std::string Evaluate(IQueryElement& tree) {
        ErrorSlot error;
        const Ref<IObject> value(host.engine.Evaluate(&tree, error.Slot()));
        return value ? Describe(value.Get()) : "! " + error.Message();
    }

    void SetUp() override {
        CountedTest::SetUp();
        for (const wchar_t* const query : queries) {
            trees.push_back(host.Parse(query));
            ASSERT_TRUE(trees.back());
        }
        sum = host.Parse(L"1 + 2");
    }

    Host host;
    std::vector<Ref<IQueryElement>> trees;
    Ref<IQueryElement> sum;
};

constexpr int types[] = {IObject::TypeNull,
                         IObject::TypeBool,
                         IObject::TypeInt,
                         IObject::TypeDouble,
                         IObject::TypeString,
                         IObject::TypeArray,
                         IObject::TypeUnit,
                         IObject::TypeCom,
                         IObject::TypeGlobal,
                         IObject::TypeExpression,
                         10,
                         -1};

TEST_F(FaultyHost, ThatOnlyTellsAnotherType) {
    for (const int type : types) {
        RunAll(static_cast<IObject::EType>(type), None, FailsQuietly);
    }
}

TEST_F(FaultyHost, WithAnyOperationThatFails) {
    for (const int type : types) {
        for (int operation = None + 1; operation < operationCount; ++operation) {
            for (int fault = 0; fault < faultCount; ++fault) {
                RunAll(static_cast<IObject::EType>(type), static_cast<Operation>(operation), static_cast<Fault>(fault));
                if (HasFatalFailure()) {
                    return;
                }
            }
        }
    }
}

// Not a member of the host's values, but what names are asked of: the source of properties, the variable, the global
// object, and the parent of a group.
TEST_F(FaultyHost, WhereNamesAreLookedUp) {
    constexpr const wchar_t* names[] = {
        L"@x",         L"@x(1) + 1",    L"$x",     L"$x = 1 ? $x : 2", L"f(1)",         L"f + 1",
        L"@x[.a + 1]", L"array(@x, 1)", L"$x.a.b", L"-f(@x)",          L"iif(f, 1, 2)", L"max(f, @x, $x)",
    };
    std::vector<Ref<IQueryElement>> lookups;
    for (const wchar_t* const name : names) {
        lookups.push_back(host.Parse(name));
    }
    const Ref<IObject> global(host.engine.GetGlobal());
    host.engine.GetGlobal()->AddRef();
    for (const int type : types) {
        for (int operation = None; operation < operationCount; ++operation) {
            for (int fault = 0; fault < faultCount; ++fault) {
                const Ref<FaultyObject> object = Make<FaultyObject>(
                    static_cast<IObject::EType>(type), static_cast<Operation>(operation), static_cast<Fault>(fault));
                host.engine.SetPropertySource(object.Get());
                host.engine.SetVariable(object.Get());
                host.engine.SetGlobal(object.Get());
                for (std::size_t index = 0; index < lookups.size(); ++index) {
                    const std::string first = Evaluate(*lookups[index]);
                    EXPECT_EQ(Evaluate(*lookups[index]), first) << Utf8(names[index]);
                    EXPECT_EQ(Counted::live, 1) << Utf8(names[index]) << " keeps a reference";
                    EXPECT_EQ(host.engine.GetVariable(), object.Get()) << Utf8(names[index]);
                }
                host.engine.SetPropertySource(nullptr);
                host.engine.SetVariable(nullptr);
                host.engine.SetGlobal(global.Get());
                ASSERT_EQ(Evaluate(*sum), "int 3");
            }
        }
    }
}

} // namespace
} // namespace OrvUQL::Tests
