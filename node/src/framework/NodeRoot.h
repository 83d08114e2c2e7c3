#pragma once

#include <filesystem>

namespace VorNode {

/// The node's storage: `internal` is the internal root, `no-backup` the no-backup path. Locked against a
/// second node as long as the object lives.
class NodeRoot {
  public:
    /// Creates the folders that are missing. Throws `InputError` when that is impossible or another node
    /// holds the root.
    explicit NodeRoot(const std::filesystem::path& path);
    ~NodeRoot();
    NodeRoot(const NodeRoot&) = delete;
    NodeRoot& operator=(const NodeRoot&) = delete;

    const std::filesystem::path& path() const { return _path; }

    /// Where components publish measurement reports.
    std::filesystem::path reportFolder() const {
        return _path / "no-backup" / "PerformanceManagementReportFiles";
    }

    /// Makes `vorea` answer from this root, and appends the node's own to the search path when there is none.
    void serveQueries(const std::filesystem::path& ownCommandFolder) const;

  private:
    std::filesystem::path _path;
    int _lock = -1;
};

}  // namespace VorNode
