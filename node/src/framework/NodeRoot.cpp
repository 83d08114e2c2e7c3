#include "framework/NodeRoot.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "InputError.h"

namespace VorNode {

namespace fs = std::filesystem;

namespace {

constexpr mode_t lockFileMode = 0640;

bool isOnSearchPath(const char* command, const std::string& searchPath) {
    std::istringstream folders(searchPath);
    for (std::string folder; std::getline(folders, folder, ':');) {
        if (::access((fs::path(folder) / command).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

}  // namespace

NodeRoot::NodeRoot(const fs::path& path) {
    std::error_code unusable;
    _path = fs::absolute(path, unusable).lexically_normal();
    if (unusable) {
        throw InputError("--root '" + path.string() + "' is no path; name a folder of your own");
    }
    for (const fs::path& folder : {_path / "internal", _path / "no-backup"}) {
        std::error_code fault;
        fs::create_directories(folder, fault);
        if (fault) {
            throw InputError(
                folder.string(), 0,
                "cannot be created: " + fault.message() + "; name a folder of your own with --root");
        }
    }
    const fs::path lockFile = _path / ".lock";
    _lock = ::open(lockFile.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, lockFileMode);
    if (_lock < 0) {
        throw InputError(lockFile.string(), 0,
                         std::string("cannot be opened: ") + std::strerror(errno) +
                             "; name a folder of your own with --root");
    }
    if (::flock(_lock, LOCK_EX | LOCK_NB) != 0) {
        const int reason = errno;
        ::close(_lock);
        throw InputError(_path.string(), 0,
                         reason == EWOULDBLOCK
                             ? "another node runs on this root; stop it, or name another root with --root"
                             : std::string("cannot be locked: ") + std::strerror(reason));
    }
}

NodeRoot::~NodeRoot() {
    ::close(_lock);
}

void NodeRoot::serveQueries(const fs::path& ownCommandFolder) const {
    ::setenv("VOR_NODE_ROOT", _path.c_str(), 1);
    const char* set = std::getenv("PATH");
    const std::string searchPath = set != nullptr ? set : "";
    if (!isOnSearchPath("vorea", searchPath)) {
        ::setenv("PATH", (searchPath + (searchPath.empty() ? "" : ":") + ownCommandFolder.string()).c_str(),
                 1);
    }
}

}  // namespace VorNode
