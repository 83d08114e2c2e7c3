#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <set>
#include <string>

#include <Poco/Clock.h>
#include <Poco/Timestamp.h>

#include "services/PmServiceListener.h"

namespace VorNode {

class Console;
class Node;

/// Tells people what the node does, and remembers what went wrong. Owned by the application, which ticks it;
/// it hears of GPs and reports on any thread.
///
/// A collection phase, as it is seen from here, opens with the first GP of a period's end that is fetched. It
/// ends when reports have appeared and none has followed for a moment, or when the next one opens.
class RunStatus : public PmServiceListener {
  public:
    explicit RunStatus(Console& console) : _console(console) {}

    void showStart(const Node& node);

    /// Shows what management clients read of the measurement capabilities.
    void showCapabilities(const Node& node);

    void reportPublished(const std::filesystem::path& path);

    /// To be called several times a second.
    void tick(const Node& node);

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
        /// When the GPs of the phase ended.
        Poco::Timestamp gpEnd;
        std::size_t fetched = 0;
        std::size_t reports = 0;
        std::size_t values = 0;
        Poco::Clock opened;
        Poco::Clock lastReport;
    };

    // With the lock held.
    void endPhase();
    std::string progressText(const Node& node) const;

    Console& _console;
    /// Guards everything below.
    mutable std::mutex _mutex;
    Phase _phase;
    /// GPs that were announced and neither fetched nor released.
    std::set<std::uint64_t> _unread;
    std::size_t _phasesPublished = 0;
    std::size_t _faults = 0;
};

}  // namespace VorNode
