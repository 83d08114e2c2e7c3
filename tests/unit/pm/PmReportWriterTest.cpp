#include <cmath>
#include <locale>
#include <random>

#include "PmReportNumbers.h"
#include "PmReportWriter.h"
#include "ReportCheck.h"
#include "ReportTest.h"

namespace VorTest {

using enum VorOamSpiPmValueType_2;

const VorOamSpiPmGpData_2 noData{};
const Texts noHeader(5);
const std::string localName = "A20170305.1400+0100-1415+0100_";

/// Prints numbers as no report may have them.
struct CommaNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};

class PmReportWriterTest : public StorageTest {
  protected:
    PmReportWriterTest() {
        ::setenv("TZ", "CET-1", 1);
        root.createReportFolders();
    }

    /// The report that is published under that name. The header's texts are dn prefix, element, type, label,
    /// version.
    std::string write(const std::string& name, const Texts& header, std::vector<Poco::AutoPtr<PmGpData>> gps,
                      int compression = NO_COMPRESSION) {
        PmReportWriter writer("", compression, beginTime, endTime);
        writer.setUtcFormat(name.find('+') == std::string::npos);
        writer.setMeDnPrefix(header[0]);
        writer.setMeId(header[1]);
        writer.setElementType(header[2]);
        writer.setMeUserLabel(header[3]);
        writer.setSwVersion(header[4]);
        EXPECT_TRUE(writer.openFile());
        for (Poco::AutoPtr<PmGpData>& gp : gps) {
            EXPECT_TRUE(writer.writeGpData(*gp));
        }
        EXPECT_TRUE(writer.finalizeReport());
        writer.publish();
        return readReport(fs::path(reportFolder) / name);
    }
};

TEST_F(PmReportWriterTest, writesTheExampleInEveryLocale) {
    std::locale::global(std::locale(std::locale::classic(), new CommaNumbers));
    const std::int64_t numbers[] = {1, 2, 3};
    const VorOamSpiPmAggregatedValue_2 values[] = {{"b", {.intValue = 5}, Integer, 0, 0},
                                                   {"a", {.floatValue = 1.5}, Float, 0, 0},
                                                   {"c", {.intValues = numbers}, IntegerArray, 3, 1},
                                                   {"a", {}, Nil, 0, 0}};
    const VorOamSpiPmMeasObj_2 objects[] = {{"Cell=1", values, 2}, {"Cell=2", values + 2, 2}};
    const VorOamSpiPmMeasObjClass_2 measClass{"C1", objects, 2};
    const VorOamSpiPmGpData_2 data{&measClass, 1};
    const Texts header{"SubNetwork=1", "ME1", "TypeA", "", "R1A"};
    EXPECT_EQ(write(localName + "ME1.xml", header, {makeGp(1, &data)}), golden("report-local.xml"));
    EXPECT_EQ(write("A20170305.1300-1315_ME1.xml", header, {makeGp(1, &data)}), golden("report-utc.xml"));
}

TEST_F(PmReportWriterTest, writesValuesOfVersion1) {
    const std::string a = "a";
    const VorOamSpiPmAggregatedValue_1 values[] = {{"b", {.intValue = -5}, 0, 0},
                                                   {"a", {.floatValue = 0.25}, 0, 1},
                                                   {a.c_str(), {.intValue = 4096}, 0, 0},
                                                   {"b", {.floatValue = 3}, 2, 2}};
    const VorOamSpiPmMeasObj_1 objects[] = {{"o1", values, 2}, {"o2", values + 2, 2}};
    const VorOamSpiPmMeasObjClass_1 measClass{"C", objects, 2};
    const VorOamSpiPmGpData_1 data{&measClass, 1};
    EXPECT_EQ(write(localName + ".xml", noHeader, {makeGp(1, nullptr, &data)}), golden("values-1.xml"));
}

TEST_F(PmReportWriterTest, writesValuesOfVersion2) {
    const std::int64_t integers[] = {INT64_MIN, 0, INT64_MAX};
    const double floats[] = {1.5,  2,    0.1, 1e14,     1e15,        123456789012345678.,
                             1e-4, 1e-5, -0., HUGE_VAL, std::nan("")};
    const std::string b = "b";
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
    const VorOamSpiPmGpData_2 data{classes, 3};
    const VorOamSpiPmGpData_2 more{classes + 2, 1};
    Poco::AutoPtr<PmGpData> second = makeGp(2, &more);
    second->_granularityPeriod = TimePeriod{};
    second->_reportingPeriod = TimePeriod::Hour24;
    EXPECT_EQ(write(localName + ".xml", noHeader, {makeGp(1, &data), makeGp(3, &noData), second}),
              golden("values-2.xml"));
    const std::string unknown = "3 writeValue Unknown value type ";
    EXPECT_THAT(messages(), ElementsAre(unknown + "5", unknown + "-1", unknown + "5", unknown + "-1"));
}

TEST_F(PmReportWriterTest, leavesOutOfTheHeaderWhatIsNotKnownAndCompressesOneTypeOnly) {
    const std::pair<Texts, int> rows[] = {{noHeader, -1},
                                          {{"", "", "T", "<l>", ""}, NO_COMPRESSION},
                                          {{"", "M&", "", "", ""}, 1},
                                          {{"d", "M", "T", "l", "R"}, GZIP}};
    std::string reports;
    for (const auto& [header, compression] : rows) {
        const std::string name = localName + header[1] + (compression == GZIP ? ".xml.gz" : ".xml");
        reports += write(name, header, {makeGp(1, &noData)}, compression);
    }
    EXPECT_EQ(reports, golden("headers.txt"));
    EXPECT_EQ(TemporaryRoot::filesIn(reportFolder).size() + TemporaryRoot::filesIn(temporaryFolder).size(),
              3U);
}

TEST(PmReportNumbers, arePrintedAsPrintfDoes) {
    std::mt19937_64 random(32435);
    std::uniform_real_distribution<double> significand(-10, 10);
    for (int round = 0; round < 200'000; ++round) {
        const double scaled = significand(random) * std::pow(10, static_cast<int>(random() % 40) - 20);
        const double number = round % 2 == 0 ? std::bit_cast<double>(random()) : scaled;
        char expected[40];
        std::snprintf(expected, sizeof expected, "%.15g", number);
        ASSERT_EQ(NumberText(number).view(), expected);
    }
}

}  // namespace VorTest
