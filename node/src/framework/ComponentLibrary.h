#pragma once

#include <memory>
#include <string>

#include "VorMgmtSpiPortal.h"

namespace VorNode {

/// The component's shared library, loaded as long as the object lives, and terminated at its end. The
/// framework's thread.
class ComponentLibrary {
  public:
    /// Throws `InputError` when the file is no library with the two entry points.
    explicit ComponentLibrary(const std::string& path);

    ~ComponentLibrary();
    ComponentLibrary(const ComponentLibrary&) = delete;
    ComponentLibrary& operator=(const ComponentLibrary&) = delete;

    /// The component's own result.
    KelReturnT init(KelMgmtSpiPortalAccessor& accessor, const std::string& configPath);

  private:
    struct Unloader {
        void operator()(void* handle) const;
    };

    void* entryPoint(const std::string& path, const char* name) const;

    std::unique_ptr<void, Unloader> _handle;
    KelLcmInitT _init = nullptr;
    KelLcmTerminateT _terminate = nullptr;
    bool _initialised = false;
};

}  // namespace VorNode
