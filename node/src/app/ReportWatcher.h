#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <thread>

#include <Poco/Clock.h>

#include "Descriptor.h"
#include "app/Notice.h"

struct inotify_event;

namespace VorNode {

/// Tells of every report that appears in the report folder, as long as it lives; the folder may be removed
/// and made again. Sleeps until something happens. Owned by the application.
class ReportWatcher {
  public:
    using Published = std::function<void(const std::filesystem::path&)>;
    using Missed = std::function<void(const std::string&)>;

    /// Both are called on the watcher's thread: `published` with a report's path, `missed` with the reason
    /// why reports appear without being told of. Throws `std::system_error` when the system cannot watch.
    ReportWatcher(const std::filesystem::path& folder, Published published, Missed missed);
    /// Reports that have appeared are still told of, for half a second.
    ~ReportWatcher();
    ReportWatcher(const ReportWatcher&) = delete;
    ReportWatcher& operator=(const ReportWatcher&) = delete;

  private:
    /// The watcher's thread.
    void watch();
    void takeEvents();
    void take(const inotify_event& event);
    void tell(const std::string& fileName);
    /// False once the time for the end is over.
    bool hasTime();

    /// Throws `std::system_error`.
    void watchFolder();
    void watchFolderAgain();

    const std::filesystem::path _folder;
    const Published _published;
    const Missed _missed;
    const Descriptor _events;
    int _parentWatch = -1;
    int _folderWatch = -1;
    Notice _stop;
    /// Since the thread knows that it is to end.
    std::optional<Poco::Clock> _ending;
    std::thread _thread;
};

}  // namespace VorNode
