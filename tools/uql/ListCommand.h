// `uql --list`.
#pragma once

#include "Output.h"

#include <optional>
#include <string>

namespace OrvUQL::Tool {

/// What `uql --list` asks for.
struct ListOptions {
    enum EKind { Methods, Functions, Units };

    EKind kind = Methods;
    std::string typeName;             ///< of methods: of this type only; empty: of all types
    std::optional<double> resolution; ///< of units: see LinearDimensionUnits
};

/// Prints the names, one a line. Returns the exit status: 0, or 2 if there is no type of that name.
int RunList(const ListOptions& options, Output& output);

} // namespace OrvUQL::Tool
