#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>

#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include "InputError.h"
#include "TemporaryRoot.h"
#include "counters/KernelCounters.h"

namespace VorNode {
namespace {

/// The texts of a golden file by the headings of its sections, such as "begin proc/stat" and "expect first".
using Sections = std::map<std::string, std::string>;

Sections readSections(const std::string& name) {
    std::ifstream file(std::filesystem::path(VOR_GOLDEN_FOLDER) / "kernel" / (name + ".txt"));
    Sections sections;
    std::string* text = nullptr;
    for (std::string line; std::getline(file, line);)
        if (line.starts_with("== "))
            text = &sections[line.substr(3)];
        else
            *text += line + "\n";
    return sections;
}

/// Prepared proc and sys folders, removed again at the end.
struct Machine {
    void write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories((root / name).parent_path());
        VorTest::writeFile(root / name, text);
    }
    /// Writes the files of a moment: begin, first or second.
    void show(const Sections& sections, const std::string& moment) const {
        for (const auto& [heading, text] : sections)
            if (heading.starts_with(moment + " "))
                write(heading.substr(moment.size() + 1), text);
    }
    std::unique_ptr<JobMeasurement> startJob(const std::vector<std::string>& classes) const {
        return KernelCounters(root / "proc", root / "sys").startJob("J1", classes);
    }

    const Poco::TemporaryFile folder;
    const std::filesystem::path root = folder.path();
};

/// A line for each object: its ldn and values, with f after a float and ! after a suspect value. A line of
/// the types goes before the first object and each whose types differ from those of the one before.
std::string print(const MeasurementData& data) {
    std::ostringstream out;
    const auto printValue = [&out](const auto& value) {
        using ValueT = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<ValueT, Nil>)
            out << " nil";
        else
            out << " " << testing::PrintToString(value) << (std::is_same_v<ValueT, double> ? "f" : "");
    };
    std::string printed;
    for (const MeasuredObject& object : data.at(0).objects) {
        std::string types;
        for (const Measurement& value : object.values)
            types += (types.empty() ? "" : " ") + value.type;
        if (types != printed)
            out << (printed = types) << "\n";
        out << object.ldn;
        for (const Measurement& value : object.values) {
            std::visit(printValue, value.value);
            out << (value.suspect ? "!" : "");
        }
        out << "\n";
    }
    return out.str();
}

TEST(KernelCounters, measuresEachClassOverTwoPeriods) {
    for (const char* name :
         {"Processor", "Memory", "NetworkInterface", "Disk", "Load", "Pressure", "Softirqs"}) {
        const Sections sections = readSections(name);
        const Machine machine;
        machine.show(sections, "begin");
        const auto job = machine.startJob({name});
        job->begin();
        for (const std::string moment : {"first", "second"}) {
            machine.show(sections, moment);
            EXPECT_EQ(print(job->cut(Coverage::Whole)), sections.at("expect " + moment));
        }
    }
}

TEST(KernelCounters, suspectsEveryValueOfAPartialPeriodOnly) {
    const Machine machine;
    machine.write("proc/loadavg", "1 2 3 4/5 6\n");
    const auto job = machine.startJob({"Load"});
    const std::string types = "average1 average5 average15 runnable entities\n";
    EXPECT_EQ(print(job->cut(Coverage::Partial)), types + "Load=1 1f! 2f! 3f! 4! 5!\n");
    EXPECT_EQ(print(job->cut(Coverage::Whole)), types + "Load=1 1f 2f 3f 4 5\n");
}

TEST(KernelCounters, deliversTheClassesAskedForInTheirOrder) {
    const Machine machine;
    machine.write("proc/stat/aFolder", "");
    std::string found;
    const auto job = machine.startJob({"Softirqs", "Disk", "Pressure", "Processor", "NetworkInterface"});
    for (const MeasuredClass& measured : job->cut(Coverage::Whole))
        found += *measured.name + " " + std::to_string(measured.objects.size()) + ", ";
    EXPECT_EQ(found, "Softirqs 0, Disk 0, Pressure 3, Processor 0, NetworkInterface 0, ");
    try {
        machine.startJob({"Load", "Weather"});
        FAIL() << "accepted";
    } catch (const InputError& error) {
        EXPECT_STREQ(error.what(),
                     "job J1: no measurement class is named \"Weather\"; use some of Processor, Memory, "
                     "NetworkInterface, Disk, Load, Pressure, Softirqs");
    }
}

}  // namespace
}  // namespace VorNode
