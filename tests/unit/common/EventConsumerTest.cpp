#include <atomic>
#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include "EventConsumer.h"
#include "PmEngine.h"
#include "PmEventConsumer.h"

namespace VorTest {
namespace {

struct Subscriber {
    void on(const char* type, void* value) {
        ++calls;
        reaction(type, value);
    }
    std::atomic<int> calls{0};
    std::function<void(const std::string& type, void* value)> reaction = [](auto, auto) {};
};
using Consumer = Vor::EventConsumer<Subscriber, 1>;

VorOamSpiEventRouter_1 genuine;
unsigned unregistered = 0;
KelNameValuePairT** filterGiven = nullptr;
Poco::Event asked;

struct EventConsumerTest : testing::Test {
    EventConsumerTest() { genuine = engine.routerTable; }
    void start(const std::vector<Vor::NameValuePair>& filter = {}) {
        consumer.start(filter, &Subscriber::on, subscriber, "type");
    }
    unsigned send() { return engine.router.send("type", this); }

    PmEngine engine;
    Subscriber subscriber;
    Consumer consumer;
};

}  // namespace

TEST_F(EventConsumerTest, UnregistersOnceWhetherItsSubscriptionIsRefusedOrNot) {
    EXPECT_THROW(Consumer(), Poco::AssertionViolationException) << "a second one";
    engine.routerTable.unregisterConsumer = [](auto handle, auto registered) {
        return ++unregistered, genuine.unregisterConsumer(handle, registered);
    };
    for (const unsigned isRefused : {1U, 0U}) {
        engine.routerTable.addSubscription = genuine.addSubscription;
        if (isRefused == 1U)
            engine.routerTable.addSubscription = [](auto, auto, auto) { return KelReturnT{-1}; };
        start();
        EXPECT_EQ(unregistered, isRefused);
        EXPECT_EQ(send(), 1U - isRefused);
        consumer.stop();
        consumer.stop();
        EXPECT_EQ(std::exchange(unregistered, 0U), 1U);
        EXPECT_EQ(send(), 0U);
    }
    start();
    Vor::Portal::instance().connect(nullptr);
    consumer.stop();
    EXPECT_EQ(send(), 1U) << "which is not let in any more";
    EXPECT_EQ(subscriber.calls, 1);
}

TEST_F(EventConsumerTest, StopsWhenTheLookUpOfTheRouterThrows) {
    start();
    Vor::Portal::instance().connect([](auto, auto) -> KelReturnT { throw 1; });
    consumer.stop();
    EXPECT_EQ(engine.messages(), Texts{"4 getInterface Interface VorOamSpiEventRouter not found"});
    EXPECT_EQ(send(), 1U);
    EXPECT_EQ(subscriber.calls, 0) << "what comes is not let in any more";
}

TEST_F(EventConsumerTest, HandsOnFilterAndEventButNoException) {
    engine.routerTable.addSubscription = [](auto handle, auto type, auto filter) {
        return genuine.addSubscription(handle, type, filterGiven = filter);
    };
    const std::string raw = "raw";
    start({{"name", "value"}, Vor::NameValuePair::withRawValue("n", raw.c_str())});
    EXPECT_EQ(filterGiven[0]->name + std::string(filterGiven[0]->value) + filterGiven[1]->name, "namevaluen");
    EXPECT_EQ(filterGiven[1]->value, raw.c_str());
    EXPECT_EQ(filterGiven[2], nullptr);
    subscriber.reaction = [this](auto type, auto value) {
        throw std::runtime_error(type == "type" && value == this ? "%s" : "other");
    };
    EXPECT_EQ(Consumer::notifyCallback(0, "type", nullptr, this), 0);
    EXPECT_EQ(engine.messages(), Texts{"4 notifyCallback Exception thrown from event consumer :%s"});
}

TEST_F(EventConsumerTest, RunsNoCallbackOnceStopHasReturned) {
    // A router that neither waits nor forgets.
    engine.routerTable.removeSubscription = [](auto, auto, auto) { return KelReturnT{0}; };
    engine.routerTable.unregisterConsumer = [](auto, auto) { return asked.set(), KelReturnT{0}; };
    Poco::Event entered, stopped;
    subscriber.reaction = [&](auto, auto) {
        entered.set();
        asked.wait(deadline);
        EXPECT_FALSE(stopped.tryWait(20)) << "while this runs";
    };
    start();
    std::jthread sender([this] { send(); });
    entered.wait(deadline);
    consumer.stop();
    stopped.set();
    EXPECT_EQ(send(), 1U);
    EXPECT_EQ(subscriber.calls, 1);
}

TEST_F(EventConsumerTest, TakesAnEventThatComesWithItsSubscription) {
    engine.routerTable.addSubscription = [](auto handle, auto type, auto filter) {
        EXPECT_EQ(Consumer::notifyCallback(handle, type, filter, nullptr), 0);
        return genuine.addSubscription(handle, type, filter);
    };
    start();
    EXPECT_EQ(subscriber.calls, 1);
    consumer.stop();
}

TEST_F(EventConsumerTest, IsSubscribedOnceHoweverOftenItIsStarted) {
    start();
    start();
    EXPECT_EQ(send(), 1U);
    consumer.stop();
    EXPECT_EQ(send(), 0U);
}

TEST(PmEventConsumer, PassesOnNoEventWithoutTypeValueOrReceiver) {
    struct : VorPm::IPmEventManager {
        KelReturnT pushGp(const VorOamSpiPmEventValue_1&) override { return ++pushed, -2; }
        int pushed = 0;
    } manager;
    auto& consumer = VorPm::PmEventConsumer::instance();
    VorOamSpiPmEventValue_1 event{1, "J1", 0, 0};
    consumer.notify("type", &event);
    consumer._taskManager = &manager;
    consumer.notify(nullptr, &event);
    consumer.notify("type", nullptr);
    EXPECT_EQ(manager.pushed, 0);
    consumer.notify("type", &event);
    EXPECT_EQ(manager.pushed, 1);
}

}  // namespace VorTest
