#include <bit>
#include <cmath>
#include <locale>
#include <map>
#include <memory>
#include <random>

#include "PmMeasTypes.h"
#include "PmReportNumbers.h"
#include "PmReportWriter.h"
#include "ReportTest.h"

namespace VorTest {

using enum VorOamSpiPmValueType_2;

const Texts noHeader(5);
const std::string name = "A20170305.1400+0100-1415+0100_";

/// Prints numbers as no report may have them.
struct CommaNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};

struct PmReportWriterTest : StorageTest {
    PmReportWriterTest() {
        ::setenv("TZ", "CET-1", 1);
        std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
        root.createReportFolders();
    }

    /// The only report that is published. The header's texts are dn prefix, element, type, label, version.
    std::string write(const std::string& file, const Texts& header, std::vector<Poco::AutoPtr<PmGpData>> gps,
                      int compression = NO_COMPRESSION) {
        PmReportWriter writer("", compression, beginTime, endTime);
        writer.setUtcFormat(file.find('+') == std::string::npos);
        writer.setMeDnPrefix(header[0]);
        writer.setMeId(header[1]);
        writer.setElementType(header[2]);
        writer.setMeUserLabel(header[3]);
        writer.setSwVersion(header[4]);
        EXPECT_TRUE(writer.openFile());
        for (Poco::AutoPtr<PmGpData>& gp : gps)
            EXPECT_TRUE(writer.writeGpData(*gp));
        EXPECT_TRUE(writer.finalizeReport());
        writer.publish();
        EXPECT_EQ(TemporaryRoot::filesIn(reportFolder), Texts{file});
        EXPECT_EQ(TemporaryRoot::filesIn(temporaryFolder), Texts{});
        const std::string report = readReport(fs::path(reportFolder) / file);
        fs::remove(fs::path(reportFolder) / file);
        return report;
    }
};

TEST_F(PmReportWriterTest, WritesValuesOfBothVersionsInEveryLocale) {
    const std::string a = "a", b = "b";
    const VorOamSpiPmAggregatedValue_1 values1[] = {{"b", {.intValue = -5}, 0, 0},
                                                    {"a", {.floatValue = 0.25}, 0, 1},
                                                    {a.c_str(), {.intValue = 4096}, 0, 0},
                                                    {"b", {.floatValue = 3}, 2, 2}};
    const VorOamSpiPmMeasObj_1 objects1[] = {{"o1", values1, 2}, {"o2", values1 + 2, 2}};
    const VorOamSpiPmMeasObjClass_1 class1{"C", objects1, 2};
    const VorOamSpiPmGpData_1 data1{&class1, 1};
    const std::int64_t integers[] = {INT64_MIN, 0, INT64_MAX};
    const double floats[] = {1.5,  2,    0.1, 1e14,     1e15,        123456789012345678.,
                             1e-4, 1e-5, -0., HUGE_VAL, std::nan("")};
    const VorOamSpiPmAggregatedValue_2 values[] = {
        {"Z", {.intValue = -5}, Integer, 9, 0},
        {"a&b", {.floatValue = 1234.5}, Float, 9, 2},
        {"b", {.intValues = integers}, IntegerArray, 3, 0},
        {b.c_str(), {.intValues = nullptr}, IntegerArray, 0, 0},
        {"b", {.floatValues = floats}, FloatArray, std::size(floats), 0},
        {"b", {.floatValues = nullptr}, FloatArray, 0, 0},
        {"b", {}, Nil, 9, 0},
        {"b", {}, static_cast<VorOamSpiPmValueType_2>(5), 9, 0},
        {nullptr, {}, static_cast<VorOamSpiPmValueType_2>(-1), 9, 0}};
    const VorOamSpiPmMeasObj_2 objects[] = {
        {"a<b&c>'d\"é&amp;", values + 2, 2}, {"o2", values, 9}, {"", nullptr, 0}, {nullptr, values + 6, 3}};
    const VorOamSpiPmMeasObjClass_2 classes[] = {
        {"x&y", objects, 3}, {nullptr, objects + 3, 1}, {"", nullptr, 0}};
    const VorOamSpiPmGpData_2 data{classes, 3}, none{}, more{classes + 2, 1};
    Poco::AutoPtr<PmGpData> last = makeGp(2, &more);
    last->_granularityPeriod = TimePeriod{};
    last->_reportingPeriod = TimePeriod::Hour24;
    EXPECT_EQ(write(name + ".xml", noHeader,
                    {makeGp(1, nullptr, &data1), makeGp(1, &data), makeGp(3, &none), last}),
              golden("values.xml"));
    const std::string unknown = "3 writeValue Unknown value type ";
    EXPECT_THAT(messages(), ElementsAre(unknown + "5", unknown + "-1", unknown + "5", unknown + "-1"));
}

