#pragma once

#include <Poco/Bugcheck.h>

namespace VorNode {

/// Base of a service whose operations are plain function pointers: they reach the one object that lives
/// through `current()`. The object is made before the component is loaded and outlives it.
template <class ServiceT>
class Service {
  public:
    Service(const Service&) = delete;
    Service& operator=(const Service&) = delete;

    static ServiceT& current() {
        poco_assert(_current != nullptr);
        return *_current;
    }

  protected:
    Service() {
        poco_assert(_current == nullptr);
        _current = static_cast<ServiceT*>(this);
    }
    ~Service() { _current = nullptr; }

  private:
    inline static ServiceT* _current = nullptr;
};

}  // namespace VorNode
