#include "app/Notice.h"

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <vector>

#include <poll.h>
#include <sys/eventfd.h>

namespace VorNode {

Notice::Notice() : _event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!_event.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "no descriptor for waiting");
    }
}

void Notice::set() {
    ::eventfd_write(_event.number(), 1);
}

void Notice::clear() {
    std::uint64_t ignored = 0;
    ::eventfd_read(_event.number(), &ignored);
}

void waitForAny(std::initializer_list<int> descriptors, std::optional<std::chrono::milliseconds> longest) {
    std::vector<pollfd> waits;
    for (const int descriptor : descriptors) {
        waits.push_back({descriptor, POLLIN, 0});
    }
    ::poll(waits.data(), waits.size(), longest ? static_cast<int>(longest->count()) : -1);
}

bool canBeRead(int descriptor) {
    pollfd wait{descriptor, POLLIN, 0};
    return ::poll(&wait, 1, 0) > 0;
}

}  // namespace VorNode
