// Translated texts for hosts. The library's own messages are built-in English and do not pass through here.
#pragma once

#include "OrvUQL/OrvString.h"

namespace OrvUQL {

/// Finds the language resource module "OrvUQLIntl.dll" and texts in it. A host plugs its resource system in, before
/// the first call of IResourceManager::GetInst(); until then there are no texts.
struct ResourceProvider {
    /// The module of that name for the user's language, or null.
    void* (*loadModule)(const wchar_t* moduleName) = nullptr;
    /// The text of a component's message, empty if there is none.
    OrvStringT (*getText)(void* module, const wchar_t* component, int id) = nullptr;
};

/// Gives access to translated texts by number.
class ORVUQL_API IResourceManager {
public:
    /// The process-wide instance, made on the first call; safe to call from several threads.
    static const IResourceManager& GetInst();
    /// Sets what the instance asks. To be called before the first GetInst().
    static void SetProvider(const ResourceProvider& provider);

    /// The text for message `id`, or the empty text.
    virtual OrvStringT GetString(int id) const = 0;

protected:
    virtual ~IResourceManager() = default;
};

} // namespace OrvUQL
