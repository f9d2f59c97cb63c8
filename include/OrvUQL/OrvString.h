#pragma once

#include <OrvUQL/Export.h>

#include <cstdarg>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

/// What stands in front of the units of every text.
struct OrvTextHeader {
    int refs;     ///< texts that share the buffer; negative: a literal, which nobody counts and nobody frees
    int length;   ///< units before the terminating U+0000
    int capacity; ///< units for which there is room, the terminator not included
};

/// A text with static lifetime, laid out like a shared buffer, so that an OrvStringT refers to it without a copy.
/// Made by ORV_TEXT. A unit above U+FFFF (possible where wchar_t has 32 bits) does not compile: write both surrogates.
template <std::size_t N> struct OrvLiteral {
    OrvTextHeader header;
    wchar_t units[N];

    explicit constexpr OrvLiteral(const wchar_t (&text)[N])
        : header{-1, static_cast<int>(N - 1), static_cast<int>(N - 1)}, units{} {
        for (std::size_t i = 0; i < N; ++i) {
            if (static_cast<std::uint32_t>(text[i]) > 0xFFFFu) {
                throw std::invalid_argument("a literal text consists of UTF-16 code units");
            }
            units[i] = text[i];
        }
    }
};

/// The literal text as an OrvLiteral: `OrvStringT name = ORV_TEXT(L"int");` allocates nothing and counts nothing.
#define ORV_TEXT(literal)                                                                                              \
    ([]() noexcept -> const ::OrvLiteral<sizeof(literal) / sizeof(wchar_t)>& {                                         \
        static constexpr ::OrvLiteral<sizeof(literal) / sizeof(wchar_t)> orvLiteralText(literal);                      \
        return orvLiteralText;                                                                                         \
    }())

/// The text that all empty texts share.
inline constexpr OrvLiteral<1> orvEmptyText{L""};

/// A text of UTF-16 code units.
///
/// Every element holds one code unit, also where wchar_t has 32 bits: what comes in from outside has each code point
/// above U+FFFF split into its surrogate pair (a value that is no code point becomes U+FFFD), so lengths and
/// positions are the same numbers on every platform. Lengths and positions count code units. A text may hold U+0000.
///
/// Copies share one buffer, and the first change to a shared buffer makes a copy of it. The count of sharers is a plain
/// number: a text and its copies belong to one thread at a time. `Detach` gives a text a buffer of its own, which then
/// may go to another thread. Literals (ORV_TEXT) may be shared by all threads.
///
/// Arguments may refer to the text that is being changed. Positions and counts outside the text are cut down to it.
///
/// Errors: std::length_error beyond 2^31-1 units, std::bad_alloc where memory ends; the text is then as it was before.
/// Comparisons, and what is marked noexcept, never fail.
class ORVUQL_API OrvStringT {
public:
    enum ECompareCase {
        CaseSensitive = 0,  ///< code unit by code unit
        CaseInsensitive = 1 ///< by the upper-case mappings of the code units
    };

    // ---- making ----

    constexpr OrvStringT() noexcept : units(const_cast<wchar_t*>(orvEmptyText.units)) {}

    /// Copies the text up to its terminator; null is the empty text.
    OrvStringT(const wchar_t* text);

    /// Copies `length` elements, U+0000 among them. A null text or a length below 1 is the empty text.
    OrvStringT(const wchar_t* text, int length);

    explicit OrvStringT(std::wstring_view text);

    /// `count` times `unit`; empty when the count is below 1.
    OrvStringT(wchar_t unit, int count);

    /// Refers to the literal, which is neither copied nor counted.
    template <std::size_t N>
    constexpr OrvStringT(const OrvLiteral<N>& literal) noexcept : units(const_cast<wchar_t*>(literal.units)) {}

    OrvStringT(const OrvStringT& other) noexcept : units(other.units) { AddRef(); }

    OrvStringT(OrvStringT&& other) noexcept : units(other.ReleaseBuffer()) {}

