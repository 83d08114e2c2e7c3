// How long an event keeps the thread that delivers it while the worker drains the queue, beside the bare
// parts of that.

#include <algorithm>
#include <latch>
#include <mutex>
#include <thread>

#include <benchmark/benchmark.h>

#include "BenchData.h"
#include "BenchEngine.h"
#include "BenchReport.h"
#include "PmTask.h"

namespace VorBench {
namespace {

constexpr std::size_t eventsPerRound = 40'000;
constexpr std::size_t batch = 4;

/// In ns.
using Latencies = std::vector<double>;

/// The mean of each of so many batches.
template <class OperationT>
void measure(Latencies& latencies, std::size_t batches, std::size_t size, const OperationT& operation) {
    for (std::size_t i = 0; i < batches; ++i) {
        const auto begin = Clock::now();
        for (std::size_t j = 0; j < size; ++j) {
            operation();
        }
        latencies.push_back(secondsSince(begin) * 1e9 / static_cast<double>(size));
    }
}

double percentile(Latencies& latencies, double share) {
    const auto at = latencies.begin() + static_cast<long>(share * static_cast<double>(latencies.size() - 1));
    std::nth_element(latencies.begin(), at, latencies.end());
    return *at;
}

/// Runs the operation from as many threads as the bench's first argument says. To read the clock takes as
/// long as the operation, so p50 is that of batches; beside the rare long ones it does not count.
template <class OperationT>
void measureRound(benchmark::State& state, const OperationT& operation) {
    Latencies batches, single;
    std::mutex mutex;
    std::latch ready(state.range(0));
    std::vector<std::thread> threads;
    for (std::int64_t i = 0; i < state.range(0); ++i) {
        threads.emplace_back([&] {
            const std::size_t count = eventsPerRound / static_cast<std::size_t>(state.range(0));
            Latencies ownBatches, ownSingle;
            ownSingle.reserve(count);
            ready.arrive_and_wait();
            measure(ownBatches, count / batch, batch, operation);
            measure(ownSingle, count, 1, operation);
            std::lock_guard lock(mutex);
            batches.insert(batches.end(), ownBatches.begin(), ownBatches.end());
            single.insert(single.end(), ownSingle.begin(), ownSingle.end());
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    state.counters["p50"] = percentile(batches, 0.5);
    state.counters["p99"] = percentile(single, 0.99);
    state.counters["p99.9"] = percentile(single, 0.999);
    state.SetIterationTime(percentile(batches, 0.5) * 1e-9);
}

/// The second argument is the second of the minute at which the events of its beginning come.
void pushGp(benchmark::State& state) {
    auto& engine = BenchEngine::instance();
    const auto event = BenchEngine::makeEvent("0");
    for (auto _ : state) {
        engine.start(50);
        BenchEngine::setClock(state.range(1));
        engine.tasks->pushGp(event);  // opens the phase
        measureRound(state, [&] { engine.tasks->pushGp(event); });
        engine.stop();
    }
}

/// Lock, new holder, push and signal, with a worker that does with a GP what the component's does.
class BareParts {
  public:
    void push(const VorOamSpiPmEventValue_1& event) {
        Poco::Mutex::ScopedLock lock(_mutex);
        _queue.emplace_back(new VorPm::PmGpData(event, &_engine.pm2));
        _available.set();
    }
    ~BareParts() {
        _running = false;
        _available.set();
        _worker.join();
    }

  private:
    void run() {
        while (_running) {
            auto gp = pop();
            if (gp.isNull()) {
                _available.wait();
            } else if (_engine.collector.populateMo(gp) == VorReturnOk) {
                VorPm::PmTask(gp, _engine.collector, _writer.get()).runTask();
            }
        }
    }

    Poco::AutoPtr<VorPm::PmGpData> pop() {
        Poco::Mutex::ScopedLock lock(_mutex);
        Poco::AutoPtr<VorPm::PmGpData> gp;
        if (!_queue.empty()) {
            gp = _queue.front();
            _queue.pop_front();
        }
        return gp;
    }

    BenchEngine& _engine = BenchEngine::instance();
    std::deque<Poco::AutoPtr<VorPm::PmGpData>> _queue;
    Poco::Mutex _mutex;
    Poco::Event _available;
    std::atomic<bool> _running = true;
    const std::unique_ptr<VorPm::PmReportWriter> _writer = openReport("Bare");
    std::thread _worker{[this] { run(); }};
};

void bareParts(benchmark::State& state) {
    const auto event = BenchEngine::makeEvent("0");
    for (auto _ : state) {
        BenchEngine::instance().renew();
        BareParts parts;
        measureRound(state, [&] { parts.push(event); });
    }
}

/// A thread is slower while the other one of its core is busy, so each bench is run anew several times, and
/// the quickest run counts.
void repeatedly(benchmark::internal::Benchmark* bench) {
    bench->Iterations(1)->Repetitions(9)->UseManualTime();
}
BENCHMARK(bareParts)->Name("intake/bare parts")->Arg(1)->Arg(4)->Apply(repeatedly);
BENCHMARK(pushGp)->Name("intake/pushGp")->Args({1, 0})->Args({4, 0})->Apply(repeatedly);
BENCHMARK(pushGp)->Name("intake/pushGp 10 s later")->Args({1, 10})->Args({4, 10})->Apply(repeatedly);

}  // namespace
}  // namespace VorBench

int main(int argc, char** argv) {
    const VorBench::BenchData data({.objects = 1, .types = 10});
    VorBench::BenchEngine::lent = data.gps().data();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
