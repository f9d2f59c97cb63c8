#include "ListCommand.h"

#include "ErrorReport.h"
#include "NameLists.h"
#include "NearestName.h"

#include <algorithm>

namespace OrvUQL::Tool {

namespace {

void AppendLine(std::string& out, std::wstring_view line) { out += OrvStringT(line).ToUtf8() + "\n"; }

void AppendMethods(std::string& out, IObject& value) {
    for (const MethodName& method : ReadMethods(value)) {
        AppendLine(out, method.line.View());
    }
}

/// Functions are called by their bare names.
void AppendFunctions(std::string& out) {
    const Ref<ObjectGlobal> global(new ObjectGlobal());
    const std::size_t prefix = global->GetTypeName().View().size() + 1;
    for (const MethodName& function : ReadMethods(*global)) {
        AppendLine(out, function.line.View().substr(prefix));
    }
}

void AppendUnits(std::string& out, double resolution) {
    const std::vector<UnitName> units = ReadUnits(resolution);
    std::size_t width = 0;
    for (const UnitName& unit : units) {
        width = std::max(width, unit.name.View().size());
    }
    for (const UnitName& unit : units) {
        const std::string name = unit.name.ToUtf8();
        out += name + std::string(width + 2 - name.size(), ' ') + DescribeSize(unit) + "\n";
    }
}

std::string DescribeUnknownType(const std::string& typeName) {
    std::vector<OrvStringT> names;
    for (const Ref<IObject>& sample : MakeSamples()) {
        names.push_back(sample->GetTypeName());
    }
    const OrvStringT* const nearest = FindNearestName(OrvStringT::FromUtf8(typeName), names);
    return FormatMessage("there is no type '" + typeName + "'") +
           FormatSuggestion(nearest == nullptr ? OrvStringT() : *nearest);
}

} // namespace

int RunList(const ListOptions& options, Output& output) {
    std::string text;
    switch (options.kind) {
    case ListOptions::Functions:
        AppendFunctions(text);
        break;
    case ListOptions::Units:
        AppendUnits(text, options.resolution.value_or(0));
        break;
    case ListOptions::Methods:
        if (options.typeName.empty()) {
            for (const Ref<IObject>& sample : MakeSamples()) {
                if (dynamic_cast<const ObjectGlobal*>(sample.Get()) == nullptr) { // whose methods are the functions
                    AppendMethods(text, *sample);
                }
            }
        } else if (const Ref<IObject> sample = MakeSample(OrvStringT::FromUtf8(options.typeName))) {
            AppendMethods(text, *sample);
        } else {
            output.WriteError(DescribeUnknownType(options.typeName));
            return 2;
        }
        break;
    }
    output.Write(text);
    output.Flush();
    return 0;
}

} // namespace OrvUQL::Tool
