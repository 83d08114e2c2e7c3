#include <filesystem>
#include <map>
#include <sstream>

#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>

#include "Golden.h"
#include "InputError.h"
#include "counters/KernelCounters.h"

namespace VorNode {
namespace {

namespace fs = std::filesystem;

/// The texts of a golden file by the headings of its sections, such as "begin proc/stat" and "expect first".
using Sections = std::map<std::string, std::string>;

Sections readSections(const std::string& name) {
    std::istringstream file(VorTest::golden("kernel/" + name + ".txt"));
    Sections sections;
    std::string* text = nullptr;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("== "))
            text = &sections[line.substr(3)];
        else
            *text += line + "\n";
    return sections;
}

/// A line for each object: its ldn and values, with f after a float and ! after a suspect value. A line of
/// the types goes before the first object and each whose types differ from those of the one before.
std::string print(const MeasuredClass& measured) {
    const auto textOf = [](const auto& value) {
        using ValueT = std::decay_t<decltype(value)>;
        const char* const mark = std::is_same_v<ValueT, double> ? "f" : "";
        return std::is_same_v<ValueT, Nil> ? " nil" : " " + testing::PrintToString(value) + mark;
    };
    std::string text, printed;
    for (const MeasuredObject& object : measured.objects) {
        std::string types, line = object.ldn;
        for (const Measurement& value : object.values) {
            types += (types.empty() ? "" : " ") + value.type;
            line += std::visit(textOf, value.value) + (value.suspect ? "!" : "");
        }
        text += (types != printed ? types + "\n" : "") + line + "\n";
        printed = types;
    }
    return text;
}

TEST(KernelCounters, measureTheClassesAskedForInTheirOrder) {
    const std::vector<std::string> classes{"Softirqs",         "Disk", "Pressure", "Processor",
                                           "NetworkInterface", "Load", "Memory"};
    const Poco::TemporaryFile folder;
    const fs::path root = folder.path();
    // Of a file that is none, or not there, there is nothing to tell.
    fs::create_directories(root / "proc/stat");
    KernelCounters counters(root / "proc", root / "sys");
    const auto job = counters.startJob("J1", classes);
    std::string objects;
    for (const MeasuredClass& measured : job->cut(Coverage::Whole))
        objects += *measured.name + " " + std::to_string(measured.objects.size()) + " ";
    EXPECT_EQ(objects, "Softirqs 0 Disk 0 Pressure 3 Processor 0 NetworkInterface 0 Load 0 Memory 0 ");
    fs::remove(root / "proc/stat");

    for (const std::string moment : {"begin", "first", "second"}) {
        for (const std::string& name : classes)
            for (const auto& [heading, text] : readSections(name))
                if (const auto file = root / heading.substr(heading.find(' ') + 1);
                    heading.starts_with(moment)) {
                    fs::create_directories(file.parent_path());
                    VorTest::writeFile(file, text);
                }
        if (moment == "begin") {
            job->begin();
            continue;
        }
        const MeasurementData data = job->cut(Coverage::Whole);
        for (std::size_t i = 0; i < classes.size(); ++i)
            EXPECT_EQ(print(data.at(i)), readSections(classes[i]).at("expect " + moment));
    }
    for (const MeasuredClass& measured : job->cut(Coverage::Partial))
        for (const MeasuredObject& object : measured.objects)
            for (const Measurement& value : object.values)
                EXPECT_TRUE(value.suspect) << object.ldn << " " << value.type;
    const auto startUnknown = [&counters] { counters.startJob("J1", {"Load", "Weather"}); };
    EXPECT_THAT(startUnknown, testing::ThrowsMessage<InputError>(
                                  "job J1: no measurement class is named \"Weather\"; use some of Processor, "
                                  "Memory, NetworkInterface, Disk, Load, Pressure, Softirqs"));
}

}  // namespace
}  // namespace VorNode
