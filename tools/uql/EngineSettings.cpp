#include "EngineSettings.h"

#include "JsonReader.h"
#include "Ref.h"

#include <new>

namespace OrvUQL::Tool {

bool PrepareEngine(QueryEngine& engine, const EngineSettings& settings, std::string& error) {
    if (settings.hasGlobals) {
        const Ref<ObjectGlobal> global(new ObjectGlobal());
        engine.SetGlobal(global.Get());
    }
    if (settings.resolution) {
        const Ref<LinearDimensionUnits> lengths(new LinearDimensionUnits(*settings.resolution));
        if (!engine.AddUnitFactory(lengths.Get())) {
            throw std::bad_alloc();
        }
    }
    engine.SetUnitPrecision(settings.precision);
    JsonReader reader;
    JsonError jsonError;
    if (settings.propertySource) {
        const Ref<IObject> value = reader.Read(*settings.propertySource, jsonError);
        if (!value) {
            error = "the property source: " + DescribeJsonError(jsonError, *settings.propertySource);
            return false;
        }
        engine.SetPropertySource(value.Get());
    }
    if (settings.variable) {
        const Ref<IObject> value = reader.Read(*settings.variable, jsonError);
        if (!value) {
            error = "the variable: " + DescribeJsonError(jsonError, *settings.variable);
            return false;
        }
        engine.SetVariable(value.Get());
    }
    return true;
}

} // namespace OrvUQL::Tool
