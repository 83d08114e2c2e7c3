#include "PmCommand.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <optional>
#include <utility>

#include <Poco/Exception.h>
#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "PmFiles.h"

namespace VorPm {

namespace {

using SteadyClock = std::chrono::steady_clock;

/// How long the end of a command may stay unnoticed, in ms.
constexpr int pollInterval = 2;
/// A killed process that the system holds on to is left behind.
constexpr std::chrono::seconds killLimit(1);
constexpr int statusOfSignal = 256;
constexpr int firstFreeDescriptor = STDERR_FILENO + 1;

[[noreturn]] void throwSystemError(const char* what) {
    const int error = errno;
    throw Poco::SystemException(what, error);
}

/// The same file under a number that is none of the command's standard files.
PmDescriptor aboveStandardFiles(PmDescriptor file) {
    if (file.get() >= firstFreeDescriptor) {
        return file;
    }
    PmDescriptor moved(::fcntl(file.get(), F_DUPFD_CLOEXEC, firstFreeDescriptor));
    if (!moved.isOpen()) {
        throwSystemError("Cannot make a pipe");
    }
    return moved;
}

/// The pipe that takes what the command prints on one of its standard files.
class OutputPipe {
  public:
    OutputPipe() : OutputPipe(create()) {}

    int readEnd() const { return _readEnd.get(); }
    int writeEnd() const { return _writeEnd.get(); }
    void closeWriteEnd() { _writeEnd.close(); }

    /// Takes something of what there is; returns at once.
    void takeSome() {
        if (_readEnd.isOpen()) {
            take(bufferSize);
        }
    }

    /// All that was printed, with what the pipe holds now, whoever may go on writing.
    std::string takeAll() {
        int held = 0;
        if (_readEnd.isOpen() && ::ioctl(_readEnd.get(), FIONREAD, &held) == 0) {
            for (auto left = static_cast<std::size_t>(held); left > 0 && _readEnd.isOpen();) {
                left -= std::min(left, take(std::min(left, bufferSize)));
            }
        }
        return std::move(_text);
    }

  private:
    static constexpr std::size_t bufferSize = 8192;
    /// An answer is a path. What goes beyond is read and forgotten.
    static constexpr std::size_t longestText = std::size_t{4} * 1024 * 1024;

    struct Ends {
        PmDescriptor read;
        PmDescriptor write;
    };

    static Ends create() {
        int numbers[2];
        if (::pipe2(numbers, O_CLOEXEC) != 0) {
            throwSystemError("Cannot make a pipe");
        }
        return {PmDescriptor(numbers[0]), PmDescriptor(numbers[1])};
    }

    explicit OutputPipe(Ends ends)
        : _readEnd(aboveStandardFiles(std::move(ends.read))),
          _writeEnd(aboveStandardFiles(std::move(ends.write))) {
        ::fcntl(_readEnd.get(), F_SETFL, O_NONBLOCK);
    }

    /// The number of bytes taken; the end of the pipe closes it.
    std::size_t take(std::size_t most) {
        char buffer[bufferSize];
        const ssize_t taken = ::read(_readEnd.get(), buffer, most);
        if (taken > 0) {
            const auto count = static_cast<std::size_t>(taken);
            _text.append(buffer, std::min(count, longestText - _text.size()));
            return count;
        }
        if (taken == 0 || (errno != EAGAIN && errno != EINTR)) {
            _readEnd.close();
        }
        return 0;
    }

