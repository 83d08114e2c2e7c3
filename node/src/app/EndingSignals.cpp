#include "app/EndingSignals.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <system_error>

#include <sys/signalfd.h>
#include <unistd.h>

#include "app/Notice.h"

namespace VorNode {

namespace {

bool isIgnored(int signal) {
    struct sigaction current {};
    ::sigaction(signal, nullptr, &current);
    return current.sa_handler == SIG_IGN;
}

}  // namespace

EndingSignals::EndingSignals() {
    sigset_t signals;
    ::sigemptyset(&signals);
    ::sigaddset(&signals, SIGINT);
    ::sigaddset(&signals, SIGTERM);
    if (!isIgnored(SIGHUP)) {
        ::sigaddset(&signals, SIGHUP);
    }
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    _arrivals = Descriptor(::signalfd(-1, &signals, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!_arrivals.isOpen()) {
        throw std::system_error(errno, std::generic_category(), "no descriptor for signals");
    }
}

bool EndingSignals::haveArrived() const {
    return canBeRead(descriptor());
}

std::string EndingSignals::take() const {
    signalfd_siginfo signal{};
    if (::read(descriptor(), &signal, sizeof signal) != sizeof signal) {
        return "a signal";
    }
    return std::string("SIG") + ::sigabbrev_np(static_cast<int>(signal.ssi_signo));
}

void setOtherSignals() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
}

}  // namespace VorNode
