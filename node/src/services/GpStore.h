#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include <Poco/Clock.h>
#include <Poco/Mutex.h>

#include "services/GpRecords.h"
#include "services/PmServiceListener.h"

namespace VorNode {

/// How many GPs took which way.
struct GpCounts {
    /// Announced, without those withdrawn.
    std::uint64_t announced = 0;
    std::uint64_t withdrawn = 0;
    /// Fetched at least once.
    std::uint64_t fetched = 0;
    std::uint64_t released = 0;

    bool operator==(const GpCounts&) const = default;
};

/// Keeps the records of GPs from their announcement until their release, keeps count and tells the listener,
/// which must outlive it. Owned by the PM service. Any thread may fetch, release and ask; the other
/// operations belong to the thread that announces.
class GpStore {
  public:
    explicit GpStore(PmServiceListener& listener) : _listener(listener) {}

    /// Keeps a GP that is about to be announced, under the next id. Ids ascend from 1.
    GpInfo add(const std::string& jobId, Poco::Timestamp end, std::chrono::seconds period,
               std::unique_ptr<const GpRecords> records);
    /// Frees a GP that nobody was subscribed to; nothing when it is not known.
    void withdraw(std::uint64_t gpId);
    /// Tells the listener of GPs not released two periods after they were added, each once.
    void reportOverdue();

    /// The GP's records, valid until the GP is released or withdrawn; null when the GP is not known.
    const GpRecords* fetch(std::uint64_t gpId);
    /// Frees a GP, fetched or not. False when it is not known.
    bool release(std::uint64_t gpId);

    GpCounts counts() const;
    /// The GPs that are not released, in the order of their ids.
    std::vector<GpInfo> unreleased() const;

  private:
    struct Gp {
        GpInfo info;
        std::unique_ptr<const GpRecords> records;
        Poco::Clock overdueAt;
        bool isOverdueReported = false;
        bool isFetched = false;
    };

    PmServiceListener& _listener;
    /// Guards all below; not held while the listener is called.
    mutable Poco::FastMutex _mutex;
    std::uint64_t _lastId = 0;
    GpCounts _counts;
    std::map<std::uint64_t, Gp> _gps;
};

}  // namespace VorNode
