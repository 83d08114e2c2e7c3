#include <gtest/gtest.h>

#include "PmReportNames.h"

namespace VorTest {

TEST(PmReportNames, HaveNoLetterInTheirTimes) {
    const std::string name = "A20170305.0000-0015_M.xml";
    EXPECT_TRUE(VorPm::isValidROPFileName(name));
    for (const char letter : {'A', 'Z', 'a', 'z'})
        for (const std::size_t place : {1U, 8U, 10U, 18U}) {
            std::string other = name;
            other[place] = letter;
            EXPECT_FALSE(VorPm::isValidROPFileName(other)) << other;
        }
}

}  // namespace VorTest