    OrvStringT& operator=(const OrvStringT& other) noexcept {
        OrvStringT copy(other);
        Swap(copy);
        return *this;
    }

    OrvStringT& operator=(OrvStringT&& other) noexcept {
        OrvStringT moved(static_cast<OrvStringT&&>(other));
        Swap(moved);
        return *this;
    }

    ~OrvStringT() {
        if (Header().refs >= 0 && --Header().refs == 0) {
            FreeBuffer();
        }
    }

    void Swap(OrvStringT& other) noexcept {
        wchar_t* const mine = units;
        units = other.units;
        other.units = mine;
    }

    // ---- reading ----

    int GetLength() const noexcept { return Header().length; }

    bool IsEmpty() const noexcept { return Header().length == 0; }

    /// The unit at `index`, which lies from 0 to the length (where the terminating U+0000 stands).
    wchar_t operator[](int index) const noexcept { return units[index]; }

    /// The units and a terminating U+0000, borrowed until the text is changed or destroyed.
    const wchar_t* GetString() const noexcept { return units; }

    /// A view of the units, borrowed like GetString.
    std::wstring_view View() const noexcept {
        return std::wstring_view(units, static_cast<std::size_t>(Header().length));
    }

    operator std::wstring_view() const noexcept { return View(); }

    // ---- parts; a part that is the whole text shares its buffer ----

    /// The first `count` units; empty when the count is negative.
    OrvStringT Left(int count) const;

    /// The last `count` units; empty when the count is negative.
    OrvStringT Right(int count) const;

    /// The units from `start` to the end; a negative start is 0.
    OrvStringT Mid(int start) const;

    /// Up to `count` units from `start`; a negative start is 0, a negative count gives the empty text.
    OrvStringT Mid(int start, int count) const;

    // ---- searching and comparing ----

    /// The position of the first occurrence of `sub` at or after `start`, or -1. A negative start is 0. An empty
    /// `sub` is found at `start` unless that lies behind the end. Takes time linear in both lengths.
    int Find(std::wstring_view sub, int start = 0, ECompareCase compareCase = CaseSensitive) const;

    /// -1, 0 or 1, by code units (CaseSensitive) or by their upper-case mappings.
    int Compare(std::wstring_view other, ECompareCase compareCase = CaseSensitive) const noexcept;

    int CompareNoCase(std::wstring_view other) const noexcept { return Compare(other, CaseInsensitive); }

    // ---- changing in place ----

    /// Replaces each occurrence of `oldText`, found from the left without overlap, and returns their number. An empty
    /// `oldText` changes nothing.
    int Replace(std::wstring_view oldText, std::wstring_view newText, ECompareCase compareCase = CaseSensitive);

    /// Removes up to `count` units from `start` (a negative start is 0; a negative count removes nothing) and returns
    /// the new length.
    int Delete(int start, int count = 1);

    /// Inserts before the unit at `index`, which is cut down to 0..length, and returns the new length.
    int Insert(int index, std::wstring_view text);

    /// Simple Unicode mappings of single code units; the length stays, and no locale is asked.
    OrvStringT& MakeUpper();
    OrvStringT& MakeLower();

    /// Removes white space: TAB, LF, VT, FF, CR, the blank, U+00A0 and the other Unicode spaces and separators.
    OrvStringT& Trim();
    OrvStringT& TrimLeft();
    OrvStringT& TrimRight();

    /// Removes every unit that occurs in `set`.
    OrvStringT& Trim(std::wstring_view set);
    OrvStringT& TrimLeft(std::wstring_view set);
    OrvStringT& TrimRight(std::wstring_view set);

    /// Appends. A buffer that nobody shares grows in place by a fraction of its size, so a chain of appends takes time
    /// linear in the length of its result.
    OrvStringT& Append(std::wstring_view text);
    OrvStringT& Append(wchar_t unit);
    OrvStringT& Append(const OrvStringT& text);
    OrvStringT& Append(const wchar_t* text) { return Append(ViewOf(text)); }

