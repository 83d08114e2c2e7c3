// How the writer's time and memory grow with the values of a report, its GPs, and the number of open reports.

#include <cmath>
#include <fstream>
#include <functional>
#include <thread>

#include <benchmark/benchmark.h>
#include <malloc.h>

#include "BenchData.h"
#include "BenchReport.h"
#include "TemporaryRoot.h"

namespace VorBench {
namespace {

/// In KiB.
double memory(const std::string& what) {
    const std::string status = VorTest::readFile("/proc/self/status");
    return std::stod(status.substr(status.find(what) + what.size()));
}

/// How much memory in KiB the operation takes at its peak, on a thread that did not write before; NaN where
/// the kernel does not tell.
double peakOf(const std::function<void()>& operation) {
    double peak = std::nan("");
    std::thread([&] {
        ::malloc_trim(0);
        if (std::ofstream("/proc/self/clear_refs") << "5" << std::flush) {
            const double before = memory("VmRSS:");
            operation();
            peak = memory("VmHWM:") - before;
        }
    }).join();
    return peak;
}

/// Measures the operation, which handles as many units as the bench's argument says.
void measure(benchmark::State& state, const std::function<void()>& operation) {
    state.counters["units"] = static_cast<double>(state.range(0));
    state.counters["peak KiB"] = peakOf(operation);
    for (auto _ : state) {
        operation();
    }
}

/// Each report is another piece of the same data, so that short ones do not find theirs in the caches.
void values(benchmark::State& state) {
    constexpr std::size_t types = 100;
    static const BenchData data({.objects = 10'000'000 / types, .types = types});
    const auto& whole = data.gps()[0].measObjClasses[0];
    VorOamSpiPmMeasObjClass_2 piece = whole;
    piece.nrOfMeasObjs = static_cast<std::uint32_t>(static_cast<std::size_t>(state.range(0)) / types);
    const std::vector<VorOamSpiPmGpData_2> roots{{&piece, 1}};
    HeldGps gps = makeGps(roots);
    measure(state, [&] {
        writeReport(gps);
        piece.measObjs += piece.nrOfMeasObjs;
        if (piece.measObjs == whole.measObjs + whole.nrOfMeasObjs) {
            piece.measObjs = whole.measObjs;
        }
    });
}

void gps(benchmark::State& state) {
    const BenchData data({.gps = static_cast<std::size_t>(state.range(0)), .objects = 2, .types = 10});
    HeldGps held = makeGps(data.gps());
    measure(state, [&] { writeReport(held); });
}

/// All are open at the same time; each gets 1,000 values.
void openReports(benchmark::State& state) {
    const BenchData data({.objects = 10});
    HeldGps held = makeGps(data.gps());
    measure(state, [&] {
        std::vector<std::unique_ptr<VorPm::PmReportWriter>> writers;
        for (std::int64_t i = 0; i < state.range(0); ++i) {
            writers.push_back(openReport(std::to_string(i)));
        }
        for (const auto& writer : writers) {
            require(writer->writeGpData(*held[0]));
        }
        for (const auto& writer : writers) {
            require(writer->finalizeReport());
        }
    });
}

BENCHMARK(values)->Name("growth/values")->RangeMultiplier(10)->Range(10'000, 10'000'000);
BENCHMARK(gps)->Name("growth/GPs")->RangeMultiplier(10)->Range(1, 10'000);
BENCHMARK(openReports)->Name("growth/open reports")->Arg(1)->Arg(10)->Arg(100)->Arg(500);

}  // namespace
}  // namespace VorBench

int main(int argc, char** argv) {
    const VorTest::TemporaryRoot root;
    root.createReportFolders();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
