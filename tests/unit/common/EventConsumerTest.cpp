#include <atomic>
#include <stdexcept>
#include <thread>
#include <utility>

#include <gtest/gtest.h>

#include "EventConsumer.h"
#include "PmEngine.h"
#include "PmEventConsumer.h"

namespace VorTest {
namespace {

struct Subscriber {
    void on(const char* eventType, void* eventValue) {
        ++calls;
        type = eventType;
        value = eventValue;
        reaction();
    }
    std::atomic<int> calls{0};
    std::string type;
    void* value = nullptr;
    std::function<void()> reaction = [] {};
};
using Consumer = Vor::EventConsumer<Subscriber, 1>;

/// What the router is asked and the operation that it refuses, with 99 for an exception.
std::string asked, refused;
KelReturnT code = 0;
VorOamSpiEventRouter_1 genuine;
KelNameValuePairT** filterGiven = nullptr;

template <auto OperationT>
void watch(PmEngine& engine, const char* operation) {
    static const char* name;
    name = operation;
    engine.routerTable.*OperationT = [](auto... arguments) {
        asked += std::string(name) + " ";
        return name != refused ? (genuine.*OperationT)(arguments...) : code == 99 ? throw 1 : code;
    };
}

void watchRouter(PmEngine& engine) {
    asked = refused = "";
    genuine = engine.routerTable;
    watch<&VorOamSpiEventRouter_1::registerConsumer>(engine, "register");
    watch<&VorOamSpiEventRouter_1::addSubscription>(engine, "add");
    watch<&VorOamSpiEventRouter_1::removeSubscription>(engine, "remove");
    watch<&VorOamSpiEventRouter_1::unregisterConsumer>(engine, "unregister");
}

struct EventConsumerTest : testing::Test {
    EventConsumerTest() { watchRouter(engine); }
    void start(const std::vector<Vor::NameValuePair>& filter = {}) {
        consumer.start(filter, &Subscriber::on, subscriber, "type");
    }
    unsigned send() { return engine.router.send("type", this); }

    PmEngine engine;
    Subscriber subscriber;
    Consumer consumer;
};

}  // namespace

TEST_F(EventConsumerTest, EndsUpStoppedWhateverTheRouterRefuses) {
    const struct {
        std::string refused, asked;
        unsigned reached;
    } rows[] = {{"", "register add remove unregister ", 1},
                {"register", "register ", 0},
                {"add", "register add unregister ", 0},
                {"remove", "register add remove unregister ", 1}};
    EXPECT_THROW(Consumer(), Poco::AssertionViolationException) << "a second one";
    consumer.stop();
    for (const auto& row : rows) {
        for (const KelReturnT answer : {-1, 99}) {
            refused = row.refused;
            code = answer;
            start();
            EXPECT_EQ(send(), row.reached);
            EXPECT_EQ(subscriber.calls.exchange(0), int(row.reached));
            consumer.stop();
            consumer.stop();
            EXPECT_EQ(std::exchange(asked, ""), row.asked);
            EXPECT_EQ(send(), 0U);
        }
    }
    refused = "";
    start();
    Vor::Portal::instance().connect(nullptr);
    consumer.stop();
    EXPECT_EQ(send(), 1U) << "which is not let in any more";
    EXPECT_EQ(subscriber.calls, 0);
}

TEST_F(EventConsumerTest, HandsOnFilterAndEventButNoException) {
    engine.routerTable.addSubscription = [](auto handle, auto type, auto filter) {
        filterGiven = filter;
        return genuine.addSubscription(handle, type, filter);
    };
    const std::string raw = "raw";
    start({{"name", "value"}, Vor::NameValuePair::withRawValue("n", raw.c_str())});
    EXPECT_EQ(filterGiven[0]->name + std::string(filterGiven[0]->value) + filterGiven[1]->name, "namevaluen");
    EXPECT_EQ(filterGiven[1]->value, raw.c_str());
    EXPECT_EQ(filterGiven[2], nullptr);
    send();
    EXPECT_EQ(subscriber.type, "type");
    EXPECT_EQ(subscriber.value, this);
    subscriber.reaction = [] { throw std::runtime_error("%s"); };
    EXPECT_EQ(Consumer::notifyCallback(0, "type", nullptr, nullptr), 0);
    subscriber.reaction = [] { throw 1; };
    EXPECT_EQ(Consumer::notifyCallback(0, "type", nullptr, nullptr), 0);
}

TEST_F(EventConsumerTest, RunsNoCallbackOnceStopHasReturned) {
    // A router that neither waits nor forgets.
    static Poco::Event unregistered;
    engine.routerTable.removeSubscription = [](auto, auto, auto) { return KelReturnT{0}; };
    engine.routerTable.unregisterConsumer = [](auto, auto) { return unregistered.set(), KelReturnT{0}; };
    Poco::Event entered, stopped;
    subscriber.reaction = [&] {
        entered.set();
        unregistered.wait(deadline);
        EXPECT_FALSE(stopped.tryWait(20)) << "while this runs";
    };
    start();
    std::thread sender([this] { send(); });
    entered.wait(deadline);
    consumer.stop();
    stopped.set();
    EXPECT_EQ(send(), 1U);
    EXPECT_EQ(subscriber.calls, 1);
    sender.join();
}

TEST(PmEventConsumer, PassesEventsOfBothTypesOn) {
    struct : VorPm::IPmEventManager {
        KelReturnT pushGp(const VorOamSpiPmEventValue_1& event) override {
            return ids.push_back(event.gpId), -2;
        }
        std::vector<std::uint64_t> ids;
    } manager;
    PmEngine engine;
    watchRouter(engine);
    auto& consumer = VorPm::PmEventConsumer::instance();
    VorOamSpiPmEventValue_1 event{1ULL << 63, "J1", 0, 0};
    consumer.notify("type", &event);
    consumer._taskManager = &manager;
    consumer.notify(nullptr, &event);
    consumer.notify("type", nullptr);
    EXPECT_EQ(consumer.start(nullptr), 0);
    for (const char* type : {"VorOamSpiPmEventTypeGpReady_1", "VorOamSpiPmEventTypeGpReady_2"})
        EXPECT_EQ(engine.router.send(type, &event), 1U);
    EXPECT_EQ(manager.ids, std::vector(2, event.gpId));
    EXPECT_EQ(consumer.stop(), 0);
    asked = "";
    refused = "add";
    code = -1;
    EXPECT_EQ(consumer.start(nullptr), 0) << "whatever became of the subscriptions";
    EXPECT_EQ(asked, "register add unregister register add unregister ") << "the second was tried, too";
}

}  // namespace VorTest