TEST_F(PmReportWriterTest, LeavesOutOfTheHeaderWhatIsNotKnownAndCompressesOneTypeOnly) {
    const VorOamSpiPmGpData_2 none{};
    const auto header = [&](const std::string& file, const Texts& texts, int compression) {
        return write(file, texts, {makeGp(1, &none)}, compression);
    };
    EXPECT_EQ(header(name + ".xml", noHeader, -1) +
                  header(name + ".xml", {"", "", "T", "<l>", ""}, NO_COMPRESSION) +
                  header(name + "M&.xml", {"", "M&", "", "", ""}, 1) +
                  header("A20170305.1300-1315_M.xml.gz", {"d", "M", "T", "l", "R"}, GZIP),
              golden("headers.txt"));
}

TEST(PmReportNumbers, ArePrintedAsPrintfDoes) {
    const auto print = [](auto number) {
        const auto room = std::make_unique<char[]>(VorPm::longestNumber);
        return std::string(room.get(), VorPm::printNumber(room.get(), number));
    };
    std::mt19937_64 random(32435);
    for (int i = 0; i < 500'000; ++i) {
        const auto tens = static_cast<std::int64_t>(std::pow(10, random() % 19));
        for (const std::int64_t number :
             {static_cast<std::int64_t>(random()) >> random() % 64, tens, tens - 1})
            ASSERT_EQ(print(number), std::to_string(number));
        // Any; of any size; a short decimal; one that can be in the middle of two texts; next to a power.
        const double power = std::pow(10, static_cast<int>(random() % 40) - 20);
        const auto whole = static_cast<double>(random() >> random() % 50);
        for (const double number : {std::bit_cast<double>(random()), whole * power,
                                    static_cast<double>(random() % 1'000'000) / 1'000,
                                    whole / std::pow(2, random() % 50), std::nextafter(power, whole)}) {
            char expected[40];
            std::snprintf(expected, sizeof expected, "%.15g", number);
            ASSERT_EQ(print(number), expected);
        }
    }
}

TEST(PmMeasTypes, AreNumberedAsTheyAreMetWhateverEachObjectCarries) {
    std::mt19937 random(32435);
    VorPm::PmMeasTypes types;
    for (int round = 0; round < 20'000; ++round) {
        std::vector<Texts> objects(1, {"b", "d", "c", "a"});
        while (objects.size() < 5) {
            // The next one may lack a type, have another one, or have one again.
            Texts names = objects.back();
            const auto anyPlace = [&] { return names.begin() + static_cast<long>(random() % names.size()); };
            if (random() % 4 == 0 && names.size() > 1)
                names.erase(anyPlace());
            if (random() % 4 == 0)
                names.emplace(anyPlace(), 1, static_cast<char>('a' + random() % 6));
            objects.push_back(names);
        }
        types.clear();
        std::map<std::string, std::size_t> numbers;
        for (const bool again : {false, true})
            for (const Texts& names : objects) {
                types.beginObject();
                for (const std::string& type : names) {
                    const auto& found = again ? types.findAgain(type.c_str()) : types.find(type.c_str());
                    ASSERT_EQ(found.number, numbers.try_emplace(type, numbers.size() + 1).first->second);
                }
            }
        auto next = numbers.begin();
        types.forEachByName([&next](const auto& type) { ASSERT_EQ(type.name, next++->first); });
    }
}

}  // namespace VorTest
