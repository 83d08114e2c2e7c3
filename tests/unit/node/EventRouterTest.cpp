#include <atomic>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include <Poco/Event.h>
#include <gtest/gtest.h>

#include "services/EventRouter.h"

namespace VorNode {
namespace {

using namespace std::chrono_literals;

constexpr long deadline = 10'000;

/// The value of the events here.
struct Visitors {
    std::atomic<unsigned> count{0};
    Poco::Event entered, leave;
};

KelReturnT visit(unsigned long, const char*, KelNameValuePairT** filter, void* value) {
    static_cast<Visitors*>(value)->count += filter == nullptr ? 1 : 10;
    return -1;
}
KelReturnT stay(unsigned long, const char*, KelNameValuePairT**, void* value) {
    static_cast<Visitors*>(value)->entered.set();
    static_cast<Visitors*>(value)->leave.wait(deadline);
    return 0;
}
KelReturnT fail(unsigned long, const char*, KelNameValuePairT**, void*) {
    throw std::runtime_error("consumer");
}

struct EventRouterTest : testing::Test {
    KelOamSpiEventConsumerHandleT subscribe(KelOamSpiEventConsumer& consumer, const char* type) {
        KelOamSpiEventConsumerHandleT handle = 0;
        EXPECT_EQ(table.registerConsumer(&consumer, &handle), 0);
        EXPECT_EQ(table.addSubscription(handle, type, nullptr), 0);
        return handle;
    }
    unsigned send() { return router.send("a", &visitors); }

    EventRouter router;
    const VorOamSpiEventRouter_1& table = reinterpret_cast<VorOamSpiEventRouter_1&>(router.interface());
    KelOamSpiEventConsumer visiting{&visit}, staying{&stay}, failing{&fail}, empty{nullptr};
    Visitors visitors;
    KelNameValuePairT* filter[1] = {nullptr};
};

TEST_F(EventRouterTest, deliversToEverySubscriptionToTheTypeAlone) {
    EXPECT_EQ(send(), 0u);
    subscribe(failing, "a");
    const auto other = subscribe(visiting, "b");
    const auto handle = subscribe(visiting, "a");
    EXPECT_EQ(table.addSubscription(handle, "a", filter), 0);
    EXPECT_EQ(send(), 3u);
    EXPECT_EQ(visitors.count, 1u + 10u);
    EXPECT_EQ(table.removeSubscription(handle, "a", nullptr), 0);
    EXPECT_EQ(send(), 2u);
    EXPECT_EQ(visitors.count, 11u + 10u);
    EXPECT_EQ(table.unregisterConsumer(handle, &visiting), 0) << "with a subscription left";
    EXPECT_EQ(send(), 1u);
    EXPECT_EQ(table.unregisterConsumer(other, &visiting), 0);
    EXPECT_GT(subscribe(visiting, "a"), handle) << "handles are not used again";
}

TEST_F(EventRouterTest, refusesWhatIsNullUnknownOrDouble) {
    const auto handle = subscribe(visiting, "a");
    auto unused = handle;
    EXPECT_EQ(table.registerConsumer(nullptr, &unused), -1);
    EXPECT_EQ(table.registerConsumer(&empty, &unused), -1);
    EXPECT_EQ(table.registerConsumer(&visiting, nullptr), -1);
    EXPECT_EQ(table.addSubscription(handle, nullptr, nullptr), -1);
    EXPECT_EQ(table.addSubscription(handle, "a", nullptr), -1);
    EXPECT_EQ(table.addSubscription(handle + 1, "a", nullptr), -2);
    EXPECT_EQ(table.removeSubscription(handle, nullptr, nullptr), -1);
    EXPECT_EQ(table.removeSubscription(handle, "b", nullptr), -2);
    EXPECT_EQ(table.removeSubscription(handle, "a", filter), -2);
    EXPECT_EQ(table.removeSubscription(handle + 1, "a", nullptr), -2);
    EXPECT_EQ(table.unregisterConsumer(handle, &failing), -1);
    EXPECT_EQ(table.unregisterConsumer(handle + 1, &visiting), -2);
    EXPECT_EQ(send(), 1u) << "nothing of this has changed anything";
}

TEST_F(EventRouterTest, removalWaitsForTheRunningDelivery) {
    for (const bool unregisters : {false, true}) {
        const auto handle = subscribe(staying, "a");
        auto sent = std::async(std::launch::async, [&] { return send(); });
        EXPECT_TRUE(visitors.entered.tryWait(deadline));
        auto removed = std::async(std::launch::async, [&] {
            return unregisters ? table.unregisterConsumer(handle, &staying)
                               : table.removeSubscription(handle, "a", nullptr);
        });
        while (table.addSubscription(handle, "a", nullptr) == -1)
            std::this_thread::yield();
        EXPECT_EQ(removed.wait_for(20ms), std::future_status::timeout) << "while the delivery runs";
        visitors.leave.set();
        EXPECT_EQ(removed.get(), 0);
        EXPECT_EQ(sent.get(), 1u);
        EXPECT_EQ(table.unregisterConsumer(handle, &staying), unregisters ? -2 : 0);
    }
}

TEST_F(EventRouterTest, threadsDoNotDisturbOneAnother) {
    std::atomic<unsigned> delivered{0};
    const auto work = [&] {
        for (int round = 0; round < 200; ++round) {
            // On the heap, so that a delivery after the end of `unregisterConsumer` is seen.
            const auto consumer = std::make_unique<KelOamSpiEventConsumer>(visiting);
            const auto handle = subscribe(*consumer, "a");
            delivered += send();
            EXPECT_EQ(table.unregisterConsumer(handle, consumer.get()), 0);
        }
    };
    std::thread threads[] = {std::thread(work), std::thread(work), std::thread(work)};
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(delivered, visitors.count);
    EXPECT_GE(delivered, 3 * 200u);
    EXPECT_EQ(send(), 0u);
}

}  // namespace
}  // namespace VorNode
