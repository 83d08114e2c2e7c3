#include <bit>
#include <cmath>
#include <deque>
#include <locale>
#include <map>
#include <random>
#include <sstream>

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

TEST_F(PmReportWriterTest, PrintsNumbersAsPrintfDoes) {
    constexpr std::uint32_t count = 300'000;
    std::mt19937_64 random(32435);
    std::vector<std::int64_t> integers(count);
    std::vector<double> doubles(count);
    std::string expected;
    for (std::int64_t& number : integers) {
        const auto power = static_cast<std::int64_t>(std::pow(10, random() % 19));
        number = random() % 9 == 0 ? power - static_cast<std::int64_t>(random() % 2)
                                   : static_cast<std::int64_t>(random()) >> random() % 64;
        expected += (expected.empty() ? ">" : ",") + std::to_string(number);
    }
    expected += "</r>\n\t\t\t\t<r p=\"1\">";
    for (double& number : doubles) {
        // Any; of any size; a short decimal; one that can be in the middle of two texts; next to a power.
        const double power = std::pow(10, static_cast<int>(random() % 40) - 20);
        const auto whole = static_cast<double>(random() >> random() % 50);
        const double kinds[] = {std::bit_cast<double>(random()), whole * power,
                                static_cast<double>(random() % 1'000'000) / 1'000,
                                whole / std::pow(2, random() % 50), std::nextafter(power, whole)};
        number = kinds[random() % std::size(kinds)];
        char text[40];
        std::snprintf(text, sizeof text, "%.15g%s", number, &number == &doubles.back() ? "</r>" : ",");
        expected += text;
    }
    const VorOamSpiPmAggregatedValue_2 values[] = {
        {"a", {.intValues = integers.data()}, IntegerArray, count, 0},
        {"a", {.floatValues = doubles.data()}, FloatArray, count, 0}};
    const VorOamSpiPmMeasObj_2 object{"o", values, 2};
    const VorOamSpiPmMeasObjClass_2 measClass{"C", &object, 1};
    const VorOamSpiPmGpData_2 data{&measClass, 1};
    EXPECT_NE(write(name + ".xml", noHeader, {makeGp(1, &data)}).find(expected), std::string::npos);
}

TEST_F(PmReportWriterTest, NumbersTypesAsTheyAreMetWhateverEachObjectCarries) {
    constexpr std::size_t classCount = 400, objectsPerClass = 5;
    std::mt19937 random(32435);
    std::deque<std::string> names;
    std::deque<std::vector<VorOamSpiPmAggregatedValue_2>> values;
    std::deque<std::vector<VorOamSpiPmMeasObj_2>> objects;
    std::vector<VorOamSpiPmMeasObjClass_2> classes;
    std::string expected;
    for (std::size_t i = 0; i < classCount; ++i) {
        std::map<std::string, std::size_t> numbers;
        std::string types = "bdca", elements;
        objects.emplace_back();
        for (std::size_t j = 0; j < objectsPerClass; ++j) {
            values.emplace_back();
            for (const char type : types) {
                names.emplace_back(1, type);
                values.back().push_back({names.back().c_str(), {}, Nil, 0, 0});
                const std::size_t number =
                    numbers.try_emplace(names.back(), numbers.size() + 1).first->second;
                elements += "<r p=\"" + std::to_string(number) + "\">NIL</r>";
            }
            objects.back().push_back(
                {"o", values.back().data(), static_cast<std::uint32_t>(values.back().size())});
            // The next object may lack a type, have another one, or have one again.
            if (random() % 4 == 0)
                types.erase(random() % (types.size() + 1), random() % 2);
            if (random() % 4 == 0)
                types.insert(random() % (types.size() + 1), 1, static_cast<char>('a' + random() % 6));
        }
        classes.push_back({"C", objects.back().data(), objectsPerClass});
        for (const auto& [type, number] : numbers)
            expected += "<measType p=\"" + std::to_string(number) + "\">" + type + "</measType>";
        expected += elements;
    }
    const VorOamSpiPmGpData_2 data{classes.data(), classCount};
    std::istringstream report(write(name + ".xml", noHeader, {makeGp(1, &data)}));
    std::string written;
    for (std::string line; std::getline(report, line);)
        if (line.find("<measType") != std::string::npos || line.find("<r ") != std::string::npos)
            written += line.substr(line.find('<'));
    EXPECT_EQ(written, expected);
}

}  // namespace VorTest
