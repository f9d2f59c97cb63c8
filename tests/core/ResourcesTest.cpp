// Translated texts where no host has offered any.

#include <OrvUQL/OrvUQL.h>

#include "support/Print.h"

#include <gtest/gtest.h>

#include <limits>

namespace OrvUQL::Tests {
namespace {

TEST(Resources, AreOneInstance) { EXPECT_EQ(&IResourceManager::GetInst(), &IResourceManager::GetInst()); }

TEST(Resources, AreEmptyWithoutAModule) {
    for (const int id : {0, 1, 2, 100, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        EXPECT_EQ(IResourceManager::GetInst().GetString(id), L"") << id;
    }
}

} // namespace
} // namespace OrvUQL::Tests