    OrvStringT& operator+=(std::wstring_view text) { return Append(text); }
    OrvStringT& operator+=(const wchar_t* text) { return Append(ViewOf(text)); }
    OrvStringT& operator+=(wchar_t unit) { return Append(unit); }
    OrvStringT& operator+=(const OrvStringT& text) { return Append(text); }

    /// Makes room for a text of `length` units, in a buffer that nobody shares.
    void Reserve(int length);

    /// Makes the text empty. A buffer that nobody shares is kept for what comes next.
    void Clear() noexcept;

    /// Gives the text a buffer of its own, so that it may go to another thread. Nothing to do for a literal.
    void Detach();

    // ---- formatting; the result replaces the text ----

    /// printf for wide texts, the same on every platform and in every locale.
    ///
    /// Conversions: d i u x X o (lengths hh h l ll z j t), c (one unit), s and ls (const wchar_t*), hs and S (const
    /// char*, UTF-8), f F e E g G (double), %%. Flags - + blank # 0, width and precision as numbers or `*`. A null
    /// text reads "(null)". A conversion that is none of these is copied as it stands and takes no argument.
    void Format(const wchar_t* format, ...);
    void FormatV(const wchar_t* format, std::va_list args);

    /// Puts inserts into a template by the rules of Win32's FormatMessage: %1 to %99 stand for the inserts (a number
    /// above `count` or a null insert for the empty text; `!s!` with an optional width and precision may follow the
    /// number), %0 ends the text, %n is CR and LF, %r CR, %t TAB, %b a blank; any other character behind % stands for
    /// itself. Line breaks of the template stay as they are.
    void FormatInserts(const wchar_t* format, const wchar_t* const* inserts, int count);

    /// The same with `const wchar_t*` arguments. Their number cannot be known here: there must be as many as the
    /// highest number in the template says. Advances `args` past those.
    void FormatMessageV(const wchar_t* format, std::va_list* args);

    // ---- UTF-8 ----

    /// Each maximal part of a malformed sequence becomes one U+FFFD. A byte-order mark is a character like any other.
    static OrvStringT FromUtf8(std::string_view bytes);

    /// An unpaired surrogate becomes U+FFFD.
    std::string ToUtf8() const;

#if defined(_WIN32)
    // ---- for OLE Automation ----

    /// A new BSTR with the units, U+0000 among them; the caller frees it (SysFreeString).
    wchar_t* AllocSysString() const;
#endif

    // ---- for texts that travel as a bare pointer ----

    /// Hands over the buffer with this text's share in it; the text is empty afterwards. Only AdoptBuffer may take it.
    wchar_t* ReleaseBuffer() noexcept {
        wchar_t* const buffer = units;
        units = const_cast<wchar_t*>(orvEmptyText.units);
        return buffer;
    }

    /// Takes over what ReleaseBuffer handed out; null is the empty text.
    static OrvStringT AdoptBuffer(wchar_t* buffer) noexcept {
        OrvStringT text;
        if (buffer != nullptr) {
            text.units = buffer;
        }
        return text;
    }

    /// A text that shares what ReleaseBuffer handed out; the share that was handed out stays where it is.
    static OrvStringT ShareBuffer(wchar_t* buffer) noexcept {
        OrvStringT text = AdoptBuffer(buffer);
        text.AddRef();
        return text;
    }

    // ---- operators ----

    friend bool operator==(const OrvStringT& a, const OrvStringT& b) noexcept {
        return a.units == b.units || a.Equals(b.View());
    }
    friend bool operator==(const OrvStringT& a, std::wstring_view b) noexcept { return a.Equals(b); }
    friend bool operator==(std::wstring_view a, const OrvStringT& b) noexcept { return b.Equals(a); }
    friend bool operator==(const OrvStringT& a, const wchar_t* b) noexcept { return a.Equals(ViewOf(b)); }
    friend bool operator==(const wchar_t* a, const OrvStringT& b) noexcept { return b.Equals(ViewOf(a)); }