    PmDescriptor _readEnd;
    PmDescriptor _writeEnd;
    std::string _text;
};

/// Keeps all signals from the calling thread for as long as it lives.
class SignalsBlocked {
  public:
    SignalsBlocked() {
        sigset_t all;
        ::sigfillset(&all);
        ::pthread_sigmask(SIG_SETMASK, &all, &_before);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &_before, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;

  private:
    sigset_t _before{};
};

// The child runs the following between its birth and the command: nothing there may allocate, lock or throw.

void resetSignals() {
    for (int number = 1; number < NSIG; ++number) {
        ::signal(number, SIG_DFL);
    }
    sigset_t none;
    ::sigemptyset(&none);
    ::sigprocmask(SIG_SETMASK, &none, nullptr);
}

void closeOtherFiles() {
    if (::close_range(firstFreeDescriptor, ~0U, 0) != 0) {
        // Kernels before 5.9. All that the component opens is closed by the system.
        constexpr long most = 65536;
        const long end = std::min(most, ::sysconf(_SC_OPEN_MAX));
        for (int number = firstFreeDescriptor; number < end; ++number) {
            ::close(number);
        }
    }
}

[[noreturn]] void becomeCommand(char* const* words, pid_t parent, int output, int errors) {
    ::setpgid(0, 0);
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    // The parent may be gone already.
    if (::getppid() == parent && ::dup2(output, STDOUT_FILENO) >= 0 && ::dup2(errors, STDERR_FILENO) >= 0) {
        closeOtherFiles();
        resetSignals();
        ::execvp(words[0], words);
    }
    ::_exit(PmCommandResult::notStarted);
}

/// The running command. What is left of it at destruction is killed.
class ChildProcess {
  public:
    ChildProcess(const std::vector<char*>& words, const OutputPipe& output, const OutputPipe& errors) {
        const pid_t parent = ::getpid();
        // A handler of the parent's must not run in the child.
        const SignalsBlocked blocked;
        _id = ::fork();
        if (_id == 0) {
            becomeCommand(words.data(), parent, output.writeEnd(), errors.writeEnd());
        }
        if (_id < 0) {
            throwSystemError("Cannot make a process");
        }
        // The child does the same: whoever comes first.
        ::setpgid(_id, _id);
    }

    ~ChildProcess() { kill(); }
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// None while the command runs.
    std::optional<int> status() {
        if (!_status) {
            int status = 0;
            const pid_t ended = ::waitpid(_id, &status, WNOHANG);
            if (ended == _id) {
                _status = WIFSIGNALED(status) ? statusOfSignal + WTERMSIG(status) : WEXITSTATUS(status);
            } else if (ended < 0) {
                _status = PmCommandResult::lost;
            }
        }
        return _status;
    }

    /// Kills the command's process group and waits until the command is gone, unless it has ended.
    void kill() {
        if (status()) {
            return;
        }
        ::kill(-_id, SIGKILL);
        const SteadyClock::time_point end = SteadyClock::now() + killLimit;
        while (!status() && SteadyClock::now() < end) {
            ::poll(nullptr, 0, pollInterval);
        }
    }

  private:
    pid_t _id = -1;
    std::optional<int> _status;
};

/// Takes something of what the command prints, and waits no longer than the interval for it.
void takeSome(OutputPipe& output, OutputPipe& errors) {
    pollfd files[] = {{output.readEnd(), POLLIN, 0}, {errors.readEnd(), POLLIN, 0}};
    ::poll(files, std::size(files), pollInterval);
    output.takeSome();
    errors.takeSome();
}

/// The command's words, as a program receives them.
std::vector<char*> pointersTo(std::vector<std::string>& words) {
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words) {
        pointers.push_back(word.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

}  // namespace

PmCommandResult runCommand(const std::string& name, const std::vector<std::string>& arguments,
                           std::chrono::milliseconds limit) {
    const SteadyClock::time_point end = SteadyClock::now() + limit;
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), name);
    OutputPipe output;
    OutputPipe errors;
    ChildProcess child(pointersTo(words), output, errors);
    output.closeWriteEnd();
    errors.closeWriteEnd();
    while (!child.status() && SteadyClock::now() < end) {
        takeSome(output, errors);
    }
    PmCommandResult result;
    result.status = child.status().value_or(PmCommandResult::timeOver);
    child.kill();
    result.output = output.takeAll();
    result.errors = errors.takeAll();
    return result;
}

}  // namespace VorPm
