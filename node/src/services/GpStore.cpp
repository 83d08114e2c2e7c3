#include "services/GpStore.h"

#include <optional>
#include <utility>

namespace VorNode {

GpInfo GpStore::add(const std::string& jobId, Poco::Timestamp end, std::chrono::seconds period,
                    std::unique_ptr<const GpRecords> records) {
    const Poco::Clock overdueAt = Poco::Clock() + 2 * std::chrono::microseconds(period).count();
    Poco::FastMutex::ScopedLock lock(_mutex);
    GpInfo info{_lastId + 1, jobId, end};
    _gps.emplace(info.id, Gp{info, std::move(records), overdueAt});
    ++_lastId;
    ++_counts.announced;
    return info;
}

void GpStore::withdraw(std::uint64_t gpId) {
    decltype(_gps)::node_type gp;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        gp = _gps.extract(gpId);
        if (!gp) {
            return;
        }
        --_counts.announced;
        ++_counts.withdrawn;
    }
    _listener.gpWithdrawn(gp.mapped().info);
}

void GpStore::reportOverdue() {
    std::vector<GpInfo> overdue;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        const Poco::Clock now;
        for (auto& [id, gp] : _gps) {
            if (!gp.isOverdueReported && gp.overdueAt <= now) {
                overdue.push_back(gp.info);
                gp.isOverdueReported = true;
            }
        }
    }
    for (const GpInfo& gp : overdue) {
        _listener.gpOverdue(gp);
    }
}

const GpRecords* GpStore::fetch(std::uint64_t gpId) {
    const GpRecords* records = nullptr;
    std::optional<GpInfo> fetchedFirst;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        const auto found = _gps.find(gpId);
        if (found == _gps.end()) {
            return nullptr;
        }
        Gp& gp = found->second;
        records = gp.records.get();
        if (!gp.isFetched) {
            fetchedFirst = gp.info;
            gp.isFetched = true;
            ++_counts.fetched;
        }
    }
    if (fetchedFirst) {
        _listener.gpFetched(*fetchedFirst);
    }
    return records;
}

bool GpStore::release(std::uint64_t gpId) {
    decltype(_gps)::node_type gp;
    {
        Poco::FastMutex::ScopedLock lock(_mutex);
        gp = _gps.extract(gpId);
        if (!gp) {
            return false;
        }
        ++_counts.released;
    }
    _listener.gpReleased(gp.mapped().info);
    return true;
}

GpCounts GpStore::counts() const {
    Poco::FastMutex::ScopedLock lock(_mutex);
    return _counts;
}

std::vector<GpInfo> GpStore::unreleased() const {
    Poco::FastMutex::ScopedLock lock(_mutex);
    std::vector<GpInfo> gps;
    for (const auto& [id, gp] : _gps) {
        gps.push_back(gp.info);
    }
    return gps;
}

}  // namespace VorNode
