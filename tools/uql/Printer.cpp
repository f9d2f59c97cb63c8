#include "Printer.h"

#include "JsonWriter.h"
#include "Utf8.h"

namespace OrvUQL::Tool {

bool Printer::Append(std::string& out, const IObject& value, IError** err) const {
    if (format == OutputFormat::Json) {
        AppendJson(out, value);
        out += '\n';
        return true;
    }
    OrvStringT text;
    if (!value.ToString(text, err)) {
        return false;
    }
    if (format == OutputFormat::Typed) {
        AppendUtf8(out, value.GetTypeName());
        out += '\t';
    }
    AppendText(out, text);
    out += '\n';
    return true;
}

void Printer::AppendText(std::string& out, const OrvStringT& text) const {
    const std::size_t begin = out.size();
    AppendUtf8(out, text);
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
