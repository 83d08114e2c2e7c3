#include <gtest/gtest.h>

#include "ToInt.h"

namespace VorTest {

TEST(ToInt, IsNotMisledByAnErrorBefore) {
    int number = 0;
    errno = ERANGE;
    EXPECT_TRUE(Vor::toInt("5", number));
    EXPECT_EQ(number, 5);
}

TEST(ToInt, TakesTheLimitsOfItsTypeAndNothingBeyond) {
    std::int16_t number = 0;
    EXPECT_TRUE(Vor::toInt("-32768", number));
    EXPECT_EQ(number, -32768);
    EXPECT_TRUE(Vor::toInt("32767", number));
    EXPECT_EQ(number, 32767);
    for (const char* text : {"-32769", "32768", "99999999999999999999"})
        EXPECT_THROW(Vor::toInt(text, number), Vor::ValueRangeException) << text;
    EXPECT_EQ(number, 32767);
}

}  // namespace VorTest
