// Result codes and the identity record that every service interface begins with.
#pragma once

#include <stdint.h>

/// Result of a platform operation: 0 success, -1 failure, -2 something absent; other codes belong to the
/// service.
typedef int32_t KelReturnT;
typedef KelReturnT VorReturnT;

enum { VorReturnOk = 0, VorReturnFailed = -1, VorReturnAbsent = -2 };

/// Identity of a service interface, and the header of every service's table of operations. All texts are
/// NUL-terminated and live as long as the service. A null component name or version matches any in a look-up.
struct KelMgmtSpiInterface_1 {
    const char* componentName;
    const char* interfaceName;
    const char* interfaceVersion;
};
static_assert(sizeof(KelMgmtSpiInterface_1) == 3 * sizeof(void*), "every table begins with three texts");
