#include <fstream>

#include <gmock/gmock.h>

#include "InputError.h"
#include "TemporaryRoot.h"
#include "framework/InstallPaths.h"
#include "framework/NodeRoot.h"
#include "framework/QueryCommand.h"

namespace VorNode {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::ThrowsMessage;

TEST(NodeRoot, AsksItsOwnCommandBeforeThatOfAnotherNode) {
    const VorTest::TemporaryRoot storage;
    storage.answerWith("echo /");
    const NodeRoot root(storage.path());

    root.serveQueries(InstallPaths::ofThisProgram().commands);

    EXPECT_EQ(answerOf({"vorea", "pso", "no-backup"}, std::chrono::seconds(30)), storage.noBackup());
}

TEST(NodeRoot, RefusesACommandThatAnswersForAnotherNodeOrNotAtAll) {
    const VorTest::TemporaryRoot storage;
    const NodeRoot root(storage.path());
    const struct {
        std::string script;
        const char* fault;
    } rows[]{{"echo /", "answers '/' instead of "},
             {"echo " + storage.internalRoot().string() + " >&2", "answers ''"},
             {"exit 3", "ends with status 3"},
             {"kill -9 $$", "is ended by signal 9"}};
    for (const auto& row : rows) {
        storage.answerWith(row.script);
        EXPECT_THAT([&] { root.serveQueries(storage.path() / "nothing"); },
                    ThrowsMessage<InputError>(HasSubstr(row.fault)));
    }
}

TEST(QueryCommand, IsEndedWhenItTakesTooLong) {
    EXPECT_THAT(
        [] {
            answerOf({"sleep", "1000"}, std::chrono::milliseconds(50));
        },
        ThrowsMessage<std::runtime_error>("does not end"));
}

TEST(QueryCommand, IsNotWaitedForWhenItLeavesSomethingInTheBackground) {
    EXPECT_EQ(answerOf({"sh", "-c", "sleep 20 2>/dev/null & echo ready"}, std::chrono::seconds(10)), "ready");
}

TEST(NodeRoot, IsLockedAlsoWhenItsLockFileIsRemoved) {
    const VorTest::TemporaryRoot storage;
    const NodeRoot root(storage.path());

    fs::remove(storage.path() / ".lock");

    EXPECT_THAT([&] { NodeRoot second(storage.path()); },
                ThrowsMessage<InputError>(HasSubstr("another node")));
}

TEST(NodeRoot, RefusesStorageThatCannotWork) {
    const VorTest::TemporaryRoot storage;
    const auto refused = [&](const fs::path& folder, const char* fault) {
        EXPECT_THAT([&] { NodeRoot root(storage.path()); },
                    ThrowsMessage<InputError>(HasSubstr(folder.string() + ": " + fault)));
        fs::remove(folder);
    };

    std::ofstream(storage.reportFolder()).close();
    refused(storage.reportFolder(), "is not a folder");
    std::ofstream(storage.temporaryFolder()).close();
    refused(storage.temporaryFolder(), "is not a folder");
    fs::create_symlink("/", storage.temporaryFolder());
    refused(storage.temporaryFolder(), "is a link");
    fs::create_symlink("/proc", storage.reportFolder());
    refused(storage.reportFolder(), "takes no file");
    fs::remove(storage.internalRoot());
    fs::create_symlink("/proc", storage.internalRoot());
    refused(storage.internalRoot(), "cannot be written");
}

TEST(NodeRoot, LeavesNothingBehindInItsStorage) {
    const VorTest::TemporaryRoot storage;
    storage.createReportFolders();

    const NodeRoot root(storage.path());

    EXPECT_EQ(storage.filesIn(storage.reportFolder()), std::vector<std::string>{});
    EXPECT_EQ(storage.filesIn(storage.temporaryFolder()), std::vector<std::string>{});
}

}  // namespace VorNode
