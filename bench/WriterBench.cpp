// How long a report takes to be written, beside other ways to write the same bytes.

#include <chrono>
#include <deque>
#include <filesystem>
#include <functional>
#include <iostream>

#include <benchmark/benchmark.h>

#include "BenchData.h"
#include "TemporaryRoot.h"
#include "WriterPeers.h"

namespace VorBench {
namespace {

constexpr std::pair<const char*, Shape> shapes[] = {
    {"mixed", {}},
    {"mixed, 20 x 200 x 40", {.classes = 20, .objects = 200, .types = 40}},
    {"mixed, tiny GPs", {.gps = 10'000, .objects = 2, .types = 10}},
    {"mixed, names equal by content", {.names = Names::SameContent}},
    {"mixed, 5 % missing", {.names = Names::SomeMissing}},
    {"mixed, shuffled", {.names = Names::Shuffled}},
    {"integers", {.values = Values::Integers}},
    {"short decimals", {.values = Values::ShortDecimals}},
    {"random doubles", {.values = Values::RandomDoubles}},
    {"arrays", {.values = Values::Arrays}},
    {"Nil", {.values = Values::Nil}}};

/// One set of data, and the ways to write it.
struct Case {
    explicit Case(const Shape& shape) : data(shape), gps(makeGps(data.gps())) {
        writeReport(gps);
        bytes = VorTest::readFile(reportPath());
    }

    using Write = std::function<void()>;
    std::vector<std::pair<std::string, Write>> ways() {
        return {{"PmReportWriter", [this] { writeReport(gps); }},
                {"naive", [this] { writeWith<NaivePeer>(path, data.gps()); }},
                {"libxml2", [this] { writeWith<LibxmlPeer>(path, data.gps()); }},
                {"fwrite", [this] { writeBytes(path, bytes); }}};
    }

    const BenchData data;
    HeldGps gps;
    std::string bytes;
    const std::string path = reportPath();
};

/// Adds all ways to write the data. False when the bytes that they write differ.
bool addBenches(const std::string& name, Case& data) {
    for (const auto& [way, write] : data.ways()) {
        write();
        if (VorTest::readFile(data.path) != data.bytes) {
            std::cerr << name << ": the bytes of " << way << " differ\n";
            return false;
        }
        const auto bench = [&data, write = write](benchmark::State& state) {
            for (auto _ : state) {
                const auto begin = std::chrono::steady_clock::now();
                write();
                const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
                state.SetIterationTime(taken.count());
                std::filesystem::remove(data.path);  // every report is a new file
            }
            state.counters["values"] = static_cast<double>(data.data.valueCount());
            state.counters["bytes"] = static_cast<double>(data.bytes.size());
        };
        benchmark::RegisterBenchmark(("writer/" + name + "/" + way).c_str(), bench)->UseManualTime();
    }
    return true;
}

}  // namespace
}  // namespace VorBench

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    const VorTest::TemporaryRoot root;
    root.createReportFolders();
    std::deque<VorBench::Case> cases;
    for (const auto& [name, shape] : VorBench::shapes) {
        if (!VorBench::addBenches(name, cases.emplace_back(shape))) {
            return 1;
        }
    }
    benchmark::RunSpecifiedBenchmarks();
}
