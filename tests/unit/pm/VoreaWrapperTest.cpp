#include <csignal>
#include <fstream>

#include <gmock/gmock.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include "LogCapture.h"
#include "TemporaryRoot.h"
#include "VorException.h"
#include "VoreaWrapper.h"

namespace VorTest {
namespace {

using VorPm::VoreaWrapper;

const std::string hang = "exec sleep 20";

struct VoreaWrapperTest : testing::Test {
    VoreaWrapperTest() {
        ::signal(SIGCHLD, SIG_DFL);
        // What loses its parent becomes a child of this process, which can see it end.
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
        EXPECT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    }

    /// The command writes the number of a process into the pipe.
    pid_t readProcess() const {
        pid_t process = 0;
        std::ifstream(pipe) >> process;
        return process;
    }
    static int endOf(pid_t process) {
        int status = 0;
        EXPECT_EQ(::waitpid(process, &status, 0), process);
        return status;
    }

    LogCapture log;
    TemporaryRoot root;
    const std::string pipe = root.path() / "pipe";
};

auto failsWith(const std::string& status) {
    return testing::ThrowsMessage<Vor::VorException>("Failed to invoke: vorea , retval " + status);
}

}  // namespace

TEST_F(VoreaWrapperTest, DoesNotWaitForWhatTheCommandLeavesRunning) {
    root.answerWith("sleep 20 & echo $!");
    const pid_t left = std::stoi(VoreaWrapper().invoke({}));
    ::kill(left, SIGKILL);
    EXPECT_EQ(WTERMSIG(endOf(left)), SIGKILL) << "it was left alone until now";
}

TEST_F(VoreaWrapperTest, KillsACommandThatTakesTooLongWithAllItStarted) {
    root.answerWith("sleep 20 & echo $!; echo why >&2; wait");
    EXPECT_THAT([] { VoreaWrapper(std::chrono::milliseconds(300)).invoke({}); }, failsWith("137"));
    const std::vector<std::string> told = log.takeMessages();
    ASSERT_EQ(told.size(), 2U);
    EXPECT_EQ(told[0], "3 invoke why\n");
    const std::string front = "3 invoke Failed to invoke vorea Retval: 137, Result: ";
    ASSERT_TRUE(told[1].starts_with(front)) << told[1];
    EXPECT_EQ(WTERMSIG(endOf(std::stoi(told[1].substr(front.size())))), SIGKILL);
}

TEST_F(VoreaWrapperTest, GivesTheCommandNeitherSignalStateNorFilesOfTheProcess) {
    root.answerWith(
        "grep -E 'Sig(Blk|Ign)' /proc/self/status | sed 's,[\t0:],,g' | tr -d '\n'; ls /proc/self/fd | wc "
        "-w");
    sigset_t all;
    ::sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, nullptr);
    ::signal(SIGTERM, SIG_IGN);
    const int inherited = ::dup(STDIN_FILENO);
    // The fourth file is the folder that is listed.
    EXPECT_EQ(VoreaWrapper().invoke({}), "SigBlkSigIgn4\n");
    ::close(inherited);
}

TEST_F(VoreaWrapperTest, SaysWhyThereIsNoStatusWhenTheProcessIgnoresItsChildren) {
    ::signal(SIGCHLD, SIG_IGN);
    EXPECT_THAT([] { VoreaWrapper().invoke({}); }, failsWith("-1"));
    EXPECT_EQ(log.count(3, "The process must not ignore SIGCHLD"), 1);
}

TEST_F(VoreaWrapperTest, LetsTheCommandDieWithTheProcess) {
    root.answerWith("echo $$ >" + pipe + "; " + hang);
    const pid_t process = ::fork();
    if (process == 0) {
        VoreaWrapper().invoke({});
        ::_exit(0);
    }
    const pid_t command = readProcess();
    ::kill(process, SIGKILL);
    endOf(process);
    EXPECT_EQ(WTERMSIG(endOf(command)), SIGKILL);
}

}  // namespace VorTest
