#include "framework/OpenFiles.h"

#include <algorithm>

#include <sys/resource.h>

namespace VorNode {

void raiseOpenFilesLimit() {
    constexpr rlim_t enough = 65'536;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = std::max(limit.rlim_cur, std::min(limit.rlim_max, enough));
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

}  // namespace VorNode