    friend bool operator!=(const OrvStringT& a, const OrvStringT& b) noexcept { return !(a == b); }
    friend bool operator!=(const OrvStringT& a, std::wstring_view b) noexcept { return !(a == b); }
    friend bool operator!=(std::wstring_view a, const OrvStringT& b) noexcept { return !(a == b); }
    friend bool operator!=(const OrvStringT& a, const wchar_t* b) noexcept { return !(a == b); }
    friend bool operator!=(const wchar_t* a, const OrvStringT& b) noexcept { return !(a == b); }

    // A left side that is a temporary is continued in its own buffer.
    friend OrvStringT operator+(OrvStringT a, const OrvStringT& b) {
        a.Append(b);
        return a;
    }
    friend OrvStringT operator+(OrvStringT a, std::wstring_view b) {
        a.Append(b);
        return a;
    }
    friend OrvStringT operator+(OrvStringT a, const wchar_t* b) {
        a.Append(b);
        return a;
    }
    friend OrvStringT operator+(OrvStringT a, wchar_t b) {
        a.Append(b);
        return a;
    }
    friend OrvStringT operator+(std::wstring_view a, const OrvStringT& b) { return OrvStringT(a) + b; }
    friend OrvStringT operator+(const wchar_t* a, const OrvStringT& b) { return OrvStringT(a) + b; }
    friend OrvStringT operator+(wchar_t a, const OrvStringT& b) { return OrvStringT(a, 1) + b; }

    /// Whether no other text shares the buffer, so that a change need not copy it.
    bool IsUnique() const noexcept { return Header().refs == 1; }

private:
    wchar_t* units; ///< behind an OrvTextHeader, and terminated by U+0000

    static std::wstring_view ViewOf(const wchar_t* text) noexcept {
        return text == nullptr ? std::wstring_view() : std::wstring_view(text);
    }

    OrvTextHeader& Header() const noexcept {
        return *reinterpret_cast<OrvTextHeader*>(reinterpret_cast<char*>(units) - sizeof(OrvTextHeader));
    }

    // Two thousand million sharers turn the count negative: the buffer is then never freed, rather than freed too
    // early.
    void AddRef() const noexcept {
        if (Header().refs >= 0) {
            Header().refs = static_cast<int>(static_cast<unsigned>(Header().refs) + 1u);
        }
    }

    static OrvStringT WithLength(std::int64_t length, std::int64_t capacity);
    static OrvStringT Copy(const wchar_t* text, int length);
    void FreeBuffer() noexcept;
    void SetLength(int length) noexcept;
    void MakeUnique();
    std::int64_t GrownCapacity(std::int64_t length) const noexcept;
    void KeepRange(int start, int count);
    OrvStringT& AppendUnits(const wchar_t* text, std::size_t count);
    bool Equals(std::wstring_view other) const noexcept;
};

static_assert(offsetof(OrvLiteral<1>, units) == sizeof(OrvTextHeader), "a literal is laid out like a buffer");

namespace OrvUQL {
using ::OrvStringT;
}

namespace OrvUtils::String {

/// "true" or "false".
ORVUQL_API OrvStringT ToStringW(bool value);

/// Decimal digits behind an optional minus sign.
ORVUQL_API OrvStringT ToStringW(int value);

/// The shortest digits that read back to the same double: plain from 1e-6 up to, not including, 1e21 (0.1, 100000),
/// otherwise d.ddde+XX or d.ddde-XX with at least two digits of exponent; "-0", "inf", "-inf" and "nan".
ORVUQL_API OrvStringT ToStringW(double value);

/// Catches pointers, which would turn into bool.
OrvStringT ToStringW(const void*) = delete;

} // namespace OrvUtils::String
