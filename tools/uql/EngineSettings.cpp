#include "EngineSettings.h"

#include "JsonListObject.h"
#include "JsonReader.h"
#include "Ref.h"

#include <new>
#include <utility>

namespace OrvUQL::Tool {

namespace {

/// What the settings give for one of the two, or null. False with the reason in `error`.
bool MakeObject(const std::optional<std::string>& json, const std::optional<std::string>& className,
                ComApartment& apartment, Ref<IObject>& object, std::string& error) {
    if (json) {
        JsonError jsonError;
        object = JsonReader().Read(*json, jsonError);
        if (!object) {
            error = DescribeJsonError(jsonError, *json);
        }
    } else if (className) {
        object = apartment.Create(*className, error);
    } else {
        return true;
    }
    return static_cast<bool>(object);
}

/// An object whose members are the arguments. Null with the reason in `error`.
Ref<IObject> MakeArguments(const std::vector<NamedArgument>& arguments, std::string& error) {
    std::vector<OrvStringT> names;
    ObjectList values;
    for (const NamedArgument& argument : arguments) {
        names.push_back(OrvStringT::FromUtf8(argument.name));
        Ref<IObject> value;
        if (argument.isJson) {
            JsonError jsonError;
            value = JsonReader().Read(argument.value, jsonError);
            if (!value) {
                error = "the argument '" + argument.name + "': " + DescribeJsonError(jsonError, argument.value);
                return value;
            }
        } else {
            value = Ref<IObject>(new ObjectString(OrvStringT::FromUtf8(argument.value)));
        }
        values.push_back(value.Get());
        value.Detach();
    }
    return Ref<IObject>(new JsonListObject(Ref<JsonKeys>(new JsonKeys(names)), std::move(values)));
}

} // namespace

bool PrepareEngine(QueryEngine& engine, const EngineSettings& settings, ComApartment& apartment, std::string& error) {
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
    engine.SetReleaseKeptReferences(settings.releasesKept);
    if (settings.limits.HasAny()) {
        engine.SetLimits(settings.limits.MakeLimits());
    }
    Ref<IObject> propertySource;
    if (!MakeObject(settings.propertySource, settings.propertySourceClass, apartment, propertySource, error)) {
        error = "the property source: " + error;
        return false;
    }
    engine.SetPropertySource(propertySource.Get());
    Ref<IObject> variable;
    if (!MakeObject(settings.variable, settings.variableClass, apartment, variable, error)) {
        error = "the variable: " + error;
        return false;
    }
    if (!settings.arguments.empty()) {
        variable = MakeArguments(settings.arguments, error);
        if (!variable) {
            return false;
        }
    }
    engine.SetVariable(variable.Get());
    return true;
}

} // namespace OrvUQL::Tool
