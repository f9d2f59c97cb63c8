// Errors. An error is a finished, human-readable English message; failures are values, never exceptions.
//
// Every operation that can fail takes a trailing `IError** err`. On failure it stores a new error there, if `err` is
// not null, and returns null or false; callers pass `err` down unchanged, so the innermost message reaches the host:
//
//     IError* error = nullptr;
//     IObject* value = engine.Evaluate(query, &error);
//     if (value == nullptr && error != nullptr) { Report(error->GetMessageW()); error->Release(); }
//
// Some failures have no message: then `*err` is left as it was.
#pragma once

#include "OrvUQL/OrvString.h"
#include "OrvUQL/RefCount.h"

#include <type_traits>
#include <utility>

namespace OrvUQL {

class ORVUQL_SHARED_TYPE IError : public IRefCountObject {
public:
    /// The message. It never changes.
    virtual OrvStringT GetMessageW() const = 0;
};

/// The library's one kind of error.
class ORVUQL_API Error : public RefCountImpl<IError> {
public:
    /// Copies the text. The count is 1.
    Error(const wchar_t* message);
    explicit Error(OrvStringT message) noexcept;
    /// Member-wise, the count included.
    Error(const Error&) = default;
    Error& operator=(const Error&) = default;
    ~Error() override;

    OrvStringT GetMessageW() const override;

    /// Makes an error from a template in which %1, %2, ... stand for the inserts in order and %% for a per cent sign,
    /// as the Win32 function FormatMessage has it. An insert is a `const wchar_t*` or an `OrvStringT`; numbers are
    /// turned into text by the caller. An insert that is missing or null reads as the empty text. Returns the new
    /// error with one reference, or null if memory ends.
    template <class... Inserts> static IError* Create(const wchar_t* format, const Inserts&... inserts) noexcept {
        const wchar_t* const texts[] = {InsertText(inserts)..., nullptr};
        return CreateFormatted(format, texts, static_cast<int>(sizeof...(inserts)));
    }

    /// Makes an error from a `std::regex_error`: "Error in regular expression: " and the text for its code.
    /// A template, so that this header need not include <regex>.
    template <class RegexError, class = decltype(std::declval<const RegexError&>().code()),
              class = decltype(std::declval<const RegexError&>().what())>
    static IError* Create(const RegexError& error) noexcept {
        return CreateRegexError(static_cast<int>(error.code()));
    }

    /// What the first form of Create calls: `count` inserts, of which any may be null. Never throws.
    static IError* CreateFormatted(const wchar_t* format, const wchar_t* const* inserts, int count) noexcept;
    /// What the second form of Create calls, with the number of the `std::regex_constants::error_type`.
    static IError* CreateRegexError(int code) noexcept;

private:
    static const wchar_t* InsertText(const wchar_t* text) noexcept { return text; }
    static const wchar_t* InsertText(const OrvStringT& text) noexcept { return text.GetString(); }

    OrvStringT message;
};

} // namespace OrvUQL
