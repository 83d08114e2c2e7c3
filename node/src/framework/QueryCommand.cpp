#include "framework/QueryCommand.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <stdexcept>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Descriptor.h"

namespace VorNode {

namespace {

constexpr int commandNotFound = 127;
constexpr std::size_t longestAnswer = 65'536;

[[noreturn]] void failWithErrno(const char* step) {
    throw std::runtime_error(std::string(step) + ": " + std::generic_category().message(errno));
}

/// In the child: calls only what may be called between fork and exec.
[[noreturn]] void become(char* const* arguments, int output) {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    for (int number = 1; number < NSIG; ++number) {
        ::signal(number, SIG_DFL);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
    ::dup2(output, STDOUT_FILENO);
    ::execvp(arguments[0], arguments);
    ::_exit(commandNotFound);
}

/// A running command; killed and waited for at the end.
class Child {
  public:
    Child(std::vector<std::string> command, int output) {
        std::vector<char*> arguments;
        arguments.reserve(command.size() + 1);
        for (std::string& part : command) {
            arguments.push_back(part.data());
        }
        arguments.push_back(nullptr);
        _id = ::fork();
        if (_id == 0) {
            become(arguments.data(), output);
        }
        if (_id < 0) {
            failWithErrno("cannot be started");
        }
    }
    ~Child() {
        if (_id > 0) {
            ::kill(_id, SIGKILL);
            ::waitpid(_id, nullptr, 0);
        }
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;

    /// The status as `waitpid` tells it, none while the command runs.
    std::optional<int> status() {
        int status = 0;
        if (::waitpid(_id, &status, WNOHANG) == 0) {
            return std::nullopt;
        }
        _id = -1;
        return status;
    }

  private:
    pid_t _id = -1;
};

/// What the command has written since the last call. Who writes without end is left waiting.
void readWhatIsThere(int source, std::string& text) {
    std::array<char, 4096> part{};
    while (text.size() < longestAnswer) {
        const ssize_t bytes = ::read(source, part.data(), part.size());
        if (bytes <= 0) {
            return;
        }
        text.append(part.data(), static_cast<std::size_t>(bytes));
    }
}

/// Waits for the end of the command, not for that of its output: what it leaves in the background may hold
/// that for ever.
int waitForEnd(Child& child, int source, std::string& text, std::chrono::milliseconds limit) {
    constexpr std::chrono::milliseconds tick{2};
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        const std::optional<int> status = child.status();
        readWhatIsThere(source, text);
        if (status) {
            return *status;
        }
        if (std::chrono::steady_clock::now() >= deadline) {
            throw std::runtime_error("does not end");
        }
        std::this_thread::sleep_for(tick);
    }
}

}  // namespace

std::string answerOf(const std::vector<std::string>& command, std::chrono::milliseconds limit) {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        failWithErrno("cannot be asked");
    }
    const Descriptor output(ends[0]);
    Descriptor childsOutput(ends[1]);
    Child child(command, childsOutput.number());
    childsOutput.close();
    ::fcntl(output.number(), F_SETFL, O_NONBLOCK);
    std::string answer;
    const int status = waitForEnd(child, output.number(), answer, limit);
    if (status != 0) {
        throw std::runtime_error(WIFEXITED(status)
                                     ? "ends with status " + std::to_string(WEXITSTATUS(status))
                                     : "is ended by signal " + std::to_string(WTERMSIG(status)));
    }
    if (answer.ends_with('\n')) {
        answer.pop_back();
    }
    return answer;
}

}  // namespace VorNode
