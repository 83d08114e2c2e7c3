// How the program ends, and what it leaves, once it has measured: jobs of 10 s, phases that end at second 42.
#include <cstdlib>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Golden.h"

namespace VorTest {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

struct ProgramEndTest : testing::Test {
    ProgramEndTest() {
        const std::string minutely = "Period\">3<", every10s = "Period\">1<";
        writeFile(root.path() / "model.xml", Poco::replace(golden("system-model.xml"), minutely, every10s));
        writeFile(root.path() / "counters.json", golden("system-counters.json"));
        writeFile(root.path() / "node.xml",
                  "<C><VorPmComp><pmTimerExpirationTime>42</pmTimerExpirationTime></VorPmComp></C>");
    }

    /// Runs a shell script in which `node` starts the program, 5 s before the end of a period, and takes the
    /// program's further options. Its status.
    int run(const std::string& script) {
        const std::string programs = fs::read_symlink("/proc/self/exe").parent_path();
        const std::string prelude =
            "cd " + root.path().string() + "; PATH=" + programs +
            ":$PATH; export TZ=CET-1; umask 000; node() { LD_PRELOAD=" VOR_PROGRAM_CLOCK
            " VOR_WALL_CLOCK=1772716535 ASAN_OPTIONS=$ASAN_OPTIONS:verify_asan_link_order=0 exec timeout 60 "
            "vor-node run --root . --model model.xml --config node.xml --counters recorded:counters.json "
            "\"$@\"; }; ";
        const int status = std::system((prelude + "( " + script + " ) >output 2>&1").c_str());
        output = readFile(root.path() / "output");
        return WEXITSTATUS(status);
    }

    static mode_t rightsOf(const fs::path& path) {
        struct stat status {};
        EXPECT_EQ(::stat(path.c_str(), &status), 0) << path;
        return status.st_mode & 0777;
    }

    const TemporaryRoot root;
    std::string output;
};

}  // namespace

TEST_F(ProgramEndTest, IsGoodAfterThePhasesAskedForAndLeavesNothingToOthers) {
    EXPECT_EQ(run("node --reports 1"), 0) << output;
    EXPECT_THAT(output, HasSubstr("1 phase published"));
    const Texts reports = TemporaryRoot::filesIn(root.reportFolder());
    ASSERT_EQ(reports.size(), 1U) << output;
    EXPECT_EQ(rightsOf(root.reportFolder() / reports[0]), 0640);
    EXPECT_EQ(rightsOf(root.reportFolder()), 0750);
    EXPECT_EQ(rightsOf(root.path() / ".lock"), 0640);
}

TEST_F(ProgramEndTest, HasStatus1WhenAReportWasNotPublished) {
    const std::string reports = root.reportFolder().string();
    EXPECT_EQ(run("mkfifo lines; node >lines 2>&1 & while read -r line; do echo \"$line\"; case $line in "
                  "*'phase opened'*) rm -r " +
                  reports + "; : >" + reports + "; kill $! ;; esac; done <lines; wait $!"),
              1)
        << output;
    EXPECT_THAT(output, HasSubstr(": Error copying file "));
    EXPECT_THAT(output, HasSubstr("0 phases published"));
}

}  // namespace VorTest
