#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "Framework.h"

namespace VorTest {
namespace {

/// An operation, what it does instead of its work while it is broken, and the attribute that is concerned.
std::string operation, behaviour, attribute;
std::atomic<bool> broken;
PmEngine* current = nullptr;

bool isConcerned(const auto& argument) {
    if constexpr (std::is_same_v<decltype(argument), const char* const&>)
        return argument == attribute;
    return attribute.empty();
}

/// 0 when the operation is to do its work all the same.
KelReturnT misbehave(const char* name, const auto&... arguments) {
    if (!broken || operation != name || !(... || isConcerned(arguments)))
        return 0;
    current->happened("misbehaved");
    if (behaviour == "outlasts")
        return current->await("interruptWriters <<"), 0;
    return behaviour == "throws" ? throw 1 : behaviour == "null" ? 0 : std::stoi(behaviour);
}

template <auto OperationT>
void disturb(auto& table, const char* operationName) {
    static const char* name;
    static const auto genuine = table.*OperationT;
    name = operationName;
    table.*OperationT = [](auto... arguments) {
        const KelReturnT code = misbehave(name, arguments...);
        return code != 0 ? code : genuine(arguments...);
    };
}

void disturbAll(PmEngine& engine) {
    using Objects = VorOamSpiManagedObject_1;
    using Master = KelOamSpiTransactionMaster_1;
    using Router = VorOamSpiEventRouter_1;
    auto& master = engine.transactions.table();
    auto& repository = engine.repository.table();
    static auto classQuery = *repository.classQuery;
    repository.classQuery = &classQuery;
    disturb<&VorOamSpiClassQuery_2::getClassFromDn>(classQuery, "getClassFromDn");
    disturb<&Objects::getMoAttribute>(engine.objectTable, "getMoAttribute");
    disturb<&Objects::setMoAttribute>(engine.objectTable, "setMoAttribute");
    disturb<&Objects::newMoIterator>(engine.objectTable, "newMoIterator");
    disturb<&Objects::nextMo>(engine.objectTable, "nextMo");
    disturb<&Objects::finalizeMoIterator>(engine.objectTable, "finalizeMoIterator");
    disturb<&Master::createTransaction>(master, "createTransaction");
    disturb<&Master::commitTransaction>(master, "commitTransaction");
    disturb<&Master::abortTransaction>(master, "abortTransaction");
    disturb<&Router::registerConsumer>(engine.routerTable, "registerConsumer");
    disturb<&Router::addSubscription>(engine.routerTable, "addSubscription");
    disturb<&Router::removeSubscription>(engine.routerTable, "removeSubscription");
    disturb<&Router::unregisterConsumer>(engine.routerTable, "unregisterConsumer");
    engine.getGp = [genuine = engine.getGp](auto id, auto*& records) {
        const KelReturnT code = misbehave("getGp", id);
        return code != 0 || (broken && behaviour == "null") ? code : genuine(id, records);
    };
    engine.releaseGp = [genuine = engine.releaseGp](auto id) {
        const KelReturnT code = genuine(id), wrong = misbehave("releaseGp", id);
        current->happened("released " + std::to_string(id));
        return wrong != 0 ? wrong : code;
    };
}

struct ServicesTest : testing::TestWithParam<std::size_t> {
    ~ServicesTest() override {
        std::printf("services: %s, %zu GPs, violations %d\n", operation.c_str(), engine.taken.size(),
                    testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count());
    }
    void announce(std::int64_t now, std::int64_t end) {
        if (engine.announce("Processor", now, end) == 0)
            engine.await("released " + std::to_string(engine.announced));
    }
    PmEngine engine;
};

}  // namespace

TEST_P(ServicesTest, AreSurvivedWhateverTheyDo) {
    const Texts row = goldenTable("service-faults.txt").at(GetParam());
    std::istringstream(row[0]) >> operation >> behaviour >> attribute;
    int firstStart = 0, nextStart = 0, now = 0, third = 0;
    std::istringstream(row[2]) >> firstStart >> nextStart >> now >> third;
    const std::string command = readFile(engine.root.path() / "bin" / "vorea"), &job = row[3];
    current = &engine;
    disturbAll(engine);
    EXPECT_EQ(std::system(("cd " + engine.root.path().string() + " && " + row[1]).c_str()), 0);
    broken = job.empty();
    EXPECT_EQ(Framework::initialize(engine), 0);
    EXPECT_EQ(Framework::start(), firstStart);
    announce(now, 0);
    broken = true;
    if (!job.empty()) {
        EXPECT_EQ(engine.announce(job, now, std::stoll(row[4])), 0);
        engine.awaitUnlessEnded(row[5]);
    }
    if (third != 0) {
        broken = false;
        announce(60, 60);
    }
    EXPECT_EQ(Framework::stop(), 0);
    broken = false;
    engine.happenings[workerEnded] = 0;
    Texts messages = engine.messages();
    for (std::size_t i = 0; i < messages.size(); ++i)
        messages[i].resize(std::min(messages[i].size(), row.size() > 7 + i ? row[7 + i].size() : 80));
    EXPECT_EQ(messages, Texts(row.begin() + 7, row.end()));
    engine.root.answerWith(command);
    EXPECT_EQ(Framework::start(), nextStart) << row[0];
    announce(120, 120);
    EXPECT_EQ(Framework::stop(), 0);
    std::string gps;
    if (nextStart == 0)
        for (const std::string& report : engine.reports())
            gps += (gps.empty() ? "" : "/") + report.substr(report.find(':') + 1);
    EXPECT_EQ(gps, row[6]);
}
INSTANTIATE_TEST_SUITE_P(Services, ServicesTest,
                         testing::Range<std::size_t>(0, goldenTable("service-faults.txt").size()));

TEST_F(ServicesTest, EightThreadsDeliverAlsoWhenNobodyIsSubscribed) {
    static std::atomic<decltype(KelOamSpiEventConsumer::notify)> notify;
    static const auto genuine = engine.routerTable.registerConsumer;
    engine.routerTable.registerConsumer = [](auto* consumer, auto* handle) {
        return notify = consumer->notify, genuine(consumer, handle);
    };
    std::mutex adding;
    const auto deliver = [&] {
        std::unique_lock lock(adding);
        const VorNode::MeasurementData data{
            {"Load", {{"Load=1", {{"id", static_cast<std::int64_t>(++engine.announced)}}}}}};
        const std::uint64_t end = minute * 1'000'000'000ULL;
        VorOamSpiPmEventValue_1 event{
            engine.store
                .add("Processor", minute * 1'000'000, std::chrono::minutes(1),
                     std::make_unique<VorNode::GpRecords>(data, VorNode::PmVersions::Two))
                .id,
            "Processor", end - 60'000'000'000, end};
        lock.unlock();
        EXPECT_EQ(notify.load()(1, "VorOamSpiPmEventTypeGpReady_2", nullptr, &event), 0);
        return event.gpId;
    };
    EXPECT_EQ(Framework::initialize(engine) + Framework::start(), 0);
    std::vector<std::jthread> threads(8);
    for (std::jthread& thread : threads)
        thread = std::jthread([&](const std::stop_token& end) {
            while (!end.stop_requested())
                deliver();
        });
    for (int round = 0; round < 5; ++round) {
        engine.await("releaseGp2 " + std::to_string(deliver()));
        EXPECT_EQ(Framework::stop(), 0);
        EXPECT_EQ(engine.count("getGp2 " + std::to_string(deliver())), 0);
        EXPECT_EQ(Framework::start(), 0);
    }
    threads.clear();
    EXPECT_EQ(Framework::stop(), 0);
    for (std::uint64_t id = 1; id <= engine.announced; ++id)
        if (engine.count("notify Got event with gpid " + std::to_string(id)) > 0)
            engine.taken.push_back(id);
    EXPECT_EQ(engine.store.unreleased().size(), engine.announced - engine.taken.size());
}

}  // namespace VorTest
