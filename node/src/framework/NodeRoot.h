#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "Descriptor.h"

namespace VorNode {

/// The node's storage: `internal` is the internal root, `no-backup` the no-backup path. Locked against a
/// second node as long as the object lives.
class NodeRoot {
  public:
    /// Creates the folders that are missing, and tries what the component will do in them. Throws
    /// `InputError` when something of that is impossible or another node holds the root.
    explicit NodeRoot(const std::filesystem::path& path);

    const std::filesystem::path& path() const { return _path; }

    /// Where components publish measurement reports.
    std::filesystem::path reportFolder() const {
        return _path / "no-backup" / "PerformanceManagementReportFiles";
    }

    /// Makes `vorea` answer from this root: the node's own comes first on the search path. Throws
    /// `InputError` when another one is found nevertheless, which does not answer from this root.
    void serveQueries(const std::filesystem::path& ownCommandFolder) const;

  private:
    void expectAnswer(const std::vector<std::string>& query, const std::filesystem::path& folder) const;

    std::filesystem::path _path;
    Descriptor _folderLock;
    Descriptor _fileLock;
};

}  // namespace VorNode
