// How many GPs a second get from their event into the report, with the node's services as the platform.

#include <benchmark/benchmark.h>

#include "BenchEngine.h"
#include "Framework.h"

namespace VorBench {
namespace {

using VorTest::Framework;

/// The engine with the node's own store behind the PM service.
BenchEngine& prepareEngine() {
    auto& engine = BenchEngine::instance();
    engine.pm2.getGp = [](std::uint64_t id, const VorOamSpiPmGpData_2** data) -> KelReturnT {
        *data = BenchEngine::instance().store.fetch(id)->version2();
        return VorReturnOk;
    };
    engine.pm2.releaseGp = [](std::uint64_t id) -> KelReturnT {
        BenchEngine::instance().store.release(id);
        ++BenchEngine::released;
        BenchEngine::released.notify_all();
        return VorReturnOk;
    };
    return engine;
}

VorNode::MeasurementData makeData(std::size_t objects, std::size_t types) {
    VorNode::MeasuredClass measured{"Load", {}};
    std::int64_t value = 1;
    for (std::size_t i = 0; i < objects; ++i) {
        auto& object = measured.objects.emplace_back();
        object.ldn = "Load=" + std::to_string(i);
        for (std::size_t j = 0; j < types; ++j) {
            value = value * 7 % 1'000'000'007;
            object.values.push_back({"RRC.ConnEstabSucc." + std::to_string(j), value});
        }
    }
    return {measured};
}

/// GPs of so many objects with 10 values each; announced within a second.
void road(benchmark::State& state) {
    constexpr std::size_t valuesPerRound = 200'000;
    constexpr std::size_t types = 10;
    static BenchEngine& engine = prepareEngine();
    static const KelReturnT loaded = Framework::initialize(engine);
    const auto objects = static_cast<std::size_t>(state.range(0));
    const std::size_t count = valuesPerRound / types / objects;
    const auto data = makeData(objects, types);
    for (auto _ : state) {
        std::vector<VorOamSpiPmEventValue_1> events;
        for (std::size_t i = 0; i < count; ++i) {
            auto records = std::make_unique<VorNode::GpRecords>(data, VorNode::PmVersions::Two);
            const auto gp = engine.store.add("0", VorTest::minute * 1'000'000, std::chrono::minutes(1),
                                             std::move(records));
            events.push_back(BenchEngine::makeEvent("0", gp.id));
        }
        if (loaded + Framework::start() != VorReturnOk) {
            throw std::runtime_error("the component did not start");
        }
        BenchEngine::released = 0;
        BenchEngine::setClock(0);
        const auto begin = Clock::now();
        for (auto& event : events) {
            engine.router.send("VorOamSpiPmEventTypeGpReady_2", &event);
        }
        BenchEngine::awaitReleases(count);
        state.SetIterationTime(secondsSince(begin));
        Framework::stop();
    }
    state.counters["gps"] = static_cast<double>(count);
    state.counters["values"] = static_cast<double>(valuesPerRound);
}
BENCHMARK(road)->Arg(2)->Arg(100)->Arg(1'000)->Iterations(1)->UseManualTime();

}  // namespace
}  // namespace VorBench

BENCHMARK_MAIN();
