#include "Printer.h"

#include "JsonWriter.h"

#include <charconv>

namespace OrvUQL::Tool {

bool Printer::Append(std::string& out, const IObject& value, IError** err) const {
    if (format == OutputFormat::Json) {
        OrvStringT json;
        AppendJson(json, value);
        out += json.ToUtf8();
        out += '\n';
        return true;
    }
    OrvStringT text;
    if (!value.ToString(text, err)) {
        return false;
    }
    if (format == OutputFormat::Typed) {
        out += value.GetTypeName().ToUtf8();
        out += '\t';
    }
    AppendText(out, text);
    out += '\n';
    return true;
}

void Printer::AppendText(std::string& out, const OrvStringT& text) const {
    const std::size_t begin = out.size();
    out += text.ToUtf8();
    if (!isTerminal) {
        return;
    }
    for (std::size_t place = out.find('\r', begin); place != std::string::npos; place = out.find('\r', place + 1)) {
        if (place + 1 == out.size() || out[place + 1] != '\n') {
            out[place] = '\n';
        }
    }
}

} // namespace OrvUQL::Tool
