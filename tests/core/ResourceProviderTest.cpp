// Translated texts of a host. The instance asks for its module once in the life of a process, so this is a program of
// its own with one test.

#include <OrvUQL/OrvUQL.h>

#include "support/Print.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <vector>

namespace OrvUQL::Tests {
namespace {

std::atomic<int> loads = 0;
std::atomic<int> lookUps = 0;
std::string loadedName;
int module = 0;

void* LoadModule(const wchar_t* name) {
    ++loads;
    loadedName = Utf8(name);
    return &module;
}

OrvStringT GetText(void* asked, const wchar_t* component, int id) {
    ++lookUps;
    EXPECT_EQ(asked, &module);
    EXPECT_EQ(Utf8(component), "OrvUQL");
    return id == 7 ? OrvStringT(L"sieben") : OrvStringT();
}

TEST(ResourceProvider, IsAskedForItsModuleOnceAndForEachText) {
    ResourceProvider provider;
    provider.loadModule = LoadModule;
    provider.getText = GetText;
    IResourceManager::SetProvider(provider);
    EXPECT_EQ(loads, 0) << "nothing is loaded before it is wanted";

    std::vector<std::thread> threads;
    std::vector<const IResourceManager*> instances(8);
    for (const IResourceManager*& instance : instances) {
        threads.emplace_back([&instance] { instance = &IResourceManager::GetInst(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (const IResourceManager* instance : instances) {
        EXPECT_EQ(instance, &IResourceManager::GetInst());
    }
    EXPECT_EQ(loads, 1);
    EXPECT_EQ(loadedName, "OrvUQLIntl.dll");

    EXPECT_EQ(IResourceManager::GetInst().GetString(7), L"sieben");
    EXPECT_EQ(IResourceManager::GetInst().GetString(8), L"");
    EXPECT_EQ(lookUps, 2);
    EXPECT_EQ(loads, 1);
}

} // namespace
} // namespace OrvUQL::Tests
