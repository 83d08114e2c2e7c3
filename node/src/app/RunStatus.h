#pragma once

#include <cstddef>
#include <filesystem>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include <Poco/Clock.h>

#include "services/PmServiceListener.h"

namespace VorNode {

class Node;

/// Tells people what the node does, and remembers what went wrong. Owned by the application, which ticks it;
/// it hears of GPs and reports on any thread.
///
/// A collection phase, as it is seen from here, opens with the first GP that is fetched and ends when reports
/// have appeared and none has followed for a moment.
class RunStatus : public PmServiceListener {
  public:
    /// Status lines go to `out`; what went wrong goes to `errors`. On a terminal the wait is shown as a
    /// countdown.
    enum class Output { Terminal, Plain };
    RunStatus(std::ostream& out, std::ostream& errors, Output output);

    void showStart(const Node& node);
    void reportPublished(const std::filesystem::path& path);

    /// To be called several times a second.
    void tick(const Node& node);

    /// Collection phases that ended and published something.
    std::size_t phasesPublished() const;

    /// Sums the run up, once everything is stopped. True when nothing went wrong.
    bool showEnd(const Node& node);

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
        std::size_t fetched = 0;
        std::size_t reports = 0;
        std::size_t values = 0;
        Poco::Clock lastReport;
    };

    // With the lock held.
    void say(const std::string& line);
    void complain(const std::string& line);
    void endPhase();
    void showCountdown(const Node& node);

    /// Guards everything below.
    mutable std::mutex _mutex;
    std::ostream& _out;
    std::ostream& _errors;
    const Output _output;
    std::size_t _countdownWidth = 0;
    Phase _phase;
    std::size_t _phasesPublished = 0;
    std::size_t _faults = 0;
};

}  // namespace VorNode
