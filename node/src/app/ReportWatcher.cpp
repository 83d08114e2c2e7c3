#include "app/ReportWatcher.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <system_error>
#include <utility>

#include <sys/inotify.h>
#include <unistd.h>

#include "app/ReportFile.h"

namespace VorNode {

namespace fs = std::filesystem;

namespace {

/// For so long, in microseconds, reports that have appeared are told of when the watcher is to end.
constexpr Poco::Clock::ClockDiff longestEnd = 500'000;

int watchOrThrow(int events, const fs::path& folder, std::uint32_t mask) {
    const int watch = ::inotify_add_watch(events, folder.c_str(), mask | IN_ONLYDIR);
    if (watch < 0) {
        throw std::system_error(errno, std::generic_category(), folder.string());
    }
    return watch;
}

/// A report that a client has taken away already is one, too.
bool canBeReport(const fs::path& path) {
    std::error_code unknown;
    const fs::file_type type = fs::symlink_status(path, unknown).type();
    return type == fs::file_type::regular || type == fs::file_type::not_found;
}

}  // namespace

ReportWatcher::ReportWatcher(const fs::path& folder, Published published, Missed missed)
    : _folder(folder),
      _published(std::move(published)),
      _missed(std::move(missed)),
      _events(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    if (!_events.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "inotify");
    }
    _parentWatch = watchOrThrow(_events.number(), _folder.parent_path(), IN_CREATE | IN_MOVED_TO);
    watchFolder();
    _thread = std::thread(&ReportWatcher::watch, this);
}

ReportWatcher::~ReportWatcher() {
    _stop.set();
    _thread.join();
}

void ReportWatcher::watch() {
    while (!canBeRead(_stop.descriptor())) {
        waitForAny({_events.number(), _stop.descriptor()});
        takeEvents();
    }
    takeEvents();
    if (!hasTime()) {
        _missed("the node ends, and there were too many to look at");
    }
}

void ReportWatcher::takeEvents() {
    alignas(inotify_event) char buffer[16384];
    for (ssize_t size = 0; (size = ::read(_events.number(), buffer, sizeof buffer)) > 0;) {
        for (const char* next = buffer; next < buffer + size;) {
            const auto& event = *reinterpret_cast<const inotify_event*>(next);
            take(event);
            next += sizeof(inotify_event) + event.len;
        }
    }
}

void ReportWatcher::take(const inotify_event& event) {
    if ((event.mask & IN_Q_OVERFLOW) != 0) {
        _missed("more appeared at once than the system tells of");
        watchFolderAgain();
    } else if (event.len > 0 && event.wd == _parentWatch) {
        if (event.name == _folder.filename()) {
            watchFolderAgain();
        }
    } else if (event.len > 0 && event.wd == _folderWatch && hasTime()) {
        tell(event.name);
    }
}

void ReportWatcher::tell(const std::string& fileName) {
    const fs::path path = _folder / fileName;
    if (isReportName(fileName) && canBeReport(path)) {
        _published(path);
    }
}

bool ReportWatcher::hasTime() {
    if (!_ending && canBeRead(_stop.descriptor())) {
        _ending.emplace();
    }
    return !_ending || !_ending->isElapsed(longestEnd);
}

// Reports are published by a rename, so that nothing else has to be watched.
void ReportWatcher::watchFolder() {
    const int watch = watchOrThrow(_events.number(), _folder, IN_MOVED_TO);
    if (_folderWatch >= 0 && _folderWatch != watch) {
        // A folder that was moved away is still watched.
        ::inotify_rm_watch(_events.number(), _folderWatch);
    }
    _folderWatch = watch;
}

void ReportWatcher::watchFolderAgain() {
    try {
        watchFolder();
    } catch (const std::system_error& fault) {
        // It may be gone again; what comes next is watched again, too.
        if (fault.code() != std::errc::no_such_file_or_directory) {
            _missed(fault.what());
        }
    }
}

}  // namespace VorNode
