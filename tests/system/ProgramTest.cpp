// The program as its starter, its readers and its users meet it.
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <regex>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Descriptor.h"
#include "Golden.h"
#include "WallClock.h"
#include "app/Program.h"

namespace {

bool systemWatchesFolders = true;

}  // namespace

/// Takes the place of the C library's own in the whole program.
extern "C" int inotify_init1(int flags) noexcept {
    if (!systemWatchesFolders) {
        errno = EMFILE;
        return -1;
    }
    return static_cast<int>(syscall(SYS_inotify_init1, flags));
}

namespace VorTest {
namespace {

namespace fs = std::filesystem;

constexpr int deadline = 30'000;

/// Half a second before 2026-03-05T13:15:00Z, in ns.
constexpr std::int64_t shortlyBeforeAMinute = 1'772'716'499'500'000'000;

/// Waits until something has come, or nobody can write any more.
bool canBeRead(int descriptor) {
    pollfd wait{descriptor, POLLIN, 0};
    return ::poll(&wait, 1, deadline) > 0;
}

/// A pipe that is read with a deadline.
class Pipe {
  public:
    Pipe() {
        int ends[2] = {-1, -1};
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        _readEnd = VorNode::Descriptor(ends[0]);
        _writeEnd = VorNode::Descriptor(ends[1]);
    }

    int writeEnd() const { return _writeEnd.number(); }

    /// Reads until the text has come; true when it has.
    bool await(const std::string& text) {
        while (_text.find(text) == std::string::npos) {
            char part[4096];
            const ssize_t size =
                canBeRead(_readEnd.number()) ? ::read(_readEnd.number(), part, sizeof part) : 0;
            if (size <= 0)
                return false;
            _text.append(part, static_cast<std::size_t>(size));
        }
        return true;
    }

