#include <gtest/gtest.h>

#include "NameValuePair.h"

namespace VorTest {

TEST(NameValuePair, PointsAtItsOwnTextsAfterAnAssignment) {
    Vor::NameValuePair pair("", "");
    {
        const Vor::NameValuePair other("name", "value");
        pair = other;
        EXPECT_NE(pair.name, other.name);
        EXPECT_NE(pair.value, other.value);
    }
    EXPECT_STREQ(pair.name, "name");
    EXPECT_STREQ(pair.value, "value");
}

}  // namespace VorTest
