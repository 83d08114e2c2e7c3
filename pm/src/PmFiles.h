// Files and folders, opened with care for what stands at a path: others can write there, too. Any thread.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace VorPm {

/// Owns an open file or folder.
class PmDescriptor {
  public:
    explicit PmDescriptor(int descriptor = -1) : _descriptor(descriptor) {}
    PmDescriptor(PmDescriptor&& other) noexcept : _descriptor(other.release()) {}
    PmDescriptor& operator=(PmDescriptor&&) = delete;
    /// Leaves `errno` as it is.
    ~PmDescriptor();

    bool isOpen() const { return _descriptor >= 0; }
    int get() const { return _descriptor; }
    void close() { const PmDescriptor closed(release()); }
    int release() { return std::exchange(_descriptor, -1); }

  private:
    int _descriptor;
};

/// Opens a regular file, with `O_CREAT` in `flags` a new one where there is none. Never waits. When it is not
/// open, `errno` has the reason: ELOOP for a link, ENXIO for what is neither file nor link.
PmDescriptor openRegularFile(const std::string& path, int flags);

/// True when something else than a regular file stands at the path; `errno` becomes ELOOP or ENXIO as above.
/// Else `errno` stays.
bool isOtherThanFile(const std::string& path);

/// As `openRegularFile` for a file that has no other name; with one, the reason is EMLINK.
PmDescriptor openFileWithOneName(const std::string& path, int flags);

/// Opens a folder; the path may be a link to it.
PmDescriptor openFolder(const std::string& path);

/// Opens a folder; the path must not be a link.
PmDescriptor openFolderItself(const std::string& path);

/// The entries of an open folder, without "." and "..", in the file system's order. Throws
/// `std::system_error`, also when only a part of them can be read.
std::vector<std::string> entriesOf(const PmDescriptor& folder);

/// Removes an entry that is no folder with content; what a link points at stays. 0, or the reason as an
/// `errno`.
int removeEntry(const PmDescriptor& folder, const std::string& name);

}  // namespace VorPm
