// What a query is evaluated with.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include "ComObject.h"
#include "LimitSettings.h"

#include <optional>
#include <string>
#include <vector>

namespace OrvUQL::Tool {

/// A member of the variable that the command line gives on its own.
struct NamedArgument {
    std::string name;
    std::string value; ///< a text, or JSON
    bool isJson = false;
};

struct EngineSettings {
    /// Pixels in a kilometre for the catalogue of lengths; nothing: no catalogue.
    std::optional<double> resolution;
    int precision = 0;                              ///< see QueryEngine::SetUnitPrecision
    bool hasGlobals = true;                         ///< the global functions
    std::optional<std::string> propertySource;      ///< JSON
    std::optional<std::string> variable;            ///< JSON
    std::optional<std::string> propertySourceClass; ///< instead, the program ID of an automation object
    std::optional<std::string> variableClass;       ///< likewise
    std::vector<NamedArgument> arguments;           ///< instead, the members of an object
    LimitSettings limits;                           ///< of each evaluation
    bool releasesKept = true;                       ///< see QueryEngine::SetReleaseKeptReferences
};

/// Prepares a new engine. Automation objects are made in `apartment`, which has to outlive the engine. False with the
/// reason in `error` if one of the JSON texts is none or one of the objects cannot be made.
bool PrepareEngine(QueryEngine& engine, const EngineSettings& settings, ComApartment& apartment, std::string& error);

} // namespace OrvUQL::Tool