  private:
    VorNode::Descriptor _readEnd;
    VorNode::Descriptor _writeEnd;
    std::string _text;
};

/// A process of its own; killed at the end.
class Process {
  public:
    explicit Process(const std::function<int()>& work) : _id(::fork()) {
        if (_id == 0)
            std::exit(work());
    }
    ~Process() {
        if (_id > 0) {
            ::kill(_id, SIGKILL);
            ::waitpid(_id, nullptr, 0);
        }
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    void send(int signal) const { EXPECT_EQ(::kill(_id, signal), 0); }
    std::string file(const std::string& name) const { return "/proc/" + std::to_string(_id) + "/" + name; }

    /// As a shell tells it; -1 when the process does not end.
    int status() {
        const VorNode::Descriptor handle(static_cast<int>(syscall(SYS_pidfd_open, _id, 0)));
        if (!canBeRead(handle.number()))
            return -1;
        int status = 0;
        ::waitpid(std::exchange(_id, -1), &status, 0);
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

  private:
    pid_t _id;
};

struct Program : testing::Test {
    // Without a zone the C library reads its file for every line, behind a lock that thread sanitizers miss.
    Program() { ::setenv("TZ", "CET-1", 1); }

    /// `vor-node run` on the root with the options and redirections of the shell.
    std::function<int()> command(const std::string& options) {
        const std::string script =
            "exec " + program.string() + " run --root " + root.path().string() + " " + options;
        return [this, script] {
            prepare();
            ::execl("/bin/sh", "sh", "-c", script.c_str(), nullptr);
            return 126;
        };
    }

    /// The same without a shell, in a process that sees the test's clock.
    std::function<int()> ownRun(Texts options) {
        options.insert(options.begin(), {"vor-node", "run", "--root", root.path()});
        return [this, options] {
            prepare();
            const WallClock clock(shortlyBeforeAMinute);
            std::vector<const char*> arguments;
            for (const std::string& option : options)
                arguments.push_back(option.c_str());
            return VorNode::runProgram(static_cast<int>(arguments.size()), arguments.data());
        };
    }

    /// Its phase ends a second and a half after the begin.
    std::function<int()> ownRunOfOneReport(Texts options) {
        const std::string configuration = root.path() / "node.xml";
        writeFile(configuration,
                  "<C><VorPmComp><pmTimerExpirationTime>1</pmTimerExpirationTime></VorPmComp></C>");
        options.insert(options.end(), {"--reports", "1", "--config", configuration});
        return ownRun(options);
    }

    /// In the child: standard output and error go to the pipe.
    void prepare() {
        ::dup2(output.writeEnd(), STDOUT_FILENO);
        ::dup2(output.writeEnd(), STDERR_FILENO);
        inChild();
    }

    /// The program in a place of its own, with a `vorea` that says that it runs and then hangs.
    void letVoreaHang() {
        const fs::path built = program.parent_path().parent_path(), prefix = root.path() / "prefix";
        const fs::path vorea = prefix / "libexec/vor-node/vorea";
        fs::create_directories(vorea.parent_path());
        fs::create_directory(prefix / "bin");
        for (const char* folder : {"lib", "share"})
            fs::create_directory_symlink(built / folder, prefix / folder);
        fs::copy(program, prefix / "bin");
        program = prefix / "bin/vor-node";
        ::mkfifo(voreaRuns.c_str(), 0600);
        writeFile(vorea, "#!/bin/sh\nexec 3>" + voreaRuns.string() + "\necho >&3\nsleep 1000\n");
        fs::permissions(vorea, fs::perms::owner_all);
    }

    /// Open as long as a process of the `vorea` that hangs lives.
    VorNode::Descriptor awaitVorea() const {
        VorNode::Descriptor vorea(::open(voreaRuns.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
        char byte = 0;
        EXPECT_TRUE(canBeRead(vorea.number()) && ::read(vorea.number(), &byte, 1) == 1);
        return vorea;
    }

    TemporaryRoot root;
    fs::path program = fs::read_symlink("/proc/self/exe").parent_path() / "vor-node";
    const fs::path voreaRuns = root.path() / "vorea-runs";
    Pipe output;
    std::function<void()> inChild = [] {};
};

constexpr char lastLineOfTheStart[] = "supportedMeasJobGps";

}  // namespace

TEST_F(Program, StopsInOrderWhenItsTerminalHangsUp) {
    Process node(command(""));
    ASSERT_TRUE(output.await(lastLineOfTheStart));
    node.send(SIGHUP);
    EXPECT_EQ(node.status(), 0);
    EXPECT_TRUE(output.await("node stopped: "));
}

TEST_F(Program, IgnoresAHangUpThatItsStarterIgnores) {
    inChild = [] { std::signal(SIGHUP, SIG_IGN); };
    Process node(command(""));
    ASSERT_TRUE(output.await(lastLineOfTheStart));
    const std::regex ignored("SigBlk:\t[0-9a-f]{15}[02468ace]\nSigIgn:\t[0-9a-f]{15}[13579bdf]\n");
    EXPECT_TRUE(std::regex_search(readFile(node.file("status")), ignored)) << readFile(node.file("status"));
}

TEST_F(Program, EndsWithItsChildrenWhenASignalComesWhileVoreaHangs) {
    letVoreaHang();
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        SCOPED_TRACE(signal);
        Process node(command(""));
        const VorNode::Descriptor vorea = awaitVorea();
        node.send(signal);
        EXPECT_EQ(node.status(), 1);
        EXPECT_TRUE(canBeRead(vorea.number())) << "a process of vorea still holds the pipe";
    }
    EXPECT_TRUE(output.await("vor-node: ended by SIGHUP before it was running\n"));
}

TEST_F(Program, HasDescriptorsInPlaceOfThoseThatItsStarterClosed) {
    letVoreaHang();
    Process node(command("<&- >&- 2>&-"));
    const VorNode::Descriptor vorea = awaitVorea();
    for (const char* descriptor : {"fd/0", "fd/1", "fd/2"})
        EXPECT_EQ(fs::read_symlink(node.file(descriptor)), "/dev/null") << descriptor;
    node.send(SIGTERM);
    EXPECT_EQ(node.status(), 1);
}

TEST_F(Program, OutlivesALimitOfFileSizes) {
    inChild = [this] {
        const rlimit none{0, 0};
        ::setrlimit(RLIMIT_FSIZE, &none);
        ::dup2(::open((root.path() / "lines").c_str(), O_WRONLY | O_CREAT, 0600), STDOUT_FILENO);
    };
    EXPECT_EQ(Process(ownRun({"--capabilities"})).status(), 0);
}

TEST_F(Program, WaitsForItsChildrenWhenItsStarterIgnoresThem) {
    inChild = [] { std::signal(SIGCHLD, SIG_IGN); };
    EXPECT_EQ(Process(ownRun({"--capabilities"})).status(), 0);
}

TEST_F(Program, EndsWithOneAfterAnErrorThatNobodyCouldRead) {
    writeFile(root.path() / "node.xml",
              "<C><VorPmComp><pmTimerExpirationTime>x</pmTimerExpirationTime></VorPmComp></C>");
    const std::string options = "--capabilities --config " + (root.path() / "node.xml").string();
    EXPECT_EQ(Process(command(options)).status(), 1);
    EXPECT_TRUE(output.await("vor-node: the component logged 1 error"));
    EXPECT_EQ(Process(command(options + " >/dev/full 2>&1")).status(), 1);
}

TEST_F(Program, PublishesAndEndsThoughNobodyReadsItsOutput) {
    ASSERT_EQ(::fcntl(output.writeEnd(), F_SETPIPE_SZ, 4096), 4096);
    EXPECT_EQ(Process(ownRunOfOneReport({"--log-level", "8"})).status(), 0);
    EXPECT_NE(TemporaryRoot::filesIn(root.reportFolder()), Texts{});
    pollfd room{output.writeEnd(), POLLOUT, 0};
    EXPECT_EQ(::poll(&room, 1, 0), 0) << "the pipe was never full";
}

TEST_F(Program, GoesOnWithoutAWatcherAndSaysSo) {
    inChild = [] { systemWatchesFolders = false; };
    Process node(ownRunOfOneReport({}));
    EXPECT_TRUE(output.await("reports are published, but not all are shown: inotify"));
    EXPECT_TRUE(output.await(lastLineOfTheStart));
    node.send(SIGTERM);
    EXPECT_EQ(node.status(), 0);
}

}  // namespace VorTest
