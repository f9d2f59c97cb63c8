// OLE Automation in tests: VARIANTs with an owner, what they read like, and the base of tests whose objects and memory
// must all be gone in the end.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "support/Attempt.h"
#include "support/Counted.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>

#include <windows.h>

#include <oleauto.h>

namespace OrvUQL::Tests {

/// A VARIANT that is cleared in the end. The makers put it in as its type says, unchecked.
class Variant {
public:
    Variant() noexcept { VariantInit(&value); }
    Variant(Variant&& other) noexcept : value(other.value) { VariantInit(&other.value); }
    Variant& operator=(Variant&& other) noexcept {
        std::swap(value, other.value);
        return *this;
    }
    ~Variant() { VariantClear(&value); }

    VARIANT* Get() noexcept { return &value; }
    VARIANT* operator->() noexcept { return &value; }
    const VARIANT& operator*() const noexcept { return value; }
    /// Hands the content over.
    VARIANT Detach() noexcept {
        const VARIANT content = value;
        VariantInit(&value);
        return content;
    }

private:
    VARIANT value;
};

Variant Empty();
/// Nothing but a type.
Variant OfType(VARTYPE type);
/// Integers of every width: the low bytes of `number`.
Variant Integer(VARTYPE type, std::int64_t number);
Variant Single(float number);
Variant Double(double number);
Variant Bool(VARIANT_BOOL truth);
/// A new BSTR with all units of the text.
Variant Text(std::wstring_view text);
/// Takes a reference of its own.
Variant Object(IDispatch* object);
/// A reference to what the caller keeps.
Variant Reference(VARTYPE type, void* place);
/// Takes the array over.
Variant Array(VARTYPE type, SAFEARRAY* array);

/// A new one-dimensional array, all of its elements zero.
SAFEARRAY* NewArray(VARTYPE type, unsigned count, long first = 0);
/// A new array of VARIANTs, which are moved into it.
Variant ArrayOf(std::initializer_list<Variant*> elements, long first = 0);

/// "EMPTY", "I4 7", "R8 0.5", "BOOL -1", "BSTR abc", "DISPATCH", "ARRAY[I4 1, BSTR a]" (of VARIANTs, from 0); other
/// types by number.
std::string Describe(const VARIANT& variant);

/// What a value becomes: Describe, or the HRESULT as eight digits, with the message if there is one: "80004005",
/// "80004005 Internal error". A failure must leave nothing in the VARIANT.
std::string ToVariant(const IObject& object);

/// What a VARIANT becomes, as Attempt says it. The VARIANT must stay as it is, to the byte.
std::string FromVariant(const VARIANT& variant);
inline std::string FromVariant(const Variant& variant) { return FromVariant(*variant); }

/// The blocks that COM's allocator has handed out and not got back, and what became of them since it was made.
/// Automation keeps its texts, arrays and type descriptions there. Its cache of texts is off.
class ComMemory {
public:
    ComMemory();
    /// Blocks more than at the start.
    long Growth() const;

private:
    long start;
};

/// While it lives, COM's allocator has nothing left after `allowed` more blocks.
class FailingComMemory {
public:
    explicit FailingComMemory(int allowed);
    FailingComMemory(const FailingComMemory&) = delete;
    FailingComMemory& operator=(const FailingComMemory&) = delete;
    ~FailingComMemory();

    /// Whether it has come to that; to be asked while it lives.
    bool HasFailed() const;
};

/// Base of tests with automation: COM is initialised, and no object of a test may be left over.
class AutomationTest : public CountedTest {
protected:
    void SetUp() override;
    void TearDown() override;
};

} // namespace OrvUQL::Tests
