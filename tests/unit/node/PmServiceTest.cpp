#include <cmath>
#include <stdexcept>

#include <Poco/NotificationQueue.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Golden.h"
#include "InputError.h"
#include "WallClock.h"
#include "services/PmService.h"

namespace VorNode {
namespace {

using VorTest::Texts;

/// 2026-03-05T13:15:00Z in ns: every job's period ends here.
constexpr std::int64_t millisecond = 1'000'000, base = 1'772'716'500'000 * millisecond;

Poco::Timestamp at(double second) {
    return base / 1000 + static_cast<std::int64_t>(second * 1e6);
}
/// The second that the time lies in.
std::string secondOf(Poco::Timestamp time) {
    return " " + std::to_string(std::lround(std::floor(static_cast<double>(time - at(0)) / 1e6)));
}

/// What happens on all threads: the producer, the listener and the consumer note it here.
class Notes : public PmServiceListener, public MeasurementProducer {
  public:
    void add(const std::string& text) { _queue.enqueueNotification(new Note(text)); }
    /// Waits for the next.
    std::string next(long milliseconds = 10'000) {
        const Poco::AutoPtr<Poco::Notification> note = _queue.waitDequeueNotification(milliseconds);
        return note.isNull() ? "nothing" : note->name();
    }
    void expect(const Texts& notes) {
        for (const std::string& note : notes)
            EXPECT_EQ(next(), note);
    }

    std::unique_ptr<JobMeasurement> startJob(const std::string& id, const Texts& classes) override;
    void add(const char* what, const GpInfo& gp) {
        add(what + std::to_string(gp.id) + " " + gp.jobId + secondOf(gp.end));
    }
    void gpAnnounced(const GpInfo& gp) override { add("announced ", gp); }
    void gpWithdrawn(const GpInfo& gp) override { add("withdrawn ", gp); }
    void gpFetched(const GpInfo& gp) override { add("fetched ", gp); }
    void gpReleased(const GpInfo& gp) override { add("released ", gp); }
    void gpOverdue(const GpInfo& gp) override { add("overdue ", gp); }
    void clockStepped(double seconds) override { add("step " + std::to_string(std::lround(seconds))); }
    void periodLost(const std::string& job, const std::string& why) override { add(job + ": " + why); }

