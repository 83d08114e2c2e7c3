// The program itself: arguments, faults in its input, signals, exit status.
#include <csignal>
#include <optional>
#include <string>
#include <vector>

#include <Poco/Pipe.h>
#include <Poco/PipeStream.h>
#include <Poco/Process.h>
#include <Poco/StreamCopier.h>
#include <gtest/gtest.h>

#include "TemporaryRoot.h"
#include "TestNode.h"

namespace {

using VorTest::TemporaryRoot;
using VorTest::writeFile;
using Arguments = std::vector<std::string>;

/// A running `vor-node`; what it writes to both streams is read together.
class Program {
  public:
    explicit Program(const Arguments& arguments)
        : _handle(Poco::Process::launch(path(), arguments, nullptr, &_pipe, &_pipe)), _output(_pipe) {}

    /// Reads lines until one holds the fragment.
    bool waitForLine(const std::string& fragment) {
        for (std::string line; std::getline(_output, line);) {
            if (line.find(fragment) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    void signal(int number) { ::kill(_handle.id(), number); }

    std::string restOfOutput() {
        std::string text;
        Poco::StreamCopier::copyToString(_output, text);
        return text;
    }
    int exitStatus() { return _handle.wait(); }

  private:
    static std::string path() {
        return (std::filesystem::read_symlink("/proc/self/exe").parent_path() / "vor-node").string();
    }

    Poco::Pipe _pipe;
    Poco::ProcessHandle _handle;
    Poco::PipeInputStream _output;
};

TEST(NodeProgram, RefusesInputThatItCannotUse) {
    const TemporaryRoot root;
    const std::string folder = root.path().string();
    writeFile(folder + "/broken.xml", "<Model>\n<Class></Model>");
    writeFile(folder + "/two.xml", "<C><VorPmComp/><VorPmComp/></C>");
    writeFile(folder + "/version.xml",
              "<C>\n<VorPmComp/>\n<VorNode><pmServiceVersions>3</pmServiceVersions></VorNode></C>");
    writeFile(folder + "/broken.json", "{\"jobs\":\n}");
    writeFile(folder + "/file", "");
    struct Row {
        Arguments arguments;
        const char* message;
    };
    const std::vector<Row> rows{
        {{}, "subcommand"},
        {{"run", "--bogus"}, "--bogus"},
        {{"run", "--counters", "guess"}, "neither kernel nor recorded:FILE.json"},
        {{"run", "--log-level", "9"}, "--log-level"},
        {{"run", "--model", folder + "/broken.xml"}, "/broken.xml:2: "},
        {{"run", "--model", folder + "/absent.xml"}, "/absent.xml: "},
        {{"run", "--config", folder + "/absent.xml"}, "/absent.xml: "},
        {{"run", "--config", folder + "/two.xml"}, "refused this configuration"},
        {{"run", "--config", folder + "/version.xml"},
         "/version.xml:3: pmServiceVersions is '3'; write one of '1' '2' '1 2'"},
        {{"run", "--counters", "recorded:" + folder + "/broken.json"}, "/broken.json:2"},
        {{"run", "--library", folder + "/file"}, "--library"},
        {{"run", "--root", folder + "/file"}, "--root"},
    };
    for (const Row& row : rows) {
        Arguments arguments = row.arguments;
        if (!arguments.empty() && arguments[1] != "--root") {
            arguments.insert(arguments.end(), {"--root", folder + "/storage"});
        }
        Program program(arguments);
        const std::string output = program.restOfOutput();
        EXPECT_EQ(program.exitStatus(), 2) << output;
        EXPECT_NE(output.find(row.message), std::string::npos) << row.message << " not in: " << output;
    }
}

TEST(NodeProgram, EndsWellWhenItIsToldTo) {
    for (const int signal : {SIGINT, SIGTERM}) {
        const TemporaryRoot root;
        Program program({"run", "--root", root.path().string()});
        ASSERT_TRUE(program.waitForLine("job Processor: ")) << "shows its jobs";
        ASSERT_TRUE(program.waitForLine("  supportedRopPeriods: 3, 4, 5"));
        Program second({"run", "--root", root.path().string()});
        EXPECT_NE(second.restOfOutput().find("another node runs on this root"), std::string::npos);
        EXPECT_EQ(second.exitStatus(), 2);
        program.signal(signal);
        EXPECT_NE(program.restOfOutput().find("node stopped: "), std::string::npos);
        EXPECT_EQ(program.exitStatus(), 0);
    }
}

TEST(NodeProgram, ShowsItsCapabilitiesAlone) {
    const TemporaryRoot root;
    Program program({"run", "--capabilities", "--root", root.path().string()});
    const std::string output = program.restOfOutput();
    EXPECT_NE(output.find("  fileGroup: no value\n"), std::string::npos) << output;
    EXPECT_EQ(output.find("job "), std::string::npos) << output;
    EXPECT_EQ(program.exitStatus(), 0);
}

}  // namespace
