// A part of a host that is loaded when it is needed, and brings the library's DLL with it.
#include <OrvUQL/OrvUQL.h>

using namespace OrvUQL;

/// The number of distinct texts of three letters, by way of a good many values and texts.
extern "C" __declspec(dllexport) int OrvUQLPluginCount() {
    QueryEngine engine;
    IObject* const functions = new ObjectGlobal;
    engine.SetGlobal(functions);
    functions->Release();
    int count = -1;
    IError* error = nullptr;
    if (IQueryElement* const query = engine.ParseQuery(
            L"array('a', 'b', 'c').Convert(array('d', 'e').Convert($item + $item).Join($item)).Join('-').Length()",
            &error)) {
        if (IObject* const value = engine.Evaluate(query, &error)) {
            value->ToInt(count, &error);
            value->Release();
        }
        query->Release();
    }
    if (error != nullptr) {
        error->Release();
    }
    return count;
}
