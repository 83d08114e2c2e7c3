#include <chrono>
#include <cmath>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include <Poco/Mutex.h>
#include <Poco/Semaphore.h>
#include <gtest/gtest.h>

#include "InputError.h"
#include "WallClock.h"
#include "services/PmService.h"

namespace VorNode {
namespace {

using Texts = std::vector<std::string>;

constexpr std::int64_t millisecond = 1'000'000;
/// 2026-03-05T13:15:00Z: every job's period ends here.
constexpr std::int64_t base = 1'772'716'500'000 * millisecond;

Poco::Timestamp at(double second) {
    return base / 1000 + static_cast<std::int64_t>(second * 1e6);
}
double secondOf(Poco::Timestamp time) {
    return static_cast<double>(time - at(0)) / 1e6;
}

template <class... PartsT>
std::string join(const PartsT&... parts) {
    std::ostringstream out;
    (out << ... << parts);
    return out.str();
}

/// What happens on all threads: the producer, the listener and the consumer note it here.
class Notes : public PmServiceListener, public MeasurementProducer {
  public:
    void add(const std::string& note) {
        Poco::FastMutex::ScopedLock lock(_mutex);
        _notes.push_back(note);
        _count.set();
    }
    /// Waits for the next.
    std::string next(long milliseconds = 10'000) {
        if (!_count.tryWait(milliseconds))
            return "nothing";
        Poco::FastMutex::ScopedLock lock(_mutex);
        return _notes[_taken++];
    }
    void expect(const Texts& notes) {
        for (const std::string& note : notes)
            EXPECT_EQ(next(), note);
    }

    std::unique_ptr<JobMeasurement> startJob(const std::string& id, const Texts& classes) override;
    void add(const char* what, const GpInfo& gp) {
        add(join(what, gp.id, " ", gp.jobId, " ", secondOf(gp.end)));
    }
    void gpAnnounced(const GpInfo& gp) override { add("announced ", gp); }
    void gpWithdrawn(const GpInfo& gp) override { add("withdrawn ", gp); }
    void gpFetched(const GpInfo& gp) override { add("fetched ", gp); }
    void gpReleased(const GpInfo& gp) override { add("released ", gp); }
    void gpOverdue(const GpInfo& gp) override { add("overdue ", gp); }
    void clockStepped(double seconds) override { add(join("step ", std::lround(seconds))); }
    void periodLost(const std::string& job, const std::string& why) override { add(join(job, ": ", why)); }

