// Results as text.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <string>

namespace OrvUQL::Tool {

enum class OutputFormat {
    Text,  ///< the value's text
    Typed, ///< the name of its type, a tab, its text
    Json,
};

/// Writes values in one format, one a line.
class Printer {
public:
    /// With `toTerminal` a carriage return without a line feed, as help listings have it, is shown as a line break: a
    /// terminal would write each line over the one before.
    Printer(OutputFormat outputFormat, bool toTerminal) : format(outputFormat), isTerminal(toTerminal) {}

    /// Appends the value and a line feed. False, with nothing appended, if the value has no text.
    bool Append(std::string& out, const IObject& value, IError** err) const;

private:
    void AppendText(std::string& out, const OrvStringT& text) const;

    OutputFormat format;
    bool isTerminal;
};

} // namespace OrvUQL::Tool