  private:
    struct Note : Poco::Notification {
        explicit Note(std::string note) : text(std::move(note)) {}
        std::string name() const override { return text; }
        const std::string text;
    };
    Poco::NotificationQueue _queue;
};

struct FakeJob : JobMeasurement {
    FakeJob(std::string jobId, Notes& target) : id(std::move(jobId)), notes(target) {}
    void begin() override {}
    MeasurementData cut(Coverage coverage) override {
        if (id == "broken")
            throw std::runtime_error("defect");
        const bool suspect = coverage == Coverage::Partial;
        notes.add("cut " + id + secondOf({}) + (suspect ? " partial" : " whole"));
        return {{"A", {{"a", {{"i", std::int64_t{-5}, suspect}, {"f", 2.5}, {"n", Nil{}}}}}}};
    }
    const std::string id;
    Notes& notes;
};

std::unique_ptr<JobMeasurement> Notes::startJob(const std::string& id, const Texts& classes) {
    return classes.empty() ? std::make_unique<FakeJob>(id, *this) : throw InputError("unknown class");
}

struct PmServiceTest : testing::Test {
    PmServiceTest() { current = &notes; }
    void subscribe() {
        const auto& events = router.table();
        KelOamSpiEventConsumerHandleT handle = 0;
        events.registerConsumer(&consumer, &handle);
        events.addSubscription(handle, "VorOamSpiPmEventTypeGpReady_1", nullptr);
        events.addSubscription(handle, "VorOamSpiPmEventTypeGpReady_2", nullptr);
    }
    /// That of version 1, which the service offers.
    static const VorOamSpiPm_1& table() {
        return reinterpret_cast<VorOamSpiPm_1&>(*PmService::current().interfaces().front());
    }
    static KelReturnT notify(unsigned long, const char* type, KelNameValuePairT**, void* value) {
        const auto& event = *static_cast<VorOamSpiPmEventValue_1*>(value);
        const auto second = [](std::uint64_t time) { return secondOf(std::int64_t(time / 1000)); };
        current->add(type + 20 + (" " + std::to_string(event.gpId)) + " " + event.jobId +
                     second(event.gpStartTime) + second(event.gpEndTime));
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
                  "announced 2 J3 0", "GpReady_1 2 J3 -900 0", "cut J1 1 whole", "announced 3 J1 1",
                  "GpReady_1 3 J1 0 1"});
    EXPECT_EQ(service.nextPeriodEnds().at(0).end, at(2));
    EXPECT_EQ(service.nextPeriodEnds().at(1).end, at(900));
    EXPECT_EQ(table().releaseGp(3), 0);
    notes.expect({"released 3 J1 1", "cut J1 2 whole", "announced 4 J1 2", "GpReady_1 4 J1 1 2"});
    // Two periods after the announcement, or when the service wakes next.
    EXPECT_THAT((Texts{notes.next(), notes.next(), notes.next(), notes.next()}),
                testing::UnorderedElementsAre("overdue 1 J1 0", "cut J1 3 whole", "announced 5 J1 3",
                                              "GpReady_1 5 J1 2 3"));
    service.stopAnnouncing();
    service.stopAnnouncing();
    EXPECT_EQ(notes.next(1100), "nothing");
    EXPECT_EQ(service.counts(), (GpCounts{5, 0, 0, 1}));
    EXPECT_EQ(table().releaseGp(4), 0) << "after the end, too";
    EXPECT_EQ(service.unreleased(),
              (std::vector<GpInfo>{{1, "J1", at(0)}, {2, "J3", at(0)}, {5, "J1", at(3)}}));
}

TEST_F(PmServiceTest, lendsTheRecordsUntilTheirRelease) {
    subscribe();
    for (const auto& [versions, type] :
         {std::pair(PmVersions::One, "GpReady_1"), {PmVersions::OneAndTwo, "GpReady_2"}}) {
        VorTest::WallClock::set(base - 150 * millisecond);
        PmService service(versions, {everyMinute}, notes, router, notes);
        service.start();
        const std::string event = type + std::string(" 1 J2 -60 0");
        notes.expect({"cut J2 0 partial", "announced 1 J2 0", event});
        const VorOamSpiPmGpData_1* data = nullptr;
        for (int fetch = 1; fetch <= 2; ++fetch)
            ASSERT_EQ(table().getGp(1, &data), 0);
        const VorOamSpiPmMeasObj_1& object = data->measObjClasses[0].measObjs[0];
        ASSERT_EQ(object.nrOfValues, 2U) << "without Nil";
        EXPECT_TRUE(object.values[0].isSuspect && !object.values[0].isFloat);
        EXPECT_TRUE(!object.values[1].isSuspect && object.values[1].isFloat);
        for (const auto& [gp, code] : {std::pair(2U, -2), {1U, 0}, {1U, -2}})
            EXPECT_EQ(table().releaseGp(gp), code);
        notes.expect({"fetched 1 J2 0", "released 1 J2 0"});
        EXPECT_EQ(table().getGp(1, &data), -2);
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
    notes.expect({"step 3600", "cut J1 3602 partial", "announced 2 J1 3602", "withdrawn 2 J1 3602"});
    notes.expect({"cut J1 3603 whole", "announced 3 J1 3603", "withdrawn 3 J1 3603"});
    VorTest::WallClock::shift(-7200'000 * millisecond);
    notes.expect({"step -7200", "cut J1 -3595 partial", "announced 4 J1 -3595"});
}

TEST_F(PmServiceTest, marksWhatWasNotMeasuredFromBoundaryToBoundary) {
    PeriodicMeasurement measurement(everyMinute, std::make_unique<FakeJob>("J2", notes));
    measurement.begin(at(0.001));
    for (const Texts& row : VorTest::goldenTable("periodic-measurement.txt")) {
        EXPECT_FALSE(measurement.isDue(measurement.end() - 1));
        EXPECT_TRUE(measurement.isDue(at(std::stod(row[0]))));
        const MeasuredPeriod period = measurement.cut(at(std::stod(row[0])));
        EXPECT_EQ(period.end, at(std::stod(row[1])));
        EXPECT_EQ(period.data[0].objects[0].values[0].suspect, row[2] == "1") << row[0];
        EXPECT_EQ(measurement.end(), period.end + 60'000'000);
    }
}

}  // namespace
}  // namespace VorNode
