#include <gtest/gtest.h>

#include "Portal.h"

namespace VorTest {
namespace {

int lookUps = 0;
KelReturnT code = VorReturnOk;
VorOamSpiModelRepository repository{};

KelReturnT lookUp(const KelMgmtSpiInterface_1* /*identifier*/, KelMgmtSpiInterface_1** interface) {
    ++lookUps;
    *interface = code == VorReturnOk ? &repository.identity : nullptr;
    return code;
}

}  // namespace

TEST(Portal, LooksForTheModelRepositoryUntilItIsThere) {
    Vor::Portal& portal = Vor::Portal::instance();
    portal.connect(&lookUp);
    code = VorReturnAbsent;
    EXPECT_EQ(portal.modelRepository(), nullptr);
    code = VorReturnOk;
    EXPECT_EQ(portal.modelRepository(), &repository);
    EXPECT_EQ(portal.modelRepository(), &repository);
    EXPECT_EQ(lookUps, 2);
    portal.connect(nullptr);
    EXPECT_EQ(portal.modelRepository(), nullptr) << "it was that platform's";
    portal.connect(&lookUp);
    EXPECT_EQ(portal.modelRepository(), &repository) << "it is there again";
}

TEST(Portal, FindsNothingWithoutAPlatform) {
    KelMgmtSpiInterface_1* interface = nullptr;
    EXPECT_EQ(Vor::Portal::instance().find({nullptr, "I", "1"}, &interface), VorReturnAbsent);
}

}  // namespace VorTest
