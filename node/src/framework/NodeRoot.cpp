#include "framework/NodeRoot.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Descriptor.h"
#include "InputError.h"
#include "framework/QueryCommand.h"
#include "framework/StorageTrial.h"

namespace VorNode {

namespace fs = std::filesystem;

namespace {

constexpr mode_t lockFileMode = 0640;

enum class LockResult { Locked, Held, Failed };

LockResult tryLock(int file) {
    if (::flock(file, LOCK_EX | LOCK_NB) == 0) {
        return LockResult::Locked;
    }
    return errno == EWOULDBLOCK ? LockResult::Held : LockResult::Failed;
}

[[noreturn]] void refuseHeld(const fs::path& root) {
    throw InputError(root.string(), 0,
                     "another node runs on this root; stop it, or name another root with --root");
}

/// Whether the name still stands for the open file: who unlinks a lock file takes the lock along.
bool isNamed(int file, const fs::path& name) {
    struct stat opened {};
    struct stat named {};
    return ::fstat(file, &opened) == 0 && ::stat(name.c_str(), &named) == 0 &&
           opened.st_dev == named.st_dev && opened.st_ino == named.st_ino;
}

/// The lock of the folder stays when somebody unlinks the lock file. Some file systems lock no folders.
Descriptor lockFolder(const fs::path& root) {
    Descriptor folder(::open(root.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (tryLock(folder.number()) == LockResult::Held) {
        refuseHeld(root);
    }
    return folder;
}

Descriptor lockFile(const fs::path& root) {
    const fs::path name = root / ".lock";
    for (;;) {
        Descriptor file(::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, lockFileMode));
        if (!file.isOpen()) {
            throw InputError(name.string(), 0,
                             std::string("cannot be opened: ") + std::strerror(errno) +
                                 "; name a folder of your own with --root");
        }
        const LockResult result = tryLock(file.number());
        if (result == LockResult::Held) {
            refuseHeld(root);
        }
        if (result == LockResult::Failed) {
            throw InputError(root.string(), 0,
                             std::string("cannot be locked: ") + std::strerror(errno) +
                                 "; name a folder on a file system with locks with --root");
        }
        if (isNamed(file.number(), name)) {
            return file;
        }
    }
}

/// So long the platform's command may take.
constexpr std::chrono::seconds answerLimit{30};

void putFirstOnSearchPath(const std::string& folder) {
    const char* set = std::getenv("PATH");
    const std::string searchPath = set != nullptr ? ":" + std::string(set) : "";
    if (!(searchPath + ":").starts_with(":" + folder + ":")) {
        ::setenv("PATH", (folder + searchPath).c_str(), 1);
    }
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
    _folderLock = lockFolder(_path);
    _fileLock = lockFile(_path);
    tryStorage(_path);
}

void NodeRoot::serveQueries(const fs::path& ownCommandFolder) const {
    ::setenv("VOR_NODE_ROOT", _path.c_str(), 1);
    putFirstOnSearchPath(ownCommandFolder);
    expectAnswer({"vorea", "file-system", "internalRoot"}, _path / "internal");
    expectAnswer({"vorea", "pso", "no-backup"}, _path / "no-backup");
}

void NodeRoot::expectAnswer(const std::vector<std::string>& query, const fs::path& folder) const {
    std::string fault;
    try {
        const std::string answer = answerOf(query, answerLimit);
        std::error_code unusable;
        if (fs::equivalent(answer, folder, unusable)) {
            return;
        }
        fault = "answers '" + answer + "' instead of " + folder.string();
    } catch (const std::runtime_error& failure) {
        fault = failure.what();
    }
    throw InputError("the command '" + query[0] + " " + query[1] + " " + query[2] + "' " + fault +
                     "; the storage of another node would be emptied: take the vorea of another node off the "
                     "search path (PATH), or install this node's own again");
}

}  // namespace VorNode
