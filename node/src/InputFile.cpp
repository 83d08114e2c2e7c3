#include "InputFile.h"

#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Descriptor.h"
#include "InputError.h"

namespace VorNode {

namespace {

constexpr off_t largest = off_t{64} * 1024 * 1024;

[[noreturn]] void refuseUnreadable(const std::string& path, const std::string& kind) {
    throw InputError(path, 0,
                     "cannot be read (" + std::generic_category().message(errno) + "); give the path of " +
                         kind + " that can be read");
}

/// The opening of a FIFO must not wait for its writer.
Descriptor openRegular(const std::string& path, const std::string& kind, off_t& size) {
    Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.number(), &status) != 0) {
        refuseUnreadable(path, kind);
    }
    if (!S_ISREG(status.st_mode)) {
        throw InputError(path, 0, "is not a regular file; give the path of " + kind);
    }
    if (status.st_size > largest) {
        throw InputError(
            path, 0,
            "has " + std::to_string(status.st_size) + " bytes; give the path of a file of 64 MiB at most");
    }
    size = status.st_size;
    return file;
}

}  // namespace

std::string readInputFile(const std::string& path, const std::string& kind) {
    off_t size = 0;
    const Descriptor file = openRegular(path, kind, size);
    std::string text(static_cast<std::size_t>(size), '\0');
    std::size_t filled = 0;
    while (filled < text.size()) {
        const ssize_t bytes = ::read(file.number(), text.data() + filled, text.size() - filled);
        if (bytes < 0 && errno != EINTR) {
            refuseUnreadable(path, kind);
        }
        if (bytes == 0) {
            break;
        }
        filled += bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
    }
    text.resize(filled);
    return text;
}

}  // namespace VorNode
