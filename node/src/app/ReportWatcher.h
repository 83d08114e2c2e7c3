#pragma once

#include <filesystem>
#include <functional>

#include <Poco/DirectoryWatcher.h>

namespace VorNode {

/// Tells of every report that appears in the report folder, as long as it lives. Owned by the application.
class ReportWatcher {
  public:
    /// `published` is called on the watcher's thread with the report's path.
    ReportWatcher(const std::filesystem::path& folder,
                  std::function<void(const std::filesystem::path&)> published);
    ~ReportWatcher();
    ReportWatcher(const ReportWatcher&) = delete;
    ReportWatcher& operator=(const ReportWatcher&) = delete;

  private:
    void itemMovedTo(const Poco::DirectoryWatcher::DirectoryEvent& event);

    std::function<void(const std::filesystem::path&)> _published;
    Poco::DirectoryWatcher _watcher;
};

}  // namespace VorNode
