#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace VorPm {

/// Asks the platform's query command, `vorea`, found on the search path. Stateless: any thread, made for one
/// query; the caller waits until the command has ended, or its time is over.
class VoreaWrapper {
  public:
    /// A command that runs longer than `limit` is killed, and counts as failed with status 137.
    explicit VoreaWrapper(std::chrono::milliseconds limit = std::chrono::seconds(30)) : _limit(limit) {}
    virtual ~VoreaWrapper() = default;

    /// The arguments, a blank between neighbours.
    std::string serialize(const std::vector<std::string>& args);

    /// What the command printed on standard output. Throws `Vor::VorException` when its status is not 0, and
    /// the library's exception when no child process can be made.
    std::string invoke(const std::vector<std::string>& args);

    /// `result` = `invoke(args)`; always true.
    bool readConfiguration(std::vector<std::string> args, std::string& result);

    /// A query for a folder; the path ends in "/". False when nothing of that name exists, with the path set
    /// all the same. Throws like `invoke`, and when the command answers nothing.
    bool readPath(std::vector<std::string> args, std::string& path);
    bool readInternalRoot(std::string& path);
    bool readNobackupPath(std::string& path);

  private:
    std::chrono::milliseconds _limit;
};

}  // namespace VorPm
