#include "ConformanceFile.h"

#include "Escapes.h"
#include "JsonReader.h"

#include <charconv>
#include <cmath>

namespace OrvUQL::Tool {

namespace {

/// Cuts off and returns what stands before the first blank; the blank goes too.
std::string_view TakeWord(std::string_view& text) {
    const std::size_t blank = text.find(' ');
    const std::string_view word = text.substr(0, blank);
    text.remove_prefix(blank == std::string_view::npos ? text.size() : blank + 1);
    return word;
}

template <class Number> bool ReadNumber(std::string_view text, Number& number) {
    const char* const end = text.data() + text.size();
    const auto [stop, failure] = std::from_chars(text.data(), end, number);
    return failure == std::errc() && stop == end;
}

bool ReadFiniteNumber(std::string_view text, double& number) {
    return ReadNumber(text, number) && std::isfinite(number);
}

bool IsUtf8(std::string_view bytes) { return OrvStringT::FromUtf8(bytes).ToUtf8() == bytes; }

/// What a file begins with.
std::shared_ptr<const EngineSettings> MakeSettings() {
    const auto settings = std::make_shared<EngineSettings>();
    settings->releasesKept = false; // the language as it is, also in what it keeps
    return settings;
}

class Reader {
public:
    Reader(std::vector<ConformanceCase>& result, std::string& reason) : cases(result), error(reason) {}

    bool ReadLine(std::string_view line, std::size_t number) {
        if (!IsUtf8(line)) {
            return Fail("the line is not UTF-8");
        }
        if (line.find_first_not_of(" \t") == std::string_view::npos || line[0] == '#') {
            return true;
        }
        std::string_view rest = line;
        const std::string_view sign = TakeWord(rest);
        if (sign == "?" || sign == "?e") {
            return ReadQuery(line, sign == "?e", rest, number);
        }
        if (sign == "=" || sign == "~" || sign == "!") {
            return ReadExpectation(sign[0], rest);
        }
        if (sign == "set") {
            return !isQueryOpen ? ReadSetting(rest) : Fail("a setting between a query and what it gives");
        }
        return Fail("the line begins with none of # set ? ?e = ~ !");
    }

    /// To be called behind the last line.
    bool Finish() { return !isQueryOpen || Fail("the last query has no expectation"); }

private:
    bool Fail(std::string message) {
        error = std::move(message);
        return false;
    }

    bool ReadQuery(std::string_view line, bool escaped, std::string_view written, std::size_t number) {
        if (isQueryOpen) {
            return Fail("the query before this one has no expectation");
        }
        ConformanceCase next;
        next.line = number;
        next.written = line;
        next.settings = settings;
        if (!escaped) {
            next.query = OrvStringT::FromUtf8(written);
        } else if (!DecodeEscapes(written, next.query, error)) {
            return false;
        }
        if (next.query.View().find(L'\0') != std::wstring_view::npos) {
            return Fail("a query ends at U+0000");
        }
        cases.push_back(std::move(next));
        isQueryOpen = true;
        return true;
    }

    bool ReadExpectation(char sign, std::string_view written) {
        if (!isQueryOpen) {
            return Fail("an expectation without a query before it");
        }
        isQueryOpen = false;
        Expectation& expectation = cases.back().expectation;
        expectation.written = written;
        if (sign == '!') {
            expectation.kind = Expectation::Failure;
            return DecodeEscapes(written, expectation.text, error);
        }
        const std::string_view typeName = TakeWord(written);
        if (typeName.empty()) {
            return Fail("a type name is missing");
        }
        expectation.typeName = OrvStringT::FromUtf8(typeName);
        if (sign == '=') {
            expectation.kind = Expectation::Value;
            return DecodeEscapes(written, expectation.text, error);
        }
        expectation.kind = Expectation::Near;
        if (!ReadFiniteNumber(TakeWord(written), expectation.number)) {
            return Fail("a number is missing after the type name");
        }
        if (!written.empty() && !(ReadFiniteNumber(written, expectation.tolerance) && expectation.tolerance >= 0)) {
            return Fail("the tolerance is no number from 0");
        }
        return true;
    }

    bool ReadSetting(std::string_view value) {
        const std::string_view name = TakeWord(value);
        auto changed = std::make_shared<EngineSettings>(*settings);
        if (name == "units") {
            double resolution = 0;
            if (value == "off") {
                changed->resolution.reset();
            } else if (ReadFiniteNumber(value, resolution)) {
                changed->resolution = resolution;
            } else {
                return Fail("`set units` takes a resolution or off");
            }
        } else if (name == "precision") {
            if (!ReadNumber(value, changed->precision)) {
                return Fail("`set precision` takes an integer");
            }
        } else if (name == "props" || name == "var") {
            if (!ReadJson(name, value, name == "props" ? changed->propertySource : changed->variable)) {
                return false;
            }
        } else if (name == "global") {
            if (value != "on" && value != "off") {
                return Fail("`set global` takes on or off");
            }
            changed->hasGlobals = value == "on";
        } else {
            return Fail("there is no setting '" + std::string(name) + "'");
        }
        settings = std::move(changed);
        return true;
    }

    bool ReadJson(std::string_view name, std::string_view value, std::optional<std::string>& json) {
        if (value == "off") {
            json.reset();
            return true;
        }
        JsonError jsonError;
        if (!JsonReader().Read(value, jsonError)) {
            return Fail("`set " + std::string(name) + "` takes JSON or off; column " +
                        std::to_string(jsonError.offset + 1) + " of the JSON: " + jsonError.message);
        }
        json = value;
        return true;
    }

    std::vector<ConformanceCase>& cases;
    std::string& error;
    std::shared_ptr<const EngineSettings> settings = MakeSettings();
    bool isQueryOpen = false;
};

} // namespace

bool ReadConformanceFile(std::string_view text, std::vector<ConformanceCase>& cases, ConformanceError& error) {
    Reader reader(cases, error.message);
    error.line = 0;
    while (!text.empty()) {
        const std::size_t lineBreak = text.find('\n');
        std::string_view line = text.substr(0, lineBreak);
        text.remove_prefix(lineBreak == std::string_view::npos ? text.size() : lineBreak + 1);
        if (!line.empty() && line.back() == '\r') { // a checkout with the line breaks of Windows
            line.remove_suffix(1);
        }
        if (!reader.ReadLine(line, ++error.line)) {
            return false;
        }
    }
    return reader.Finish();
}

} // namespace OrvUQL::Tool
