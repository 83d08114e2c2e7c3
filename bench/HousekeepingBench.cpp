// How long housekeeping takes to find and remove the 100 oldest of many reports.

#include <filesystem>

#include <benchmark/benchmark.h>

#include "BenchEngine.h"
#include "PmHousekeeping.h"
#include "PmReportWriter.h"

namespace VorBench {
namespace {

constexpr std::uint64_t excess = 100;

/// Creates the reports of the first minutes.
void createReports(std::uint64_t count) {
    constexpr std::uint64_t minute = 60'000'000'000;
    for (std::uint64_t begin = 25'000'000 * minute; count > 0; --count, begin += minute) {
        VorPm::PmReportWriter report("", VorPm::NO_COMPRESSION, begin, begin + minute);
        report.setMeId("ME1");
        report.setUtcFormat(true);
        VorTest::writeFile(BenchEngine::instance().root.reportFolder() / report.createFileName(), "");
    }
}

void housekeeping(benchmark::State& state) {
    const auto reports = static_cast<std::uint64_t>(state.range(0));
    const auto& root = BenchEngine::instance().root;
    std::filesystem::remove_all(root.reportFolder());
    root.createReportFolders();
    createReports(reports);
    for (auto _ : state) {
        const auto begin = Clock::now();
        VorPm::performHousekeeping(static_cast<unsigned short>(reports - excess));
        state.SetIterationTime(secondsSince(begin));
        createReports(excess);
    }
    state.counters["files"] = static_cast<double>(reports);
}
BENCHMARK(housekeeping)->Arg(1'000)->Arg(10'000)->Arg(60'000)->UseManualTime();

}  // namespace
}  // namespace VorBench

BENCHMARK_MAIN();
