#pragma once

namespace Vor {

/// Base of a class with one process-wide object, constructed on first use and destroyed at process exit.
/// The class befriends this base and keeps its constructor private.
template <class T>
class Singleton {
  public:
    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

    static T& instance() {
        static T object;
        return object;
    }

  protected:
    Singleton() = default;
    ~Singleton() = default;
};

}  // namespace Vor
