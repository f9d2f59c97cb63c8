// What a query is evaluated with.
#pragma once

#include <OrvUQL/OrvUQL.h>

#include <optional>
#include <string>

namespace OrvUQL::Tool {

struct EngineSettings {
    /// Pixels in a kilometre for the catalogue of lengths; nothing: no catalogue.
    std::optional<double> resolution;
    int precision = 0;                         ///< see QueryEngine::SetUnitPrecision
    bool hasGlobals = true;                    ///< the global functions
    std::optional<std::string> propertySource; ///< JSON
    std::optional<std::string> variable;       ///< JSON
};

/// Prepares a new engine. False with the reason in `error` if one of the JSON texts is none.
bool PrepareEngine(QueryEngine& engine, const EngineSettings& settings, std::string& error);

} // namespace OrvUQL::Tool
