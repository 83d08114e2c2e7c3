#include "ExtCmInterceptorRepository.h"

#include <utility>

namespace VorExtCmRouterService {

ExtCmInterceptorRepository& ExtCmInterceptorRepository::instance() {
    static ExtCmInterceptorRepository repository;
    return repository;
}

KelReturnT ExtCmInterceptorRepository::registerClass(MoInterceptorBase& interceptor,
                                                     const std::string& classPath) {
    const auto unused = std::make_shared<Poco::Event>();
    const auto signalUnused = [unused](MoInterceptorBase*) { unused->set(); };
    Registration registration{{&interceptor, signalUnused}, unused};
    Poco::FastMutex::ScopedLock lock(_mutex);
    const bool isFirst = _registrations.try_emplace(classPath, std::move(registration)).second;
    return isFirst ? VorReturnOk : VorReturnFailed;
}

void ExtCmInterceptorRepository::deregisterClass(const std::string& classPath) {
    Registration registration;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        const auto found = _registrations.find(classPath);
        if (found == _registrations.end()) {
            return;
        }
        registration = std::move(found->second);
        _registrations.erase(found);
    }
    registration.interceptor.reset();
    registration.unused->wait();
}

std::shared_ptr<MoInterceptorBase> ExtCmInterceptorRepository::find(const std::string& classPath) const {
    Poco::FastMutex::ScopedLock lock(_mutex);
    const auto found = _registrations.find(classPath);
    return found != _registrations.end() ? found->second.interceptor : nullptr;
}

}  // namespace VorExtCmRouterService
