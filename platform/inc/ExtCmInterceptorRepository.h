#pragma once

#include <map>
#include <memory>
#include <string>

#include <Poco/Event.h>
#include <Poco/Mutex.h>

#include "VorSpiTypes.h"

namespace VorExtCmRouterService {

class MoInterceptorBase;

/// The interceptors of managed-object classes. Process-wide; any thread. An interceptor belongs to whoever
/// registers it, and stays until it is deregistered.
class ExtCmInterceptorRepository {
  public:
    static ExtCmInterceptorRepository& instance();

    ExtCmInterceptorRepository(const ExtCmInterceptorRepository&) = delete;
    ExtCmInterceptorRepository& operator=(const ExtCmInterceptorRepository&) = delete;

    /// Requests of clients for objects of the class, given by its containment path, go to the interceptor
    /// from now on. 0, or -1 when the class has one already.
    KelReturnT registerClass(MoInterceptorBase& interceptor, const std::string& classPath);

    /// Returns when the requests in flight have ended; none comes after that. By the interceptor's owner, and
    /// not from inside a request. Does nothing for a class without interceptor.
    void deregisterClass(const std::string& classPath);

    /// The interceptor of the class for one request, which is in flight for as long as the pointer is held;
    /// null when there is none.
    std::shared_ptr<MoInterceptorBase> find(const std::string& classPath) const;

  private:
    struct Registration {
        /// Its last owner signals `unused`.
        std::shared_ptr<MoInterceptorBase> interceptor;
        std::shared_ptr<Poco::Event> unused;
    };

    ExtCmInterceptorRepository() = default;

    /// Guards the registrations.
    mutable Poco::FastMutex _mutex;
    std::map<std::string, Registration> _registrations;
};

}  // namespace VorExtCmRouterService
