#pragma once

#include <functional>
#include <string>

namespace VorTest {

/// A system call that opens, changes or lists a file. The path is that of the file; a rename has the new one,
/// too.
struct SystemCall {
    std::string name;
    std::string path;
    std::string newPath;
};

/// What becomes of a call: 0 lets it go on, an error number makes it fail, `killed` ends the process before
/// it.
using Verdict = int;
constexpr Verdict killed = -1;

/// True where processes can be supervised: the kernel has to hand system calls to another process.
bool canSupervise();

/// Runs the work in a child process of its own and asks `judge`, in this process, about every call of the
/// child and its children. The calls wait meanwhile. Returns the child's wait status: the exit status is 1
/// when the work failed a test.
int supervise(const std::function<void()>& work, const std::function<Verdict(const SystemCall&)>& judge);

/// Runs the work in a child process that is killed after so many microseconds; none: when it ends.
int runInChild(const std::function<void()>& work, long microsecondsToLive = 0);

}  // namespace VorTest
