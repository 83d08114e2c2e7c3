#include "framework/ComponentLibrary.h"

#include <dlfcn.h>

#include "InputError.h"

namespace VorNode {

ComponentLibrary::ComponentLibrary(const std::string& path)
    : _handle(::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (_handle == nullptr) {
        throw InputError(std::string(::dlerror()) + "; name the component's library with --library");
    }
    _init = reinterpret_cast<KelLcmInitT>(entryPoint(path, "kelLCMinit"));
    _terminate = reinterpret_cast<KelLcmTerminateT>(entryPoint(path, "kelLCMterminate"));
}

ComponentLibrary::~ComponentLibrary() {
    if (_initialised) {
        _terminate();
    }
}

KelReturnT ComponentLibrary::init(KelMgmtSpiPortalAccessor& accessor, const std::string& configPath) {
    _initialised = true;
    return _init(&accessor, configPath.c_str());
}

void* ComponentLibrary::entryPoint(const std::string& path, const char* name) const {
    void* address = ::dlsym(_handle.get(), name);
    if (address == nullptr) {
        throw InputError(
            path, 0, std::string("no entry point ") + name + "; name the component's library with --library");
    }
    return address;
}

void ComponentLibrary::Unloader::operator()(void* handle) const {
    ::dlclose(handle);
}

}  // namespace VorNode
