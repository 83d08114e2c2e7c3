#include <filesystem>
#include <map>
#include <sstream>

#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

#include "InputError.h"
#include "TemporaryRoot.h"
#include "counters/KernelCounters.h"

namespace VorNode {
namespace {

/// Texts by path below the folder of a machine.
using Files = std::map<std::string, std::string>;

/// Prepared proc and sys folders, removed again at the end.
struct Machine {
    void show(const Files& files) const {
        for (const auto& [name, text] : files) {
            std::filesystem::create_directories((root / name).parent_path());
            VorTest::writeFile(root / name, text);
        }
    }
    std::unique_ptr<JobMeasurement> startJob(const std::vector<std::string>& classes) const {
        return KernelCounters(root / "proc", root / "sys").startJob("J1", classes);
    }

    const Poco::TemporaryFile folder;
    const std::filesystem::path root = folder.path();
};

/// A line for each object: its ldn and values, with f after a float and ! after a suspect value. An object
/// that has not just these types of values is told of.
std::string print(const MeasurementData& data, const std::string& types) {
    std::ostringstream out;
    const auto printValue = [&out](const auto& value) {
        using ValueT = std::decay_t<decltype(value)>;
        if constexpr (std::is_same_v<ValueT, Nil>)
            out << " nil";
        else
            out << " " << testing::PrintToString(value) << (std::is_same_v<ValueT, double> ? "f" : "");
    };
    for (const MeasuredObject& object : data.at(0).objects) {
        out << object.ldn;
        std::string found;
        for (const Measurement& value : object.values) {
            found += (found.empty() ? "" : " ") + value.type;
            std::visit(printValue, value.value);
            out << (value.suspect ? "!" : "");
        }
        out << (found == types ? "\n" : " of " + found + "\n");
    }
    return out.str();
}

struct Case {
    const char *name, *types;
    Files begin, end1;
    const char* expected1;
    Files end2;
    const char* expected2;
};

const Case cases[]{
    {"Processor",
     "userTime niceTime systemTime idleTime ioWaitTime irqTime softirqTime stealTime utilisation",
     {{"proc/stat",
       "cpu  9 9 9 9 9 9 9 9 0 0\ncpu0 100 10 50 800 20 5 5 10 0 0\ncpu1 1 1 1 1 1 1 1 1\nintr 5\n"}},
     {{"proc/stat", "cpu0 130 10 57 850 30 6 6 11 0\ncpu2 1 0 0 3 0 0 0 0\ncpu3 1 0 0 x 0 0 0 0\ncpu4 1\n"}},
     "Processor=0 300 0 70 500 100 10 10 10 40f\n"
     "Processor=2 10! 0! 0! 30! 0! 0! 0! 0! 25f!\n",
     {{"proc/stat", "cpu0 130 10 57 950 25 6 6 11 0\ncpu2 1 0 0 3 0 0 0 0\n"}},
     "Processor=0 0 0 0 1000 250! 0 0 0 0f\n"
     "Processor=2 0 0 0 0 0 0 0 0 nil\n"},
    {"Memory",
     "total free available buffers cached swapTotal swapFree dirty usedRatio",
     {},
     {{"proc/meminfo",
       "MemTotal: 1000 kB\nMemFree: 300 kB\nMemAvailable: 750 kB\nBuffers: 5 kB\nCached: 6 kB\n"
       "SwapCached: 9 kB\nSwapTotal: 8 kB\nSwapFree: 7 kB\nDirty: 4 kB\nHugePages_Total: 0\n"}},
     "Memory=1 1000 300 750 5 6 8 7 4 25f\n",
     {{"proc/meminfo", "MemTotal: 10 kB\nMemFree: -3 kB\nMemAvailable: 11 kB\nBuffers:\nCached 6 kB\n"}},
     "Memory=1 10 nil 11 nil nil nil nil nil nil\n"},
    {"NetworkInterface",
     "rxBytes rxPackets rxErrors rxDropped txBytes txPackets txErrors txDropped speed",
     {{"proc/net/dev",
       "Inter-| Receive | Transmit\n face |bytes packets errs drop fifo frame compressed multicast|bytes\n"
       "    lo: 10 1 0 0 0 0 0 0 10 1 0 0 0 0 0 0\n"
       "eth0:18446744073709551000 20 3 4 0 0 0 0 500 30 5 6 0 0 0 0\n"},
      {"sys/class/net/eth0/speed", "1000\n"},
      {"sys/class/net/a,\"b:1/speed", "-1\n"}},
     {{"proc/net/dev",
       "    lo: 10 1 0 0 0 0 0 0 10 1 0 0 0 0 0 0\n  eth1: 1 2 3\n"
       "eth0:18446744073709551600 21 5 7 0 0 0 0 505 36 12 14 0 0 0 0\n"
       "a,\"b:1: 9 8 7 6 0 0 0 0 5 4 3 2 0 0 0 0\n"}},
     "NetworkInterface=lo 0 0 0 0 0 0 0 0 nil\n"
     "NetworkInterface=eth0 600 1 2 3 5 6 7 8 1000\n"
     "NetworkInterface=a__b:1 9! 8! 7! 6! 5! 4! 3! 2! nil\n",
     {{"proc/net/dev", "eth0: 70 21 5 7 0 0 0 0 505 36 12 14 0 0 0 0\n"},
      {"sys/class/net/eth0/speed", "2500\n"}},
     "NetworkInterface=eth0 70! 0 0 0 0 0 0 0 2500\n"},
    {"Disk",
     "reads readBytes readTime writes writtenBytes writeTime ioTime averageWait",
     {{"proc/diskstats",
       "7 0 loop0 0 0 0 0 0 0 0 0 0 0 0 0 0 0\n8 16 sdb 0 0 0 0 0 0 0 0 0 0 0\n"
       "8 0 sda 10 1 100 50 20 2 200 60 0 70 110 9 9 9\n"}},
     {{"proc/diskstats",
       "7 0 loop0 0 0 0 0 0 0 0 0 0 0 0\n8 16 sdb 1 0 2 3 0 0 0 0 0 4 3\n8 1 sda1 5 5 5 5\n"
       "8 0 sda 12 9 104 57 22 9 203 63 5 79 999 9 9 9\n8 2 sda2 1 2 3 4 5 6 7 8 9 10 x\n"}},
     "Disk=sdb 1 1024 3 0 0 0 4 3f\n"
     "Disk=sda 2 2048 7 2 1536 3 9 2.5f\n",
     {{"proc/diskstats", "8 0 sda 12 9 104 57 22 9 203 63 0 79 999\n8 16 sdb 5 0 2 1 0 0 0 0 0 4 3\n"}},
     "Disk=sda 0 0 0 0 0 0 0 nil\n"
     "Disk=sdb 4 0 1! 0 0 0 0 0.2f!\n"},
    {"Load",
     "average1 average5 average15 runnable entities",
     {},
     {{"proc/loadavg", "0.11 1.06 12.02 3/97 3140\n"}},
     "Load=1 0.11f 1.06f 12.02f 3 97\n",
     {{"proc/loadavg", "0,11 1.06 12.02 3/97 3140\n"}},
     ""},
    {"Pressure",
     "someAvg10 someAvg60 someAvg300 someStallTime fullAvg10 fullAvg60 fullAvg300 fullStallTime",
     {{"proc/pressure/cpu", "some avg10=0.00 avg60=0.00 avg300=0.00 total=100\n"},
      {"proc/pressure/io", "some avg10=0.00 avg60=0.00 avg300=0.00 total=7\nfull total=5\n"}},
     {{"proc/pressure/cpu", "some avg10=1.50 avg60=0.25 avg300=0.10 total=350\n"},
      {"proc/pressure/io", "some avg10=1 avg60=2 avg300=3 total=6\nfull avg10=4 avg60=x avg300 total=9\n"}},
     "Pressure=cpu 1.5f 0.25f 0.1f 250 nil nil nil nil\n"
     "Pressure=memory nil nil nil nil nil nil nil nil\n"
     "Pressure=io 1f 2f 3f 6! 4f nil nil 4\n",
     {{"proc/pressure/memory", "some total=8\n"}, {"proc/pressure/io", "none total=8\n\n"}},
     "Pressure=cpu 1.5f 0.25f 0.1f 0 nil nil nil nil\n"
     "Pressure=memory nil nil nil 8! nil nil nil nil\n"
     "Pressure=io nil nil nil nil nil nil nil nil\n"},
    {"Softirqs",
     "HI TIMER NET_TX NET_RX BLOCK IRQ_POLL TASKLET SCHED HRTIMER RCU",
     {{"proc/softirqs", "     CPU0 CPU1\n HI: 1 2\n TIMER: 10 20\n RCU: 5 6\n"}},
     {{"proc/softirqs", "     CPU0 CPU1\n HI: 4 2\n TIMER: 3 25\n RCU: 5\n OTHER: 1 2\n"}},
     "Softirqs=1 { 3, 0 } { 3, 5 }! nil nil nil nil nil nil nil nil\n",
     {{"proc/softirqs", "     CPU0\n HI: 5\n TIMER: 4\n"}},
     "Softirqs=1 { 5 }! { 4 }! nil nil nil nil nil nil nil nil\n"},
};

TEST(KernelCounters, measuresEachClassOverTwoPeriods) {
    for (const Case& test : cases) {
        const Machine machine;
        machine.show(test.begin);
        const auto job = machine.startJob({test.name});
        job->begin();
        machine.show(test.end1);
        EXPECT_EQ(print(job->cut(Coverage::Whole), test.types), test.expected1);
        machine.show(test.end2);
        EXPECT_EQ(print(job->cut(Coverage::Whole), test.types), test.expected2);
    }
}

TEST(KernelCounters, suspectsEveryValueOfAPartialPeriodOnly) {
    const Machine machine;
    machine.show({{"proc/loadavg", "1 2 3 4/5 6\n"}});
    const auto job = machine.startJob({"Load"});
    const char* const types = "average1 average5 average15 runnable entities";
    EXPECT_EQ(print(job->cut(Coverage::Partial), types), "Load=1 1f! 2f! 3f! 4! 5!\n");
    EXPECT_EQ(print(job->cut(Coverage::Whole), types), "Load=1 1f 2f 3f 4 5\n");
}

TEST(KernelCounters, deliversTheClassesAskedForInTheirOrder) {
    const Machine machine;
    machine.show({{"proc/stat/aFolder", ""}});
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
