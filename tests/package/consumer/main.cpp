// Parses and evaluates one query, prints its value, and reports failure by the exit status.
#include <OrvUQL/OrvUQL.h>

#include <cstdio>

using namespace OrvUQL;

int main() {
    QueryEngine engine;
    IObject* global = new ObjectGlobal;
    engine.SetGlobal(global);
    global->Release();

    OrvStringT text;
    IError* error = nullptr;
    if (IQueryElement* query = engine.ParseQuery(L"max(2, 3) * (3 + 4)", &error)) {
        if (IObject* value = engine.Evaluate(query, &error)) {
            value->ToString(text, &error);
            value->Release();
        }
        query->Release();
    }
    if (error != nullptr) {
        std::printf("%s\n", error->GetMessageW().ToUtf8().c_str());
        error->Release();
    }
    std::printf("%s\n", text.ToUtf8().c_str());
    return text == L"21" ? 0 : 1;
}
