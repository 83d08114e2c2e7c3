#pragma once

namespace VorTest {

/// Makes one allocation of the thread fail, the one after so many others, unless the object is gone before.
class FailingMemory {
  public:
    explicit FailingMemory(int allocationsBefore);
    ~FailingMemory();
    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
};

}  // namespace VorTest
