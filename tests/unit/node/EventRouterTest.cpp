#include <atomic>
#include <functional>
#include <future>
#include <memory>
#include <stdexcept>
#include <thread>

#include <Poco/Event.h>
#include <gtest/gtest.h>

#include "Golden.h"
#include "services/EventRouter.h"

namespace VorNode {
namespace {

constexpr long deadline = 10'000;

/// The value of the events here.
struct Visitors {
    std::atomic<unsigned> count{0};
    Poco::Event entered, leave;
};

struct EventRouterTest : testing::Test {
    KelOamSpiEventConsumerHandleT subscribe(KelOamSpiEventConsumer& consumer) {
        KelOamSpiEventConsumerHandleT handle = 0;
        EXPECT_EQ(table.registerConsumer(&consumer, &handle), 0);
        EXPECT_EQ(table.addSubscription(handle, "a", nullptr), 0);
        return handle;
    }
    unsigned send(const char* type = "a") { return router.send(type, &visitors); }

    EventRouter router;
    const VorOamSpiEventRouter_1& table = router.table();
    std::map<std::string, KelOamSpiEventConsumer> consumers{
        {"visitor", {[](auto, auto, auto filter, void* value) {
             static_cast<Visitors*>(value)->count += filter == nullptr ? 1 : 10;
             return -1;
         }}},
        {"staying", {[](auto, auto, auto, void* value) {
             static_cast<Visitors*>(value)->entered.set();
             static_cast<Visitors*>(value)->leave.wait(deadline);
             return 0;
         }}},
        {"failing", {[](auto...) -> KelReturnT { throw std::runtime_error("consumer"); }}},
        {"hollow", {nullptr}}};
    Visitors visitors;
};

TEST_F(EventRouterTest, deliversToEverySubscriptionToTheTypeAndRefusesWhatIsNullUnknownOrDouble) {
    KelNameValuePairT* pairs[1] = {nullptr};
    for (const auto& row : VorTest::goldenTable("event-router.txt")) {
        KelOamSpiEventConsumerHandleT handle = row[1].empty() ? 0 : std::stoul(row[1]), *store = &handle;
        const char* const type = row[2] != "null" ? row[2].c_str() : nullptr;
        KelNameValuePairT** const filter = row[3].empty() ? nullptr : pairs;
        KelOamSpiEventConsumer* const consumer = consumers.contains(row[2]) ? &consumers[row[2]] : nullptr;
        const std::map<std::string, std::function<KelReturnT()>> calls{
            {"register", [&] { return table.registerConsumer(consumer, row[1].empty() ? nullptr : store); }},
            {"add", [&] { return table.addSubscription(handle, type, filter); }},
            {"remove", [&] { return table.removeSubscription(handle, type, filter); }},
            {"unregister", [&] { return table.unregisterConsumer(handle, consumer); }},
            {"send", [&] { return static_cast<KelReturnT>(send(type)); }}};
        const KelReturnT code = calls.at(row[0])();
        std::string result = std::to_string(row[0] == "register" && code == 0 ? int(handle) : code);
        if (row[0] == "send")
            result += " " + std::to_string(visitors.count.exchange(0));
        EXPECT_EQ(result, row[4]) << testing::PrintToString(row);
    }
}

TEST_F(EventRouterTest, removalWaitsForTheRunningDelivery) {
    const auto handle = subscribe(consumers["staying"]);
    auto sent = std::async(std::launch::async, [&] { return send(); });
    EXPECT_TRUE(visitors.entered.tryWait(deadline));
    auto removed = std::async(std::launch::async,
                              [&] { return table.unregisterConsumer(handle, &consumers["staying"]); });
    while (table.addSubscription(handle, "a", nullptr) == -1)
        std::this_thread::yield();
    EXPECT_EQ(removed.wait_for(std::chrono::milliseconds(20)), std::future_status::timeout);
    visitors.leave.set();
    EXPECT_EQ(removed.get(), 0);
    EXPECT_EQ(sent.get(), 1u);
}

TEST_F(EventRouterTest, threadsDoNotDisturbOneAnother) {
    const auto work = [&] {
        for (int round = 0; round < 200; ++round) {
            // On the heap, so that a delivery after the end of `unregisterConsumer` is seen.
            const auto consumer = std::make_unique<KelOamSpiEventConsumer>(consumers.at("visitor"));
            const auto handle = subscribe(*consumer);
            EXPECT_GE(send(), 1u);
            EXPECT_EQ(table.unregisterConsumer(handle, consumer.get()), 0);
        }
    };
    { std::jthread one(work), two(work), three(work); }
    EXPECT_EQ(send(), 0u);
}

}  // namespace
}  // namespace VorNode
