#include "VoreaWrapper.h"

#include <utility>

#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <Poco/Runnable.h>
#include <Poco/StreamCopier.h>
#include <Poco/String.h>
#include <Poco/Thread.h>
#include <sys/stat.h>

#include "PmLog.h"
#include "VorException.h"

namespace VorPm {

namespace {

constexpr std::size_t bufferSize = 8192;

std::string readAll(Poco::Pipe& pipe) {
    std::string text;
    Poco::PipeInputStream stream(pipe);
    Poco::StreamCopier::copyToString(stream, text, bufferSize);
    return text;
}

/// Reads a pipe to its end on a thread of its own, so that the child never blocks on a full pipe.
class PipeReader : public Poco::Runnable {
  public:
    explicit PipeReader(Poco::Pipe& pipe) : _pipe(pipe) { _thread.start(*this); }
    ~PipeReader() override { join(); }
    PipeReader(const PipeReader&) = delete;
    PipeReader& operator=(const PipeReader&) = delete;

    void run() override { _text = readAll(_pipe); }

    const std::string& text() {
        join();
        return _text;
    }

  private:
    void join() {
        if (!std::exchange(_joined, true)) {
            _thread.join();
        }
    }

    Poco::Pipe& _pipe;
    std::string _text;
    bool _joined = false;
    Poco::Thread _thread;
};

/// Tested with its trailing slash, so that only a folder exists.
bool pathExists(const std::string& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0;
}

}  // namespace

std::string VoreaWrapper::serialize(const std::vector<std::string>& args) {
    return Poco::cat(std::string(" "), args.begin(), args.end());
}

std::string VoreaWrapper::invoke(const std::vector<std::string>& args) {
    LOG_TRACE(" >> Invoking: vorea %s", serialize(args).c_str());
    Poco::Pipe outPipe;
    Poco::Pipe errorPipe;
    const Poco::ProcessHandle child = Poco::Process::launch("vorea", args, nullptr, &outPipe, &errorPipe);
    PipeReader errorReader(errorPipe);
    std::string result = readAll(outPipe);
    const std::string reason = errorReader.text();
    const int status = child.wait();
    LOG_TRACE("VOR-EA process return value: %d", status);
    if (status == 0) {
        return result;
    }
    if (reason.find("unknown command") != std::string::npos) {
        LOG_WARNING("%s", reason.c_str());
    } else if (!reason.empty()) {
        LOG_ERROR("%s", reason.c_str());
    }
    LOG_ERROR("Failed to invoke vorea Retval: %d, Result: %s", status, result.c_str());
    throw Vor::VorException("Failed to invoke: vorea %s, retval %d", serialize(args).c_str(), status);
}

bool VoreaWrapper::readConfiguration(const std::vector<std::string>& args, std::string& result) {
    result = invoke(args);
    return true;
}

bool VoreaWrapper::readPath(const std::vector<std::string>& args, std::string& path) {
    LOG_TRACE(" >> ");
    bool found = readConfiguration(args, path);
    if (path.ends_with('\n')) {
        path.pop_back();
    }
    if (path.empty()) {
        throw Vor::VorException("Empty answer from: vorea %s", serialize(args).c_str());
    }
    if (!path.ends_with('/')) {
        path += '/';
    }
    if (!pathExists(path)) {
        LOG_ERROR("path: %s does not exist", path.c_str());
        found = false;
    }
    LOG_TRACE(" << readPath: %s", path.c_str());
    return found;
}

bool VoreaWrapper::readInternalRoot(std::string& path) {
    LOG_TRACE(" >> ");
    const bool found = readPath({"file-system", "internalRoot"}, path);
    LOG_TRACE(" << internalRoot: %s", path.c_str());
    return found;
}

bool VoreaWrapper::readNobackupPath(std::string& path) {
    LOG_TRACE(" >> ");
    const bool found = readPath({"pso", "no-backup"}, path);
    LOG_TRACE(" << no-backup: %s", path.c_str());
    return found;
}

}  // namespace VorPm
