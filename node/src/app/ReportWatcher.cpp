#include "app/ReportWatcher.h"

#include <utility>

#include <Poco/Delegate.h>

namespace VorNode {

// Reports are published by a rename, so that nothing else has to be watched.
ReportWatcher::ReportWatcher(const std::filesystem::path& folder,
                             std::function<void(const std::filesystem::path&)> published)
    : _published(std::move(published)), _watcher(folder.string(), Poco::DirectoryWatcher::DW_ITEM_MOVED_TO) {
    _watcher.itemMovedTo += Poco::delegate(this, &ReportWatcher::itemMovedTo);
}

ReportWatcher::~ReportWatcher() {
    _watcher.itemMovedTo -= Poco::delegate(this, &ReportWatcher::itemMovedTo);
}

void ReportWatcher::itemMovedTo(const Poco::DirectoryWatcher::DirectoryEvent& event) {
    _published(event.item.path());
}

}  // namespace VorNode
