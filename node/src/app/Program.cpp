#include "app/Program.h"

#include <exception>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>

#include <Poco/Exception.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "InputError.h"
#include "app/CommandLine.h"
#include "app/Console.h"
#include "app/EndingSignals.h"
#include "app/ExitStatus.h"
#include "app/Notice.h"
#include "app/ReportWatcher.h"
#include "app/RunStatus.h"
#include "app/StartGuard.h"
#include "counters/KernelCounters.h"
#include "counters/RecordedCounters.h"
#include "framework/Node.h"
#include "framework/OpenFiles.h"

namespace VorNode {

namespace {

/// What the run is steered by; owned by `runProgram`.
struct Controls {
    const EndingSignals& signals;
    StartGuard& startGuard;
    Console& console;
};

/// A file that is opened must not take the place of a standard descriptor that the starter has closed.
void fillStandardDescriptors() {
    for (int descriptor = 0; descriptor <= STDERR_FILENO; ++descriptor) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            ::open("/dev/null", O_RDWR);
        }
    }
}

/// POCO's exceptions tell the case in another text than others.
std::string describe(const std::exception& fault) {
    const auto* poco = dynamic_cast<const Poco::Exception*>(&fault);
    return poco != nullptr ? poco->displayText() : fault.what();
}

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

/// Without a watcher reports are published as well.
void watchReports(const Node& node, RunStatus& status, std::optional<ReportWatcher>& watcher) {
    try {
        watcher.emplace(
            node.root().reportFolder(),
            [&status](const std::filesystem::path& report) { status.reportPublished(report); },
            [&status](const std::string& reason) { status.reportsMissed(reason); });
    } catch (const std::system_error& fault) {
        status.reportsMissed(std::string(fault.what()) + "; --reports does not end this run");
    }
}

void runUntilEnd(const RunOptions& options, Node& node, RunStatus& status, Notice& news,
                 const EndingSignals& signals) {
    std::optional<ReportWatcher> watcher;
    watchReports(node, status, watcher);
    status.showStart(node);
    status.showCapabilities(node);
    while (!signals.haveArrived()) {
        news.clear();
        const auto nextTick = status.tick(node);
        if (options.reports > 0 && status.phasesPublished() >= options.reports) {
            break;
        }
        waitForAny({signals.descriptor(), news.descriptor()}, nextTick);
    }
    // What the stop publishes is still told of.
    node.stop();
}

ExitStatus measure(const RunOptions& options, Node& node, RunStatus& status, Notice& news,
                   const Controls& controls) {
    node.start();
    controls.startGuard.release();
    const auto complainOfFaults = [&status](auto&& step) {
        try {
            step();
        } catch (const std::exception& fault) {
            status.complain(describe(fault));
        }
    };
    complainOfFaults([&] { runUntilEnd(options, node, status, news, controls.signals); });
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

ExitStatus run(const RunOptions& options, const Controls& controls) {
    Notice news;
    RunStatus status(controls.console, news);
    const std::unique_ptr<MeasurementProducer> producer = makeProducer(options);
    Node node(options.node, *producer, status, controls.console.errorLines());
    for (const std::string& warning : node.warnings()) {
        controls.console.writeError("vor-node: warning: " + warning);
    }
    return options.capabilitiesOnly ? showCapabilities(node, status)
                                    : measure(options, node, status, news, controls);
}

/// Each line of the fault is a line of its own.
void tellFault(Console& console, const std::string& fault) {
    std::istringstream lines(fault);
    for (std::string line; std::getline(lines, line);) {
        console.writeError("vor-node: " + line);
    }
}

ExitStatus runAndTellFaults(int argc, const char* const* argv, const Controls& controls) {
    try {
        return run(parseCommandLine(argc, argv), controls);
    } catch (const CommandLineDone&) {
        return allPublished;
    } catch (const InputError& fault) {
        tellFault(controls.console, fault.what());
        return unusableInput;
    } catch (const std::exception& fault) {
        tellFault(controls.console, describe(fault));
        return failedRunning;
    }
}

}  // namespace

int runProgram(int argc, const char* const* argv) {
    fillStandardDescriptors();
    ::umask(0027);
    raiseOpenFilesLimit();
    setOtherSignals();
    const EndingSignals signals;
    Console console(STDOUT_FILENO, STDERR_FILENO,
                    ::isatty(STDOUT_FILENO) != 0 ? Console::Kind::Terminal : Console::Kind::Plain);
    StartGuard startGuard(signals, console);
    return runAndTellFaults(argc, argv, {signals, startGuard, console});
}

}  // namespace VorNode
