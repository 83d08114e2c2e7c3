#include <atomic>
#include <thread>

#include <Poco/StringTokenizer.h>
#include <gtest/gtest.h>

#include "ExtCmInterceptorRepository.h"
#include "PmEngine.h"
#include "PmInterceptor.h"

namespace VorTest {
namespace {

using VorNode::AttributeValues;
using VorPm::PmInterceptor;

const Texts ropPeriods{"supportedRopPeriods"}, both{"supportedRopPeriods", "maxNoOfPmFiles"};

Texts words(const std::string& text) {
    const Poco::StringTokenizer tokens(text, " ", Poco::StringTokenizer::TOK_IGNORE_EMPTY);
    return {tokens.begin(), tokens.end()};
}

/// Answers of the objects, for one attribute and for several: the word says what they are, or is a result
/// code.
std::string one, several;
VorMoAttributeValueContainer_3 hollow, *hollows[2]{&hollow, &hollow}, *none[2]{};

KelReturnT answer(unsigned long /*txHandle*/, const char* /*dn*/, const char* /*name*/,
                  VorMoAttributeValueResult_3* result) {
    if (one == "throws")
        throw 1;
    hollow = {VorMoTypeEnum, 2, nullptr};
    if (one == "hollow")
        *result = {nullptr, &hollow};
    if (one == "unreleasable")
        *result = {[](auto*) { throw 1; }, &hollow};
    return std::atoi(one.c_str());
}

KelReturnT answerAll(unsigned long /*txHandle*/, const char* /*dn*/, const char** /*names*/,
                     VorMoAttributeValuesResult_3* result) {
    if (several == "throws")
        throw 1;
    if (several == "hollow" || several == "none")
        *result = {nullptr, several == "hollow" ? hollows : none};
    return std::atoi(several.c_str());
}

void setModel(const PmEngine& engine, const std::string& jobGps, const std::string& periods) {
    const auto numbers = [](const std::string& text) {
        AttributeValues values;
        for (const std::string& word : words(text))
            values.emplace_back(static_cast<std::int16_t>(std::stoi(word)));
        return values;
    };
    engine.model->commit({{capabilitiesDn, "supportedMeasJobGps", numbers(jobGps)},
                          {capabilitiesDn, "supportedRopPeriods", numbers(periods)},
                          {capabilitiesDn, "maxNoOfPmFiles", {std::uint16_t{7}}}});
}

}  // namespace

TEST(PmInterceptor, ShowsOnlyPeriodsThatJobsCanHave) {
    PmEngine engine;
    PmInterceptor interceptor;
    EXPECT_EQ(interceptor.init(), 0);
    for (const Texts& row : goldenTable("narrowing.txt")) {
        setModel(engine, row[0], row[1]);
        EXPECT_EQ(engine.read(ropPeriods), row[2]) << row[0];
        EXPECT_EQ(engine.read(words(row[3])), row[4]) << row[0];
    }
    EXPECT_EQ(engine.messages(),
              (Texts{"4 narrowRopPeriods Only 1 of 3 supportedRopPeriods fit in the answer"}));
    interceptor.deregisterInterceptor();
    EXPECT_EQ(engine.read(ropPeriods), "5");
}

TEST(PmInterceptor, LeavesAnswersAloneWhenTheModelCannotTell) {
    PmEngine engine({"VorOamSpiModelRepository 2"});
    setModel(engine, "3", "4 5");
    PmInterceptor interceptor;
    EXPECT_EQ(interceptor.init(), 0);
    EXPECT_EQ(engine.read(ropPeriods), "4 5");
    EXPECT_EQ(engine.read(both), "4 5/7");
    interceptor.deregisterInterceptor();
}

TEST(PmInterceptor, PassesFailuresOnAndTakesOddAnswers) {
    PmEngine engine;
    setModel(engine, "3", "4 5");
    PmInterceptor interceptor;
    EXPECT_EQ(interceptor.init(), 0);
    EXPECT_EQ(engine.read(ropPeriods, "A=1"), "result -2");
    EXPECT_EQ(engine.read(both, "A=1"), "result -2");
    const auto getMoAttributes = engine.objectTable.getMoAttributes;
    engine.objectTable.getMoAttribute = &answer;
    for (const Texts& row : goldenTable("odd-answers.txt")) {
        one = row[0], several = row[1];
        engine.objectTable.getMoAttributes = several == "real" ? getMoAttributes : &answerAll;
        EXPECT_EQ(engine.read(ropPeriods), row[2]) << one;
        EXPECT_EQ(engine.read(both), row[3]) << one << several;
    }
    EXPECT_EQ(engine.messages(), Texts{});
    interceptor.deregisterInterceptor();
}

TEST(PmInterceptor, IsAskedFromItsRegistrationToItsDeregistration) {
    PmEngine engine({capabilitiesDn});
    PmInterceptor interceptor, other;
    VorMoAttributeValueResult_3 result{};
    EXPECT_EQ(interceptor.getMoAttribute(1, "", "x", &result), -1);
    EXPECT_EQ(interceptor.getMoAttribute(1, "", "supportedRopPeriods", nullptr), -1);
    interceptor.deregisterInterceptor();
    EXPECT_EQ(interceptor.init(), -1);
    EXPECT_EQ(other.init(), -1) << "one for a class";
    EXPECT_EQ(engine.messages(),
              (Texts{"3 getPmMeasCapsDn Unable to get PmMeasurementCapabilities instance No "
                     "instance of " +
                     std::string(VorPm::pmMeasCapsClassPath) + " found"}));
    interceptor.deregisterInterceptor();
    engine.objectTable.newMoIterator = [](auto, auto, auto, auto) -> int { throw 1; };
    EXPECT_EQ(other.init(), -1);
    interceptor.deregisterInterceptor();
    EXPECT_EQ(interceptor.init(), -1) << "the other one is still there";
    EXPECT_EQ(engine.messages(),
              (Texts{"3 getPmMeasCapsDn Unable to get PmMeasurementCapabilities instance"}));

    static std::atomic<bool> began, ended;
    began = ended = false;
    engine.objectTable.getMoAttribute = [](auto, auto, auto, auto) {
        began = true;
        const auto& repository = VorExtCmRouterService::ExtCmInterceptorRepository::instance();
        while (repository.find(VorPm::pmMeasCapsClassPath) != nullptr)
            std::this_thread::yield();
        ended = true;
        return 0;
    };
    std::thread client([&engine] { engine.read({"fileGroup"}); });
    while (!began)
        std::this_thread::yield();
    other.deregisterInterceptor();
    EXPECT_TRUE(ended) << "a read in flight is waited for";
    client.join();
}

TEST(PmInterceptor, LeavesTheInterceptorOfAnotherWhereItIs) {
    PmEngine engine;
    setModel(engine, "3", "4 5");
    PmInterceptor first, refused;
    EXPECT_EQ(first.init(), 0);
    EXPECT_EQ(refused.init(), -1);
    refused.deregisterInterceptor();
    EXPECT_EQ(engine.read(ropPeriods), "3") << "the first one answers";
    first.deregisterInterceptor();
}

TEST(PmInterceptor, AnswersARefusedReadWithNothing) {
    PmEngine engine;
    PmInterceptor interceptor;
    EXPECT_EQ(interceptor.init(), 0);
    engine.objectTable.getMoAttribute = &answer;
    one = "9";
    VorMoAttributeValueResult_3 result{nullptr, &hollow};
    EXPECT_EQ(interceptor.getMoAttribute(1, capabilitiesDn.c_str(), "supportedRopPeriods", &result), 9);
    EXPECT_EQ(result.container, nullptr) << "what was there before is nobody's answer";
    interceptor.deregisterInterceptor();
}

}  // namespace VorTest
