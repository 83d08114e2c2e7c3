#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <set>
#include <string>

#include <Poco/Clock.h>
#include <Poco/Timestamp.h>

#include "services/PmServiceListener.h"

namespace VorNode {

class Console;
class Node;
class Notice;

/// Tells people what the node does, and remembers what went wrong. Owned by the application, which ticks it;
/// it hears of GPs and reports on any thread.
///
/// A collection phase, as it is seen from here, opens with the first GP that ended in a minute and is
/// fetched. It ends when reports have appeared and none has followed for a moment, or when the next one
/// opens.
class RunStatus : public PmServiceListener {
  public:
    /// Both outlive the status; the news are that a tick is due.
    RunStatus(Console& console, Notice& news) : _console(console), _news(news) {}

    void showStart(const Node& node);

    /// Shows what management clients read of the measurement capabilities.
    void showCapabilities(const Node& node);

    void reportPublished(const std::filesystem::path& path);

    /// Reports appear without being told of, for the reason given.
    void reportsMissed(const std::string& reason);

    /// To be called at every news, and again when the time in the result is over, if there is one.
    std::optional<std::chrono::milliseconds> tick(const Node& node);

    /// Collection phases that ended and published something.
    std::size_t phasesPublished() const;

    /// Something went wrong: tells it on the stream of errors.
    void complain(const std::string& fault);

    /// Tells what is still wrong once everything is stopped. True when nothing went wrong in the whole run.
    bool checkEnd(const Node& node);

    /// Sums the run up.
    void showEnd(const Node& node);

    void gpAnnounced(const GpInfo& gp) override;
    void gpWithdrawn(const GpInfo& gp) override;
    void gpFetched(const GpInfo& gp) override;
    void gpReleased(const GpInfo& gp) override;
    void gpOverdue(const GpInfo& gp) override;
    void clockStepped(double seconds) override;
    void periodLost(const std::string& jobId, const std::string& reason) override;

  private:
    struct Phase {
        bool open = false;
        /// In which the GPs of the phase ended, counted since the Unix epoch.
        std::int64_t minute = 0;
        std::size_t fetched = 0;
        std::size_t reports = 0;
        std::size_t values = 0;
        Poco::Clock opened;
        Poco::Clock lastReport;
    };

    // With the lock held.
    void openPhase(const GpInfo& gp);
    void endPhase();
    std::optional<std::chrono::milliseconds> untilPhaseEnds() const;
    std::string progressText(const Node& node) const;

    Console& _console;
    Notice& _news;
    /// Guards everything below.
    mutable std::mutex _mutex;
    Phase _phase;
    /// GPs that were announced and neither fetched nor released.
    std::set<std::uint64_t> _unread;
    std::size_t _phasesPublished = 0;
    std::size_t _faults = 0;
};

}  // namespace VorNode
