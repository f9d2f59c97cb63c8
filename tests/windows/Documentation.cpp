// The pieces of code in docs/windows.md as one program. Their lines keep their numbers.

#include <OrvUQL/OrvUQL.h>

#include <cstdio>
#include <objbase.h>

#include <windows.h>

#include <oleauto.h>

using namespace OrvUQL;

namespace {

void Print(QueryEngine& engine, const wchar_t* text) {
    IError* error = nullptr;
    IQueryElement* const query = engine.ParseQuery(text, &error);
    IObject* const value = query != nullptr ? engine.Evaluate(query, &error) : nullptr;
    OrvStringT result;
    if (value != nullptr && value->ToString(result, &error)) {
        std::printf("%s\n", result.ToUtf8().c_str());
    } else if (error != nullptr) {
        std::printf("%s\n", error->GetMessageW().ToUtf8().c_str());
    }
    for (IRefCountObject* const object : {static_cast<IRefCountObject*>(error), static_cast<IRefCountObject*>(value),
                                          static_cast<IRefCountObject*>(query)}) {
        if (object != nullptr) {
            object->Release();
        }
    }
}

} // namespace

int main() {
#include "WindowsMain.inc"
}
