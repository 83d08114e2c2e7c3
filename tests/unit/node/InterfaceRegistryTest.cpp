#include <gtest/gtest.h>

#include "framework/InterfaceRegistry.h"

namespace VorNode {

TEST(InterfaceRegistry, FindsByThePartsThatAreNamed) {
    InterfaceRegistry registry;
    KelMgmtSpiInterface_1 first{"C", "I", "1"}, second{"C", "I", "2"}, nameless{nullptr, "J", "1"};
    for (KelMgmtSpiInterface_1* offered : {&first, &second, &nameless})
        registry.offer(*offered);
    const struct {
        KelMgmtSpiInterface_1 wanted;
        KelMgmtSpiInterface_1* found;
    } rows[] = {{{"C", "I", "2"}, &second},    {{nullptr, "I", "2"}, &second},
                {{"C", "I", nullptr}, &first}, {{nullptr, "J", nullptr}, &nameless},
                {{"C", "J", "1"}, nullptr},    {{"C", "I", "3"}, nullptr},
                {{"D", "I", "1"}, nullptr},    {{"C", "K", "1"}, nullptr}};
    for (const auto& [wanted, found] : rows) {
        KelMgmtSpiInterface_1* interface = &first;
        EXPECT_EQ(InterfaceRegistry::lookUp(&wanted, &interface),
                  found != nullptr ? VorReturnOk : VorReturnAbsent);
        EXPECT_EQ(interface, found) << wanted.interfaceName;
    }
    KelMgmtSpiInterface_1* interface = nullptr;
    EXPECT_EQ(InterfaceRegistry::lookUp(nullptr, &interface), VorReturnFailed);
    EXPECT_EQ(InterfaceRegistry::lookUp(&first, nullptr), VorReturnFailed);
}

}  // namespace VorNode
