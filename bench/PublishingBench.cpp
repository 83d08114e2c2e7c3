// How long finished reports take to get into the report folder. Nothing is synced, here as by `gzip`: how
// long that takes is the disk's affair.

#include <atomic>
#include <cstdio>
#include <filesystem>

#include <Poco/Process.h>
#include <benchmark/benchmark.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "BenchData.h"
#include "BenchEngine.h"
#include "BenchReport.h"
#include "PmPublishing.h"

namespace {

/// Of the whole program, and when the last of them was done.
std::atomic<std::size_t> renames = 0;
std::atomic<VorBench::Clock::time_point> lastRename;

}  // namespace

extern "C" {

int fsync(int /*descriptor*/) {
    return 0;
}

int rename(const char* from, const char* to) noexcept {
    const long result = ::syscall(SYS_rename, from, to);
    lastRename = VorBench::Clock::now();
    ++renames;
    renames.notify_all();
    return static_cast<int>(result);
}
}

namespace VorBench {
namespace {

namespace fs = std::filesystem;

/// A report of 50 MB.
fs::path writeLargeReport() {
    const BenchData data({.objects = 16'000});
    fs::path path = BenchEngine::instance().root.path() / "large.xml";
    HeldGps gps = makeGps(data.gps());
    writeReport(gps);
    fs::rename(reportPath(), path);
    return path;
}

/// Times the operation, which gets a copy of the large report in the temporary folder.
void publish(benchmark::State& state, bool (*operation)(const std::string& path)) {
    static const fs::path large = writeLargeReport();
    const std::string path = reportPath();
    for (auto _ : state) {
        fs::copy_file(large, path);
        const auto begin = Clock::now();
        require(operation(path));
        state.SetIterationTime(secondsSince(begin));
        fs::remove(path + ".gz");
    }
    state.counters["bytes"] = static_cast<double>(fs::file_size(large));
}

bool runGzip(const std::string& path) {
    return Poco::Process::launch("gzip", {"-6", path}).wait() == 0;
}

/// From the timer's expiry to the last rename, with so many open reports of 1,000 values.
void phaseEnd(benchmark::State& state) {
    static const BenchData data({.objects = 10});
    BenchEngine::lent = data.gps().data();
    auto& engine = BenchEngine::instance();
    const auto count = static_cast<std::size_t>(state.range(0));
    for (auto _ : state) {
        Clock::time_point expiry;
        engine.onHappening = [&](const std::string& what) {
            if (what == "onTimer >>") {
                expiry = Clock::now();
                BenchEngine::setTracing(false);
            }
        };
        engine.start(2);
        BenchEngine::setClock(1);
        for (std::size_t i = 0; i < count; ++i) {
            engine.tasks->pushGp(BenchEngine::makeEvent(std::to_string(i).c_str()));
        }
        BenchEngine::awaitReleases(count);
        renames = 0;
        BenchEngine::setTracing(true);
        for (std::size_t seen = renames; seen < count; seen = renames) {
            renames.wait(seen);
        }
        state.SetIterationTime(secondsSince(expiry, lastRename));
        engine.stop();
    }
    state.counters["reports"] = static_cast<double>(count);
}

void once(benchmark::internal::Benchmark* bench) {
    bench->Iterations(1)->UseManualTime();
}
BENCHMARK_CAPTURE(publish, plain, &VorPm::publishReport)->Apply(once);
BENCHMARK_CAPTURE(publish, gzip, &VorPm::publishGzipReport)->Apply(once);
BENCHMARK_CAPTURE(publish, command, &runGzip)->Name("publish/gzip -6")->Apply(once);
BENCHMARK(phaseEnd)->Name("publish/end of a phase")->Arg(1)->Arg(10)->Arg(100)->Apply(once);

}  // namespace
}  // namespace VorBench

BENCHMARK_MAIN();
