#include "VoreaWrapper.h"

#include <utility>

#include <Poco/String.h>
#include <sys/stat.h>

#include "PmCommand.h"
#include "PmLog.h"
#include "VorException.h"

namespace VorPm {

namespace {

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
    PmCommandResult answer = runCommand("vorea", args, _limit);
    LOG_TRACE("VOR-EA process return value: %d", answer.status);
    if (answer.status == 0) {
        return std::move(answer.output);
    }
    if (answer.status == PmCommandResult::lost) {
        LOG_ERROR("The status of vorea is lost. The process must not ignore SIGCHLD, nor wait for any child");
    }
    if (answer.errors.find("unknown command") != std::string::npos) {
        LOG_WARNING("%s", answer.errors.c_str());
    } else if (!answer.errors.empty()) {
        LOG_ERROR("%s", answer.errors.c_str());
    }
    LOG_ERROR("Failed to invoke vorea Retval: %d, Result: %s", answer.status, answer.output.c_str());
    throw Vor::VorException("Failed to invoke: vorea %s, retval %d", serialize(args).c_str(), answer.status);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the arguments of a query are the query's own.
bool VoreaWrapper::readConfiguration(std::vector<std::string> args, std::string& result) {
    result = invoke(args);
    return true;
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the arguments of a query are the query's own.
bool VoreaWrapper::readPath(std::vector<std::string> args, std::string& path) {
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
