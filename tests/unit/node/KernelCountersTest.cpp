#include <filesystem>
#include <map>
#include <sstream>
#include <string>

#include <Poco/TemporaryFile.h>
#include <gmock/gmock.h>

#include "Golden.h"
#include "InputError.h"
#include "counters/KernelClasses.h"
#include "counters/KernelCounters.h"

namespace VorNode {
namespace {

namespace fs = std::filesystem;

/// The texts of a golden file by the headings of its sections, such as "begin proc/stat" and "expect first".
std::map<std::string, std::string> readSections(const std::string& name) {
    std::istringstream file(VorTest::golden("kernel/" + name + ".txt"));
    std::map<std::string, std::string> sections;
    std::string* text = nullptr;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("== "))
            text = &sections[line.substr(3)];
        else
            *text += line + "\n";
    return sections;
}

/// A line for each object: its ldn and values, with ! after a suspect value. A line of the types goes before
/// the first object and each whose types differ from those of the one before.
std::string print(const MeasuredClass& measured) {
    const auto textOf = [](const MeasuredValue& value) {
        return std::holds_alternative<Nil>(value) ? " nil"
                                                  : " " + std::to_string(std::get<std::int64_t>(value));
    };
    std::string text, printed;
    for (const MeasuredObject& object : measured.objects) {
        std::string types, line = object.ldn;
        for (const Measurement& value : object.values) {
            types += (types.empty() ? "" : " ") + value.type;
            line += textOf(value.value) + (value.suspect ? "!" : "");
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

/// What the operators' page has to say of a class.
std::string describe(const KernelClass& kernelClass) {
    std::string text = "### " + std::string(kernelClass.name) + "\n\nObjects: ";
    text.append(kernelClass.objects).append(".\n\n| type | meaning | unit | kind |\n|---|---|---|---|\n");
    for (const ValueType& type : kernelClass.types)
        text.append("| `")
            .append(type.name)
            .append("` | ")
            .append(type.meaning)
            .append(" | ")
            .append(type.unit)
            .append(type.kind == Kind::Counter ? " | counted in the period |\n" : " | value at its end |\n");
    return text + "\n";
}

TEST(KernelCounters, AreAllToldOfOnTheOperatorsPage) {
    const std::string page = VorTest::readFile(VOR_GOLDEN_FOLDER "/../../docs/operations.md");
    const std::size_t section = page.find("\n## The kernel's counters\n");
    ASSERT_NE(section, std::string::npos);
    const std::size_t begin = page.find("### ", section), end = page.find("\n## ", begin) + 1;
    std::string told;
    for (const KernelClass* kernelClass : kernelClasses())
        told += describe(*kernelClass);
    EXPECT_EQ(page.substr(begin, end - begin), told);
}

}  // namespace
}  // namespace VorNode