  private:
    Poco::FastMutex _mutex;
    Poco::Semaphore _count{0, 1000};
    Texts _notes;
    std::size_t _taken = 0;
};

struct FakeJob : JobMeasurement {
    FakeJob(std::string jobId, Notes& target) : id(std::move(jobId)), notes(target) {}
    void begin() override {}
    MeasurementData cut(Coverage coverage) override {
        if (id == "broken")
            throw std::runtime_error("defect");
        const bool suspect = coverage == Coverage::Partial;
        notes.add(join("cut ", id, " ", std::floor(secondOf({})), suspect ? " partial" : " whole"));
        const std::vector<Measurement> values = {{"i", std::int64_t{-5}, suspect},
                                                 {"f", 2.5},
                                                 {"n", Nil{}},
                                                 {"is", std::vector<std::int64_t>{1, 2}},
                                                 {"fs", std::vector{0.5}}};
        return {{"A", {{"a", values}}}, {std::nullopt, {{"b", {{"n", Nil{}}}}}}};
    }
    const std::string id;
    Notes& notes;
};

std::unique_ptr<JobMeasurement> Notes::startJob(const std::string& id, const Texts& classes) {
    return classes.empty() ? std::make_unique<FakeJob>(id, *this) : throw InputError("unknown class");
}

/// The result of fetching a GP, and how many values its first object has.
template <class TableT, class DataT>
std::string fetch(KelMgmtSpiInterface_1* interface, std::uint64_t gpId) {
    const DataT* data = nullptr;
    const KelReturnT result = reinterpret_cast<TableT*>(interface)->getGp(gpId, &data);
    return join(result, " ", data != nullptr ? data->measObjClasses[0].measObjs[0].nrOfValues : 0);
}

struct PmServiceTest : testing::Test {
    PmServiceTest() { current = &notes; }
    void subscribe() {
        const auto& table = reinterpret_cast<VorOamSpiEventRouter_1&>(router.interface());
        KelOamSpiEventConsumerHandleT handle = 0;
        table.registerConsumer(&consumer, &handle);
        table.addSubscription(handle, "VorOamSpiPmEventTypeGpReady_1", nullptr);
        table.addSubscription(handle, "VorOamSpiPmEventTypeGpReady_2", nullptr);
    }
    /// The GP's data in every version offered.
    static Texts fetchAll(std::uint64_t gpId) {
        Texts data;
        for (KelMgmtSpiInterface_1* interface : PmService::current().interfaces())
            data.push_back(interface->interfaceVersion == std::string("1")
                               ? fetch<VorOamSpiPm_1, VorOamSpiPmGpData_1>(interface, gpId)
                               : fetch<VorOamSpiPm_2, VorOamSpiPmGpData_2>(interface, gpId));
        return data;
    }
    /// Fetches the GPs of the job J2 while the event is being sent.
    static KelReturnT notify(unsigned long, const char* type, KelNameValuePairT**, void* value) {
        const auto& event = *static_cast<VorOamSpiPmEventValue_1*>(value);
        const auto second = [](std::uint64_t time) { return secondOf(std::int64_t(time / 1000)); };
        current->add(join(type + 20, " ", event.gpId, " ", event.jobId, " ", second(event.gpStartTime), " ",
                          second(event.gpEndTime)));
        if (event.jobId == std::string("J2"))
            for (const std::string& data : fetchAll(event.gpId))
                current->add(data);
        return 0;
    }

