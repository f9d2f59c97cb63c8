// The smallest host: one query, from text to value.
#include <OrvUQL/OrvUQL.h>

#include <cstdio>

int main() {
    using namespace OrvUQL;
    QueryEngine engine;
    IObject* functions = new ObjectGlobal; // max, sqrt, iif, ...
    engine.SetGlobal(functions);           // the engine takes a reference of its own
    functions->Release();

    IError* error = nullptr;
    OrvStringT text;
    if (IQueryElement* query = engine.ParseQuery(L"max(2, 3) * (3 + 4)", &error)) {
        if (IObject* value = engine.Evaluate(query, &error)) {
            if (value->ToString(text, &error))
                std::printf("%s\n", text.ToUtf8().c_str()); // 21
            value->Release();
        }
        query->Release();
    }
    if (error != nullptr) {
        std::fprintf(stderr, "%s\n", error->GetMessageW().ToUtf8().c_str());
        error->Release();
        return 1;
    }
}
