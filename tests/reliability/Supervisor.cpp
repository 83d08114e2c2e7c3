// System calls are handed over by a filter with user notification (seccomp), so every thread and child
// process is seen, in the order of the calls, without a debugger.
#include "Supervisor.h"

#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace VorTest {

namespace {

/// Where a call has its file: the path or, for calls on an open file, the descriptor; both, where the path
/// begins at an open folder.
struct CallForm {
    int number;
    const char* name;
    int path;
    int descriptor;
    int newPath;
};

constexpr int none = -1;
constexpr CallForm forms[] = {
    {SYS_openat, "open", 1, none, none},         {SYS_write, "write", none, 0, none},
    {SYS_ftruncate, "ftruncate", none, 0, none}, {SYS_fsync, "fsync", none, 0, none},
    {SYS_close, "close", none, 0, none},         {SYS_getdents64, "getdents", none, 0, none},
    {SYS_renameat, "rename", 1, none, 3},        {SYS_unlinkat, "unlink", 1, 0, none},
    {SYS_mkdirat, "mkdir", 1, none, none},       {SYS_symlinkat, "symlink", 2, none, none},
#ifdef SYS_rename
    {SYS_open, "open", 0, none, none},           {SYS_rename, "rename", 0, none, 1},
    {SYS_unlink, "unlink", 0, none, none},       {SYS_rmdir, "unlink", 0, none, none},
    {SYS_mkdir, "mkdir", 0, none, none},         {SYS_symlink, "symlink", 1, none, none},
#endif
};

/// The descriptor from which the calls of this process are read; below 0 when the kernel refuses.
int installFilter() {
    std::vector<sock_filter> program{BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    for (const CallForm& form : forms) {
        program.push_back(BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(form.number), 0, 1));
        program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    const sock_fprog filter{static_cast<unsigned short>(program.size()), program.data()};
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    return static_cast<int>(
        ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

/// A message of one byte that carries a descriptor.
struct DescriptorMessage {
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    char byte = 0;
    iovec data{&byte, 1};
    msghdr header{nullptr, 0, &data, 1, control, sizeof control, 0};
    int* descriptor() { return reinterpret_cast<int*>(CMSG_DATA(CMSG_FIRSTHDR(&header))); }
};

void sendDescriptor(int socket, int descriptor) {
    DescriptorMessage message;
    *CMSG_FIRSTHDR(&message.header) = {CMSG_LEN(sizeof(int)), SOL_SOCKET, SCM_RIGHTS};
    *message.descriptor() = descriptor;
    ::sendmsg(socket, &message.header, 0);
}

int receiveDescriptor(int socket) {
    DescriptorMessage message;
    return ::recvmsg(socket, &message.header, 0) == 1 && CMSG_FIRSTHDR(&message.header) != nullptr
               ? *message.descriptor()
               : none;
}

std::string textAt(const std::string& process, std::uint64_t address) {
    char text[4096] = {};
    const int memory = ::open((process + "/mem").c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t size = ::pread(memory, text, sizeof text - 1, static_cast<off_t>(address));
    ::close(memory);
    return size > 0 ? text : "";
}

SystemCall describe(const seccomp_notif& notification) {
    const std::string process = "/proc/" + std::to_string(notification.pid);
    const auto& arguments = notification.data.args;
    for (const CallForm& form : forms) {
        if (form.number != notification.data.nr)
            continue;
        SystemCall call{form.name, "", ""};
        std::filesystem::path path = form.path != none ? textAt(process, arguments[form.path]) : "";
        if (form.descriptor != none && path.is_relative()) {
            std::error_code ignored;
            const auto link = process + "/fd/" + std::to_string(arguments[form.descriptor]);
            const auto opened = std::filesystem::read_symlink(link, ignored);
            path = path.empty() ? opened : opened / path;
        }
        call.path = path;
        call.newPath = form.newPath != none ? textAt(process, arguments[form.newPath]) : "";
        return call;
    }
    return {};
}

/// Returns when the processes that the filter is on have ended.
void serve(int listener, pid_t child, const std::function<Verdict(const SystemCall&)>& judge) {
    pollfd calls{listener, POLLIN, 0};
    while (::poll(&calls, 1, -1) > 0 && (calls.revents & POLLIN) != 0) {
        seccomp_notif notification{};
        if (::ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &notification) != 0) {
            continue;  // The caller is gone already.
        }
        const Verdict verdict = judge(describe(notification));
        if (verdict == killed) {
            ::kill(child, SIGKILL);
            continue;
        }
        seccomp_notif_resp response{notification.id, 0, -verdict, 0};
        response.flags = verdict == 0 ? SECCOMP_USER_NOTIF_FLAG_CONTINUE : 0;
        ::ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &response);
    }
}

int failures() {
    const testing::TestResult& result = *testing::UnitTest::GetInstance()->current_test_info()->result();
    return result.total_part_count();
}

/// The failures of the parent so far are not the child's.
[[noreturn]] void workAndExit(const std::function<void()>& work) {
    const int failuresBefore = failures();
    try {
        work();
    } catch (const std::exception& fault) {
        ADD_FAILURE() << fault.what();
    }
    std::fflush(nullptr);
    ::_exit(failures() > failuresBefore ? 1 : 0);
}

int waitFor(pid_t child) {
    int status = 0;
    ::waitpid(child, &status, 0);
    return status;
}

}  // namespace

bool canSupervise() {
    return WEXITSTATUS(runInChild([] { ASSERT_GE(installFilter(), 0); })) == 0;
}

int supervise(const std::function<void()>& work, const std::function<Verdict(const SystemCall&)>& judge) {
    int ends[2];
    ::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends);
    const pid_t child = ::fork();
    if (child == 0) {
        sendDescriptor(ends[1], installFilter());
        workAndExit(work);
    }
    ::close(ends[1]);
    const int listener = receiveDescriptor(ends[0]);
    serve(listener, child, judge);
    ::close(listener);
    ::close(ends[0]);
    return waitFor(child);
}

int runInChild(const std::function<void()>& work, long microsecondsToLive) {
    const pid_t child = ::fork();
    if (child == 0)
        workAndExit(work);
    if (microsecondsToLive > 0) {
        // Any moment will do: no state is waited for.
        std::this_thread::sleep_for(std::chrono::microseconds(microsecondsToLive));
        ::kill(child, SIGKILL);
    }
    return waitFor(child);
}

}  // namespace VorTest
