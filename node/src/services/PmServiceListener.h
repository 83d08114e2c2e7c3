// How the application learns what the PM service does.
#pragma once

#include <cstdint>
#include <string>

#include <Poco/Timestamp.h>

namespace VorNode {

/// What names one granularity period (GP) of one job.
struct GpInfo {
    std::uint64_t id;
    std::string jobId;
    Poco::Timestamp end;

    bool operator==(const GpInfo&) const = default;
};

/// Hears what the PM service does; every operation does nothing unless overridden. Owned by the application,
/// which keeps it longer than the service. Called without locks, on the scheduler thread if nothing else is
/// said; operations must not throw and should not take long.
class PmServiceListener {
  public:
    virtual ~PmServiceListener() = default;

    /// The GP is about to be announced. Called before the event is sent, so that it precedes `gpFetched`.
    virtual void gpAnnounced(const GpInfo& /*gp*/) {}
    /// Nobody was subscribed to the announcement; the GP's data is gone.
    virtual void gpWithdrawn(const GpInfo& /*gp*/) {}
    /// The GP was fetched for the first time. On the thread that fetched it.
    virtual void gpFetched(const GpInfo& /*gp*/) {}
    /// On the thread that released it.
    virtual void gpReleased(const GpInfo& /*gp*/) {}
    /// Two periods of its job after its announcement the GP is still not released. Told once.
    virtual void gpOverdue(const GpInfo& /*gp*/) {}
    /// The wall clock was set forward or, negative, back; the running period of every job is dropped.
    virtual void clockStepped(double /*seconds*/) {}
    /// The period's data could not be had or kept, for the reason given; nothing is announced for it.
    virtual void periodLost(const std::string& /*jobId*/, const std::string& /*reason*/) {}
};

}  // namespace VorNode
