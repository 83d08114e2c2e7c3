#include <gtest/gtest.h>

#include "AutoMemory.h"

namespace VorTest {

TEST(AutoMemory, DestroysItsObjectsWhenItIsReleased) {
    struct Counted {
        explicit Counted(int& living) : count(living) { ++count; }
        Counted(const Counted& other) : count(other.count) { ++count; }
        ~Counted() { --count; }
        int& count;
    };
    int living = 0;
    Vor::AutoMemory memory;
    memory.create<Counted>(living);
    memory.create<Counted>(living);
    EXPECT_EQ(living, 2);
    memory.release();
    EXPECT_EQ(living, 0);
}

}  // namespace VorTest
