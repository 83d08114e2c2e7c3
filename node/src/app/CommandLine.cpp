#include "app/CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>

#include "InputError.h"

namespace VorNode {

namespace fs = std::filesystem;

namespace {

constexpr char description[] =
    "Runs measurement jobs on this machine and writes their reports (3GPP TS 32.435).";
constexpr char exitStatus[] =
    "Exit status: 0 what was fetched is published, and all is released; 1 something went wrong while "
    "running, or a signal came before the node ran;\n"
    "2 the command line, configuration, model, recorded counters or storage cannot be used.";

/// A folder under the user's state directory.
fs::path defaultRoot() {
    const char* state = std::getenv("XDG_STATE_HOME");
    if (state != nullptr && *state == '/') {
        return fs::path(state) / "vor-node";
    }
    const char* home = std::getenv("HOME");
    return home != nullptr && *home == '/' ? fs::path(home) / ".local/state/vor-node"
                                           : fs::path("/var/lib/vor-node");
}

std::string checkCounters(const std::string& counters) {
    const bool known = counters == "kernel" || (counters.starts_with("recorded:") && counters.size() > 9);
    return known ? "" : "'" + counters + "' is neither kernel nor recorded:FILE.json";
}

std::string checkReports(const std::string& reports) {
    const bool isNumber = !reports.empty() && reports.find_first_not_of("0123456789") == reports.npos;
    return isNumber ? "" : "'" + reports + "' is not a number of collection phases";
}

}  // namespace

RunOptions parseCommandLine(int argc, const char* const* argv) {
    const InstallPaths paths = InstallPaths::ofThisProgram();
    RunOptions options;
    options.node.configuration = paths.configuration;
    options.node.model = paths.model;
    options.node.root = defaultRoot();
    options.node.library = paths.library;
    options.node.commands = paths.commands;
    options.counters = "kernel";
    options.proc = "/proc";
    options.sys = "/sys";

    CLI::App app(description, "vor-node");
    app.set_version_flag("--version", VOR_NODE_VERSION);
    app.footer(exitStatus);
    app.require_subcommand(1);
    CLI::App& run = *app.add_subcommand("run", "Measure, and publish a report file per period and job group");
    run.option_defaults()->always_capture_default()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
    run.add_option("--config", options.node.configuration,
                   "Configuration of the component and the node (XML)");
    run.add_option("--model", options.node.model, "Managed objects, the measurement jobs among them (XML)");
    run.add_option("--counters", options.counters, "What is measured: kernel, or recorded:FILE.json")
        ->check(CLI::Validator(checkCounters, "", ""));
    run.add_option("--root", options.node.root, "The node's storage; reports are in no-backup/ below it");
    run.add_option("--library", options.node.library, "The component's shared library");
    run.add_option("--reports", options.reports,
                   "End after so many collection phases that published something; 0 runs until SIGINT, "
                   "SIGTERM or SIGHUP")
        ->check(CLI::Validator(checkReports, "", ""));
    run.add_flag(
        "--capabilities", options.capabilitiesOnly,
        "Show the measurement capabilities as a management client reads them, and end; the component "
        "starts for it, and tidies up the storage like at any start");
    run.add_option("--log-level", options.node.logLevel,
                   "Log lines on standard error: 3 errors, 4 warnings, 6 information, 8 traces")
        ->check(CLI::Range(3, 8));
    run.add_option("--proc", options.proc, "Where the kernel's counters are read: the proc file system");
    run.add_option("--sys", options.sys, "Where the kernel's counters are read: the sys file system");
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success& done) {
        app.exit(done);
        throw CommandLineDone();
    } catch (const CLI::ParseError& fault) {
        throw InputError(std::string(fault.what()) + "; vor-node run --help lists what can be written");
    }
    return options;
}

}  // namespace VorNode
