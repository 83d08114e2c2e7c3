#include <gtest/gtest.h>

#include "framework/ComponentFramework.h"
#include "framework/InterfaceRegistry.h"

namespace VorNode {
namespace {

struct ComponentFrameworkTest : testing::Test {
    InterfaceRegistry registry;
    ComponentFramework framework{registry};
    const KelMgmtSpiPortalAccessor& accessor = framework.portalAccessor();
    const KelMgmtSpiInterfacePortal_3& portal =
        *static_cast<KelMgmtSpiInterfacePortal_3*>(accessor.getPortal("3"));
    KelMgmtSpiComponent component{}, other{};
};

TEST_F(ComponentFrameworkTest, HoldsOneComponentUntilThatOneUnregisters) {
    EXPECT_EQ(portal.registerComponent(nullptr), VorReturnFailed);
    EXPECT_EQ(portal.unregisterComponent(nullptr), VorReturnAbsent);
    EXPECT_EQ(portal.registerComponent(&component), VorReturnOk);
    EXPECT_EQ(portal.registerComponent(&other), VorReturnFailed);
    EXPECT_EQ(portal.unregisterComponent(&other), VorReturnAbsent);
    EXPECT_TRUE(framework.isRegistered());
    EXPECT_EQ(portal.unregisterComponent(&component), VorReturnOk);
    EXPECT_FALSE(framework.isRegistered());
}

TEST_F(ComponentFrameworkTest, HasPortalsOfTwoVersions) {
    EXPECT_NE(accessor.getPortal("1"), nullptr);
    EXPECT_NE(accessor.getPortal("1"), accessor.getPortal("3"));
    EXPECT_EQ(accessor.getPortal("2"), nullptr);
    EXPECT_EQ(accessor.getPortal(nullptr), nullptr);
}

TEST_F(ComponentFrameworkTest, NamesTheFirstDependencyThatNobodyOffers) {
    KelMgmtSpiInterface_1 offered{"C", "I", "1"}, missing{nullptr, "J", "2"};
    KelMgmtSpiInterface_1* dependencies[] = {&offered, &missing, nullptr};
    component.dependencies = dependencies;
    registry.offer(offered);
    portal.registerComponent(&component);
    EXPECT_EQ(framework.missingDependency(), "(any, J, 2)");
    registry.offer(missing);
    EXPECT_EQ(framework.missingDependency(), std::nullopt);
}

}  // namespace
}  // namespace VorNode
