// A file descriptor that is closed with its owner.
#pragma once

#include <utility>

#include <unistd.h>

namespace VorNode {

/// Owns a descriptor, or none: a negative number, as a failed call leaves it.
class Descriptor {
  public:
    explicit Descriptor(int number = -1) : _number(number) {}
    Descriptor(Descriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(_number, other._number);
        return *this;
    }
    ~Descriptor() { close(); }

    int number() const { return _number; }
    bool isOpen() const { return _number >= 0; }

    void close() {
        if (isOpen()) {
            ::close(std::exchange(_number, -1));
        }
    }

  private:
    int _number;
};

}  // namespace VorNode
