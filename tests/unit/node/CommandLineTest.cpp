#include <cstdlib>

#include <gmock/gmock.h>

#include "InputError.h"
#include "app/CommandLine.h"

namespace VorNode {
namespace {

RunOptions parse(const std::vector<const char*>& options) {
    std::vector<const char*> arguments{"vor-node", "run"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return parseCommandLine(static_cast<int>(arguments.size()), arguments.data());
}

void setOrClear(const char* name, const char* value) {
    value != nullptr ? ::setenv(name, value, 1) : ::unsetenv(name);
}

}  // namespace

TEST(CommandLine, KeepsReportsInTheStateFolderOfTheUser) {
    const struct {
        const char *state, *home, *root;
    } rows[] = {{"/state", "/home/u", "/state/vor-node"},
                {"state", "/home/u", "/home/u/.local/state/vor-node"},
                {nullptr, "/home/u", "/home/u/.local/state/vor-node"},
                {nullptr, "home", "/var/lib/vor-node"},
                {nullptr, nullptr, "/var/lib/vor-node"}};
    for (const auto& row : rows) {
        setOrClear("XDG_STATE_HOME", row.state);
        setOrClear("HOME", row.home);
        EXPECT_EQ(parse({}).node.root, row.root);
    }
}

TEST(CommandLine, TakesTheLastOfAnOption) {
    const RunOptions options = parse({"--log-level", "4", "--counters", "kernel", "--log-level", "3"});
    EXPECT_EQ(options.node.logLevel, 3);
    EXPECT_EQ(parse({"--log-level", "8"}).node.logLevel, 8);
}

TEST(CommandLine, RefusesValuesBeyondTheirRange) {
    for (const auto& options : std::vector<std::vector<const char*>>{{"--log-level", "2"},
                                                                     {"--log-level", "9"},
                                                                     {"--counters", "recorded:"},
                                                                     {"--reports", "-1"},
                                                                     {"--reports", ""}})
        EXPECT_THROW(parse(options), InputError) << options[0] << ' ' << options[1];
}

}  // namespace VorNode
