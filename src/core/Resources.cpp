#include "OrvUQL/Resources.h"

namespace OrvUQL {

namespace {

ResourceProvider& Provider() noexcept {
    static ResourceProvider provider;
    return provider;
}

class WUQLResourceManager final : public IResourceManager {
public:
    WUQLResourceManager()
        : module(Provider().loadModule == nullptr ? nullptr : Provider().loadModule(L"OrvUQLIntl.dll")) {}

    OrvStringT GetString(int id) const override {
        if (module == nullptr || Provider().getText == nullptr) {
            return OrvStringT();
        }
        return Provider().getText(module, L"OrvUQL", id);
    }

private:
    void* module;
};

} // namespace

const IResourceManager& IResourceManager::GetInst() {
    static const WUQLResourceManager instance;
    return instance;
}

void IResourceManager::SetProvider(const ResourceProvider& provider) { Provider() = provider; }

} // namespace OrvUQL
