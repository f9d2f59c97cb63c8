#include <OrvUQL/OrvString.h>

#include <algorithm>

// Templates with numbered inserts, by the rules of Win32's FormatMessage.

namespace {

/// A piece of a template: text, or the number of an insert and how to put it in.
struct Piece {
    std::wstring_view text;
    int insert = 0;
    bool left = false;
    int width = 0;
    int precision = -1; ///< negative: all of it
};

bool IsDigit(wchar_t unit) noexcept { return unit >= L'0' && unit <= L'9'; }

/// Cuts a template into pieces.
class TemplateReader {
public:
    explicit TemplateReader(const wchar_t* format) noexcept : at(format == nullptr ? L"" : format) {}

    /// False at the end.
    bool Next(Piece& piece) noexcept {
        piece = Piece();
        if (*at == L'\0') {
            return false;
        }
        if (*at != L'%' || at[1] == L'\0') {
            const wchar_t* const begin = at++;
            while (*at != L'\0' && *at != L'%') {
                ++at;
            }
            piece.text = std::wstring_view(begin, static_cast<std::size_t>(at - begin));
            return true;
        }
        const wchar_t unit = at[1];
        if (unit == L'0') {
            return false;
        }
        at += 2;
        if (IsDigit(unit)) {
            piece.insert = unit - L'0';
            if (IsDigit(*at)) {
                piece.insert = piece.insert * 10 + (*at++ - L'0');
            }
            ReadSpecification(piece);
            return true;
        }
        switch (unit) {
        case L'n':
            piece.text = L"\r\n";
            break;
        case L'r':
            piece.text = L"\r";
            break;
        case L't':
            piece.text = L"\t";
            break;
        case L'b':
            piece.text = L" ";
            break;
        default:
            piece.text = std::wstring_view(at - 1, 1);
            break;
        }
        return true;
    }

private:
    const wchar_t* at;

    /// `!-20.10s!`, where all but the s may be missing, and a letter of length may stand before it. Anything else is no
    /// specification but text: an exclamation mark behind an insert is nothing unusual.
    void ReadSpecification(Piece& piece) noexcept {
        if (*at != L'!') {
            return;
        }
        const wchar_t* p = at + 1;
        const bool left = *p == L'-';
        p += left ? 1 : 0;
        const int width = ReadNumber(p);
        int precision = -1;
        if (*p == L'.') {
            ++p;
            precision = ReadNumber(p);
        }
        if (*p == L'l' || *p == L'w') {
            ++p;
        }
        if (p[0] == L's' && p[1] == L'!') {
            piece.left = left;
            piece.width = width;
            piece.precision = precision;
            at = p + 2;
        }
    }

    static int ReadNumber(const wchar_t*& p) noexcept {
        constexpr int greatest = 100'000'000;
        int number = 0;
        for (; IsDigit(*p); ++p) {
            number = std::min(number, greatest) * 10 + (*p - L'0');
        }
        return number;
    }
};

constexpr int greatestInsert = 99;

} // namespace

void OrvStringT::FormatInserts(const wchar_t* format, const wchar_t* const* inserts, int count) {
    OrvStringT result;
    TemplateReader reader(format);
    for (Piece piece; reader.Next(piece);) {
        if (piece.insert == 0) {
            result.Append(piece.text);
            continue;
        }
        OrvStringT insert(piece.insert <= count && inserts != nullptr ? inserts[piece.insert - 1] : nullptr);
        if (piece.precision >= 0) {
            insert = insert.Left(piece.precision);
        }
        const OrvStringT fill(L' ', piece.width - insert.GetLength());
        result.Append(piece.left ? insert : fill);
        result.Append(piece.left ? fill : insert);
    }
    Swap(result);
}

void OrvStringT::FormatMessageV(const wchar_t* format, std::va_list* args) {
    int count = 0;
    TemplateReader reader(format);
    for (Piece piece; reader.Next(piece);) {
        count = std::max(count, piece.insert);
    }
    const wchar_t* inserts[greatestInsert] = {};
    for (int i = 0; i < count; ++i) {
        inserts[i] = va_arg(*args, const wchar_t*);
    }
    FormatInserts(format, inserts, count);
}
