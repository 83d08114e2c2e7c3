#include <csignal>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "InputError.h"
#include "app/CommandLine.h"
#include "app/ReportWatcher.h"
#include "app/RunStatus.h"
#include "counters/KernelCounters.h"
#include "counters/RecordedCounters.h"
#include "framework/Node.h"

namespace {

using namespace VorNode;

enum ExitStatus { allPublished = 0, failedRunning = 1, unusableInput = 2 };

/// The signals that end the node; blocked in all threads, and taken by the main thread when it waits.
class EndingSignals {
  public:
    EndingSignals() {
        ::sigemptyset(&_signals);
        ::sigaddset(&_signals, SIGINT);
        ::sigaddset(&_signals, SIGTERM);
        ::sigprocmask(SIG_BLOCK, &_signals, nullptr);
        // A reader that closes its end of the status lines must not end the node.
        std::signal(SIGPIPE, SIG_IGN);
    }

    /// True when one arrived within the tick.
    bool waitOneTick() const {
        constexpr std::timespec tick{0, 200'000'000};
        return ::sigtimedwait(&_signals, nullptr, &tick) > 0;
    }

  private:
    sigset_t _signals{};
};

std::unique_ptr<MeasurementProducer> makeProducer(const RunOptions& options) {
    if (options.counters == "kernel") {
        return std::make_unique<KernelCounters>(options.proc, options.sys);
    }
    return std::make_unique<RecordedCounters>(options.counters.substr(options.counters.find(':') + 1));
}

ExitStatus run(const RunOptions& options) {
    const EndingSignals endingSignals;
    RunStatus status(std::cout, std::cerr,
                     ::isatty(STDOUT_FILENO) != 0 ? RunStatus::Output::Terminal : RunStatus::Output::Plain);
    const std::unique_ptr<MeasurementProducer> producer = makeProducer(options);
    Node node(options.node, *producer, status, std::cerr);
    node.start();
    std::optional<ReportWatcher> watcher;
    if (std::filesystem::exists(node.root().reportFolder())) {
        watcher.emplace(node.root().reportFolder(),
                        [&status](const std::filesystem::path& report) { status.reportPublished(report); });
    }
    status.showStart(node);
    do {
        status.tick(node);
    } while ((options.reports == 0 || status.phasesPublished() < options.reports) &&
             !endingSignals.waitOneTick());
    node.stop();
    watcher.reset();
    return status.showEnd(node) ? allPublished : failedRunning;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        ::umask(0027);
        return run(parseCommandLine(argc, argv));
    } catch (const CommandLineDone&) {
        return allPublished;
    } catch (const InputError& fault) {
        std::cerr << "vor-node: " << fault.what() << '\n';
        return unusableInput;
    } catch (const std::exception& fault) {
        std::cerr << "vor-node: " << fault.what() << '\n';
        return failedRunning;
    }
}
