// A host whose resource system has no module for the user's language. A program of its own, like the test of a host
// that has one.

#include <OrvUQL/OrvUQL.h>

#include "support/Print.h"

#include <gtest/gtest.h>

namespace OrvUQL::Tests {
namespace {

int loads = 0;
int lookUps = 0;

void* LoadNothing(const wchar_t*) {
    ++loads;
    return nullptr;
}

OrvStringT GetText(void*, const wchar_t*, int) {
    ++lookUps;
    return OrvStringT(L"text");
}

TEST(ResourceModuleMissing, GivesEmptyTextsAndAsksForNone) {
    ResourceProvider provider;
    provider.loadModule = LoadNothing;
    provider.getText = GetText;
    IResourceManager::SetProvider(provider);
    EXPECT_EQ(IResourceManager::GetInst().GetString(1), L"");
    EXPECT_EQ(IResourceManager::GetInst().GetString(2), L"");
    EXPECT_EQ(loads, 1) << "a module that is missing is not looked for again";
    EXPECT_EQ(lookUps, 0);
}

} // namespace
} // namespace OrvUQL::Tests
