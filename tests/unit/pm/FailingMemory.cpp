#include "FailingMemory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local int allocationsLeft = -1;

}  // namespace

void* operator new(std::size_t size) {
    const bool fails = allocationsLeft >= 0 && allocationsLeft-- == 0;
    void* const memory = fails ? nullptr : std::malloc(size);
    return memory != nullptr ? memory : throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept {
    std::free(memory);
}

namespace VorTest {

FailingMemory::FailingMemory(int allocationsBefore) {
    allocationsLeft = allocationsBefore;
}

FailingMemory::~FailingMemory() {
    allocationsLeft = -1;
}

}  // namespace VorTest
