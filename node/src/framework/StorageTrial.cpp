#include "framework/StorageTrial.h"

#include <cerrno>
#include <string>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

#include "Descriptor.h"
#include "InputError.h"

namespace VorNode {

namespace fs = std::filesystem;

namespace {

constexpr const char* trialName = ".vor-node-trial";
constexpr mode_t trialMode = 0640;

[[noreturn]] void refuse(const fs::path& folder, const std::string& fault) {
    throw InputError(folder.string(), 0, fault);
}

/// Removes the file at its end, whatever became of it.
class TrialFile {
  public:
    explicit TrialFile(const fs::path& folder) : _path(folder / trialName) {
        ::unlink(_path.c_str());
        const Descriptor file(::open(_path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, trialMode));
        if (!file.isOpen()) {
            refuse(folder, "cannot be written: " + std::generic_category().message(errno) +
                               "; correct its rights or its disk, or name a folder of your own with --root");
        }
    }
    ~TrialFile() { ::unlink(_path.c_str()); }
    TrialFile(const TrialFile&) = delete;
    TrialFile& operator=(const TrialFile&) = delete;

    void moveTo(const fs::path& folder) {
        const fs::path target = folder / trialName;
        if (::rename(_path.c_str(), target.c_str()) != 0) {
            refuse(folder, "takes no file from " + _path.parent_path().string() + ": " +
                               std::generic_category().message(errno) +
                               "; put both folders on one file system, without a mount between them");
        }
        _path = target;
    }

  private:
    fs::path _path;
};

/// The folder, or the one that it will be created in.
const fs::path& existing(const fs::path& folder, const fs::path& parent) {
    const fs::file_status status = fs::symlink_status(folder);
    if (!fs::exists(status)) {
        return parent;
    }
    if (!fs::is_directory(folder)) {
        refuse(folder, "is not a folder; remove it");
    }
    return folder;
}

}  // namespace

void tryStorage(const fs::path& root) {
    const fs::path parent = root / "no-backup";
    const fs::path reports = parent / "PerformanceManagementReportFiles";
    const fs::path temporary = parent / "PerformanceManagementTemporaryFiles";
    try {
        if (fs::is_symlink(temporary)) {
            refuse(temporary, "is a link, and what it points at would be emptied; remove it");
        }
        const TrialFile forLink(root / "internal");
        TrialFile(existing(temporary, parent)).moveTo(existing(reports, parent));
    } catch (const fs::filesystem_error& fault) {
        refuse(fault.path1(), "cannot be used: " + fault.code().message() + "; correct its rights");
    }
}

}  // namespace VorNode
