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

/// What the router is asked, the operation that it refuses, with 99 for an exception, and the last filter.
std::string asked, refused;
KelReturnT code = 0;
KelNameValuePairT** filterGiven = nullptr;
VorOamSpiEventRouter_1 genuine;

template <class WorkT>
KelReturnT ask(const std::string& operation, WorkT work) {
    asked += operation + " ";
    return operation != refused ? work() : code == 99 ? throw 1 : code;
}

void watchRouter(PmEngine& engine) {
    asked = refused = "";
    genuine = engine.routerTable;
    engine.routerTable.registerConsumer = [](auto record, auto handle) {
        return ask("register", [=] { return genuine.registerConsumer(record, handle); });
    };
    engine.routerTable.addSubscription = [](auto handle, auto type, auto filter) {
        filterGiven = filter;
        return ask("add", [=] { return genuine.addSubscription(handle, type, filter); });
    };
    engine.routerTable.removeSubscription = [](auto handle, auto type, auto filter) {
        return ask("remove", [=] { return genuine.removeSubscription(handle, type, filter); });
    };
    engine.routerTable.unregisterConsumer = [](auto handle, auto record) {
        return ask("unregister", [=] { return genuine.unregisterConsumer(handle, record); });
    };
}

const std::string noConsumer = "3 start Could not register consumer";
const std::string noSubscription = "3 start Could not add subscription";

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

TEST_F(EventConsumerTest, SubscribesAndUnsubscribesAnyNumberOfTimes) {
    EXPECT_THROW(Consumer(), Poco::AssertionViolationException) << "a second one";
    consumer.stop();
    const std::string raw = "raw";
    for (int round = 1; round <= 2; ++round) {
        start({{"name", "value"}, Vor::NameValuePair::withRawValue("n", raw.c_str())});
        EXPECT_EQ(filterGiven[0]->name + std::string(filterGiven[0]->value) + filterGiven[1]->name,
                  "namevaluen");
        EXPECT_EQ(filterGiven[1]->value, raw.c_str());
        EXPECT_EQ(filterGiven[2], nullptr);
        EXPECT_EQ(send(), 1U);
        EXPECT_EQ(subscriber.calls, round);
        EXPECT_EQ(subscriber.type, "type");
        EXPECT_EQ(subscriber.value, this);
        consumer.stop();
        EXPECT_EQ(std::exchange(asked, ""), "register add remove unregister ");
        EXPECT_EQ(send(), 0U);
    }
    start();
    EXPECT_EQ(filterGiven[0], nullptr);
    subscriber.reaction = [] { throw std::runtime_error("%s"); };
    EXPECT_EQ(Consumer::notifyCallback(0, "type", nullptr, nullptr), 0);
    subscriber.reaction = [] { throw 1; };
    EXPECT_EQ(Consumer::notifyCallback(0, "type", nullptr, nullptr), 0);
    EXPECT_EQ(engine.messages(), (Texts{"4 notifyCallback Exception thrown from event consumer :%s",
                                        "4 notifyCallback Unknown exception thrown from event consumer"}));
}

TEST_F(EventConsumerTest, EndsUpStoppedWhateverTheRouterRefuses) {
    const struct {
        std::string refused, asked;
        Texts messages;
    } rows[] = {{"register", "register ", {noConsumer}},
                {"add", "register add unregister ", {noSubscription}},
                {"remove", "register add remove unregister ", {}}};
    for (const auto& row : rows) {
        for (const KelReturnT answer : {-1, 99}) {
            refused = row.refused;
            code = answer;
            start({{"n", "v"}});
            consumer.stop();
            consumer.stop();
            EXPECT_EQ(std::exchange(asked, ""), row.asked);
            EXPECT_EQ(engine.messages(), row.messages);
            EXPECT_EQ(send(), 0U);
        }
    }
    EXPECT_EQ(engine.count("stop Could not unregister event subscription, eventType type"), 2);
    refused = "";
    start();
    Vor::Portal::instance().connect(nullptr);
    consumer.stop();
    EXPECT_EQ(engine.count("stop Could not unregister event consumer, eventType type"), 1);
    EXPECT_EQ(send(), 1U) << "which is not let in any more";
    EXPECT_EQ(subscriber.calls, 0);
    start();
    const std::string noRouter = "4 getInterface Interface VorOamSpiEventRouter not found";
    EXPECT_EQ(engine.messages(), (Texts{noRouter, noRouter, noConsumer}));
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
    consumer.notify(nullptr, &event);
    consumer.notify("type", nullptr);
    EXPECT_EQ(engine.messages(), (Texts{"3 notify Notify Called without taskmanager set",
                                        "3 notify Parameter error", "3 notify Parameter error"}));
    consumer._taskManager = &manager;
    EXPECT_EQ(consumer.start(nullptr), 0);
    for (const char* type : {"VorOamSpiPmEventTypeGpReady_1", "VorOamSpiPmEventTypeGpReady_2"})
        EXPECT_EQ(engine.router.send(type, &event), 1U);
    EXPECT_EQ(manager.ids, std::vector(2, event.gpId));
    EXPECT_EQ(consumer.stop(), 0);
    refused = "add";
    code = -1;
    EXPECT_EQ(consumer.start(nullptr), 0) << "whatever became of the subscriptions";
    EXPECT_EQ(engine.messages(), Texts(2, noSubscription)) << "the second was tried, too";
}

}  // namespace VorTest
