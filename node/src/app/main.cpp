#include <csignal>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <string>

#include <Poco/Exception.h>
#include <Poco/String.h>
#include <sys/stat.h>
#include <unistd.h>

#include "InputError.h"
#include "app/CommandLine.h"
#include "app/Console.h"
#include "app/ReportWatcher.h"
#include "app/RunStatus.h"
#include "counters/KernelCounters.h"
#include "counters/RecordedCounters.h"
#include "framework/Node.h"
#include "framework/OpenFiles.h"

namespace {

using namespace VorNode;

enum ExitStatus { allPublished = 0, failedRunning = 1, unusableInput = 2 };

/// POCO's exceptions tell the case in another text than others.
std::string describe(const std::exception& fault) {
    const auto* poco = dynamic_cast<const Poco::Exception*>(&fault);
    return poco != nullptr ? poco->displayText() : fault.what();
}

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
    if (options.counters != "kernel") {
        return std::make_unique<RecordedCounters>(options.counters.substr(options.counters.find(':') + 1));
    }
    for (const std::filesystem::path& folder : {options.proc, options.sys}) {
        std::error_code ignored;
        if (!std::filesystem::is_directory(folder, ignored)) {
            throw InputError(folder.string(), 0,
                             "is no folder; name the kernel's file systems with --proc and --sys");
        }
    }
    return std::make_unique<KernelCounters>(options.proc, options.sys);
}

void runUntilEnd(const RunOptions& options, Node& node, RunStatus& status,
                 const EndingSignals& endingSignals) {
    const ReportWatcher watcher(node.root().reportFolder(), [&status](const std::filesystem::path& report) {
        status.reportPublished(report);
    });
    status.showStart(node);
    status.showCapabilities(node);
    do {
        status.tick(node);
    } while ((options.reports == 0 || status.phasesPublished() < options.reports) &&
             !endingSignals.waitOneTick());
    // What the stop publishes is still told of.
    node.stop();
}

ExitStatus measure(const RunOptions& options, Node& node, RunStatus& status,
                   const EndingSignals& endingSignals) {
    node.start();
    const auto complainOfFaults = [&status](auto&& step) {
        try {
            step();
        } catch (const std::exception& fault) {
            status.complain(describe(fault));
        }
    };
    complainOfFaults([&] { runUntilEnd(options, node, status, endingSignals); });
    complainOfFaults([&] { node.stop(); });
    const bool good = status.checkEnd(node);
    status.showEnd(node);
    return good ? allPublished : failedRunning;
}

ExitStatus showCapabilities(Node& node, RunStatus& status) {
    node.startComponent();
    status.showCapabilities(node);
    node.stop();
    return status.checkEnd(node) ? allPublished : failedRunning;
}

ExitStatus run(const RunOptions& options) {
    const EndingSignals endingSignals;
    Console console(std::cout, std::cerr,
                    ::isatty(STDOUT_FILENO) != 0 ? Console::Kind::Terminal : Console::Kind::Plain);
    RunStatus status(console);
    const std::unique_ptr<MeasurementProducer> producer = makeProducer(options);
    Node node(options.node, *producer, status, console.errorLines());
    for (const std::string& warning : node.warnings()) {
        console.writeError("vor-node: warning: " + warning);
    }
    return options.capabilitiesOnly ? showCapabilities(node, status)
                                    : measure(options, node, status, endingSignals);
}

}  // namespace

int main(int argc, char** argv) {
    try {
        ::umask(0027);
        raiseOpenFilesLimit();
        return run(parseCommandLine(argc, argv));
    } catch (const CommandLineDone&) {
        return allPublished;
    } catch (const InputError& fault) {
        std::cerr << "vor-node: " << Poco::replace(std::string(fault.what()), "\n", "\nvor-node: ") << '\n';
        return unusableInput;
    } catch (const std::exception& fault) {
        std::cerr << "vor-node: " << describe(fault) << '\n';
        return failedRunning;
    }
}
