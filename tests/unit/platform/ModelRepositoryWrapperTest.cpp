#include <gtest/gtest.h>

#include "ModelRepositoryWrapper.h"
#include "PmAttributeLookup.h"
#include "PmEngine.h"

namespace VorTest {
namespace {

/// The repository of the engine, with operations that a test may replace.
struct ModelRepositoryWrapperTest : testing::Test {
    ModelRepositoryWrapperTest() {
        VorOamSpiModelRepository_2& repository = engine.repository.table();
        classQuery = *std::exchange(repository.classQuery, &classQuery);
        attributeQuery = *std::exchange(repository.attributeQuery, &attributeQuery);
    }
    static bool find() { return VorPm::attributeExists(capabilitiesDn.c_str(), "none"); }

    PmEngine engine;
    VorOamSpiClassQuery_2 classQuery;
    VorOamSpiAttributeQuery_2 attributeQuery;
};

}  // namespace

TEST_F(ModelRepositoryWrapperTest, ThrowsWhenTheFirstAttributeIsRefused) {
    classQuery.getFirstAttribute = [](auto, auto*) { return KelReturnT{9}; };
    EXPECT_THROW(find(), Vor::VorException);
}

TEST_F(ModelRepositoryWrapperTest, ThrowsWhenTheNextAttributeIsRefused) {
    static int calls = 0;
    attributeQuery.getNextAttribute = [](auto, auto*) {
        return KelReturnT{++calls == 1 ? 9 : VorReturnAbsent};
    };
    EXPECT_THROW(find(), Vor::VorException);
}

TEST_F(ModelRepositoryWrapperTest, ThrowsWhenANameIsRefused) {
    attributeQuery.getName = [](auto, auto*) { return KelReturnT{9}; };
    EXPECT_THROW(find(), Vor::VorException);
}

TEST_F(ModelRepositoryWrapperTest, TakesAMissingNameForAnEmptyOne) {
    attributeQuery.getName = [](auto, auto* name) { return *name = nullptr, KelReturnT{0}; };
    EXPECT_FALSE(find());
}

}  // namespace VorTest