    inline static Notes* current = nullptr;
    Notes notes;
    KelOamSpiEventConsumer consumer{&notify};
    EventRouter router;
    VorTest::WallClock clock{base - 150 * millisecond};
    const MeasurementJob everySecond{"J1", std::chrono::seconds(1), {}};
    const MeasurementJob everyMinute{"J2", std::chrono::seconds(60), {}};
};

TEST_F(PmServiceTest, cutsAtTheBoundariesThenAnnouncesAndWatchesForRelease) {
    subscribe();
    const MeasurementJob other{"J3", std::chrono::seconds(900), {}};
    PmService service(PmVersions::One, {everySecond, other}, notes, router, notes);
    service.start();
    notes.expect({"cut J1 0 partial", "cut J3 0 partial", "announced 1 J1 0", "GpReady_1 1 J1 -1 0",
                  "announced 2 J3 0", "GpReady_1 2 J3 -900 0"});
    notes.expect({"cut J1 1 whole", "announced 3 J1 1", "GpReady_1 3 J1 0 1"});
    EXPECT_EQ(service.nextPeriodEnds().at(0).end, at(2));
    EXPECT_EQ(service.nextPeriodEnds().at(1).end, at(900));
    const auto& table = reinterpret_cast<VorOamSpiPm_1&>(*service.interfaces().at(0));
    EXPECT_EQ(table.releaseGp(3), 0);
    notes.expect({"released 3 J1 1", "cut J1 2 whole", "announced 4 J1 2", "GpReady_1 4 J1 1 2",
                  "overdue 1 J1 0", "cut J1 3 whole", "announced 5 J1 3", "GpReady_1 5 J1 2 3"});
    service.stopAnnouncing();
    service.stopAnnouncing();
    EXPECT_EQ(notes.next(1100), "nothing");
    EXPECT_EQ(service.counts(), (GpCounts{5, 0, 0, 1}));
    EXPECT_EQ(table.releaseGp(4), 0) << "after the end, too";
    EXPECT_EQ(service.unreleased(),
              (std::vector<GpInfo>{{1, "J1", at(0)}, {2, "J3", at(0)}, {5, "J1", at(3)}}));
}

TEST_F(PmServiceTest, lendsTheRecordsOfTheVersionsOffered) {
    subscribe();
    const std::string data1 = "0 2", data2 = "0 5";
    const struct {
        PmVersions versions;
        const char* event;
        Texts data;
    } cases[] = {{PmVersions::One, "GpReady_1", {data1}},
                 {PmVersions::Two, "GpReady_2", {data2}},
                 {PmVersions::OneAndTwo, "GpReady_2", {data1, data2}}};
    for (const auto& each : cases) {
        VorTest::WallClock::set(base - 150 * millisecond);
        PmService service(each.versions, {everyMinute}, notes, router, notes);
        service.start();
        notes.expect(
            {"cut J2 0 partial", "announced 1 J2 0", join(each.event, " 1 J2 -60 0"), "fetched 1 J2 0"});
        notes.expect(each.data);
        const auto& table = reinterpret_cast<VorOamSpiPm_1&>(*service.interfaces().front());
        EXPECT_EQ(table.releaseGp(2), -2);
        EXPECT_EQ(table.releaseGp(1), 0);
        EXPECT_EQ(table.releaseGp(1), -2);
        notes.expect({"released 1 J2 0"});
        EXPECT_EQ(fetchAll(1), Texts(each.data.size(), "-2 0"));
        EXPECT_EQ(service.counts(), (GpCounts{1, 0, 1, 1}));
    }
}

TEST_F(PmServiceTest, dropsWhatCannotBeMeasuredOrDelivered) {
    const MeasurementJob unknown{"J3", std::chrono::seconds(60), {"Unknown"}};
    const MeasurementJob broken{"broken", std::chrono::seconds(60), {}};
    EXPECT_THROW(PmService(PmVersions::Two, {everyMinute, unknown}, notes, router, notes).start(),
                 InputError);
    PmService service(PmVersions::Two, {broken, everyMinute}, notes, router, notes);
    service.start();
    notes.expect({"broken: defect", "cut J2 0 partial", "announced 1 J2 0", "withdrawn 1 J2 0"});
    EXPECT_EQ(service.counts(), (GpCounts{0, 1, 0, 0}));
    EXPECT_EQ(service.unreleased(), std::vector<GpInfo>{});
}

TEST_F(PmServiceTest, dropsTheRunningPeriodWhenTheClockIsSet) {
    PmService service(PmVersions::Two, {everySecond}, notes, router, notes);
    service.start();
    notes.expect({"cut J1 0 partial", "announced 1 J1 0", "withdrawn 1 J1 0"});
    VorTest::WallClock::shift(3600'000 * millisecond);
    notes.expect({"step 3600", "cut J1 3601 partial", "announced 2 J1 3601", "withdrawn 2 J1 3601"});
    notes.expect({"cut J1 3602 whole", "announced 3 J1 3602", "withdrawn 3 J1 3602"});
    VorTest::WallClock::shift(-7200'000 * millisecond);
    notes.expect({"step -7200", "cut J1 -3597 partial", "announced 4 J1 -3597"});
}

TEST_F(PmServiceTest, marksWhatWasNotMeasuredFromBoundaryToBoundary) {
    const struct {
        double cutAt, end;
        Coverage coverage;
    } cases[] = {{60, 60, Coverage::Partial},   {120.001, 120, Coverage::Whole},
                 {186, 180, Coverage::Partial}, {240, 240, Coverage::Partial},
                 {304.9, 300, Coverage::Whole}, {541, 540, Coverage::Partial},
                 {600, 600, Coverage::Whole}};
    PeriodicMeasurement measurement(everyMinute, std::make_unique<FakeJob>("J2", notes));
    measurement.begin(at(0.001));
    for (const auto& each : cases) {
        EXPECT_FALSE(measurement.isDue(measurement.end() - 1));
        EXPECT_TRUE(measurement.isDue(at(each.cutAt)));
        const MeasuredPeriod period = measurement.cut(at(each.cutAt));
        EXPECT_EQ(period.end, at(each.end));
        EXPECT_EQ(period.data[0].objects[0].values[0].suspect, each.coverage == Coverage::Partial)
            << each.cutAt;
        EXPECT_EQ(measurement.end(), at(each.end + 60));
    }
}

}  // namespace
}  // namespace VorNode
