#include <fstream>

#include <Poco/DeflatingStream.h>
#include <gtest/gtest.h>

#include "TemporaryRoot.h"
#include "app/ReportFile.h"

namespace VorNode {

TEST(ReportFile, TellsTheSameOfAReportWhetherItIsCompressedOrNot) {
    const VorTest::TemporaryRoot root;
    const auto plain = root.path() / "A.xml", compressed = root.path() / "A.xml.gz";
    const std::string text =
        "<measInfo>\n<r p=\"1\">5</r>\n<r p=\"2\">6</r>\n</measInfo>\n<measInfo>\n</measInfo>\n";
    VorTest::writeFile(plain, text);
    std::ofstream file(compressed, std::ios::binary);
    Poco::DeflatingOutputStream deflating(file, Poco::DeflatingStreamBuf::STREAM_GZIP);
    deflating << text;
    deflating.close();
    file.close();
    for (const auto& path : {plain, compressed}) {
        const ReportFacts facts = readReportFacts(path);
        EXPECT_EQ(facts.blocks, 2U) << path;
        EXPECT_EQ(facts.values, 2U) << path;
        EXPECT_EQ(facts.bytes, std::filesystem::file_size(path));
    }
}

}  // namespace VorNode
