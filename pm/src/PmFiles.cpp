#include "PmFiles.h"

#include <cerrno>
#include <memory>
#include <system_error>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VorPm {

namespace {

constexpr mode_t newFileMode = 0666;

struct FolderCloser {
    void operator()(DIR* folder) const { ::closedir(folder); }
};

[[noreturn]] void throwErrno() {
    throw std::system_error(errno, std::generic_category());
}

}  // namespace

PmDescriptor::~PmDescriptor() {
    if (isOpen()) {
        const int reason = errno;
        ::close(_descriptor);
        errno = reason;
    }
}

PmDescriptor openRegularFile(const std::string& path, int flags) {
    // The open of a FIFO would wait for its other end.
    PmDescriptor file(::open(path.c_str(), flags | O_NONBLOCK | O_NOFOLLOW | O_CLOEXEC, newFileMode));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return PmDescriptor();
    }
    if (!S_ISREG(status.st_mode)) {
        // What the system answers itself for a socket, or a FIFO that nobody reads.
        errno = ENXIO;
        return PmDescriptor();
    }
    return file;
}

bool isOtherThanFile(const std::string& path) {
    const int reason = errno;
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0 || S_ISREG(status.st_mode)) {
        errno = reason;
        return false;
    }
    errno = S_ISLNK(status.st_mode) ? ELOOP : ENXIO;
    return true;
}

PmDescriptor openFileWithOneName(const std::string& path, int flags) {
    PmDescriptor file = openRegularFile(path, flags);
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return PmDescriptor();
    }
    if (status.st_nlink > 1) {
        errno = EMLINK;
        return PmDescriptor();
    }
    return file;
}

PmDescriptor openFolder(const std::string& path) {
    return PmDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

PmDescriptor openFolderItself(const std::string& path) {
    return PmDescriptor(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::vector<std::string> entriesOf(const PmDescriptor& folder) {
    PmDescriptor twin(::fcntl(folder.get(), F_DUPFD_CLOEXEC, 0));
    const std::unique_ptr<DIR, FolderCloser> listing(::fdopendir(twin.get()));
    if (listing == nullptr) {
        throwErrno();
    }
    twin.release();
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(listing.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
        errno = 0;
    }
    if (errno != 0) {
        throwErrno();
    }
    return names;
}

int removeEntry(const PmDescriptor& folder, const std::string& name) {
    const bool removed = ::unlinkat(folder.get(), name.c_str(), 0) == 0 ||
                         (errno == EISDIR && ::unlinkat(folder.get(), name.c_str(), AT_REMOVEDIR) == 0);
    return removed ? 0 : errno;
}

}  // namespace VorPm
