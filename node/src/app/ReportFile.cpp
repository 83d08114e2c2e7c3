#include "app/ReportFile.h"

#include <istream>
#include <string>

#include <Poco/FileStream.h>
#include <Poco/InflatingStream.h>

namespace VorNode {

namespace {

void countElements(std::istream& document, ReportFacts& facts) {
    for (std::string line; std::getline(document, line);) {
        if (line.find("<measInfo") != std::string::npos) {
            ++facts.blocks;
        } else if (line.find("<r p=") != std::string::npos) {
            ++facts.values;
        }
    }
}

}  // namespace

ReportFacts readReportFacts(const std::filesystem::path& path) {
    ReportFacts facts;
    facts.bytes = std::filesystem::file_size(path);
    Poco::FileInputStream file(path.string(), std::ios::in | std::ios::binary);
    if (path.extension() == ".gz") {
        Poco::InflatingInputStream document(file, Poco::InflatingStreamBuf::STREAM_GZIP);
        countElements(document, facts);
    } else {
        countElements(file, facts);
    }
    return facts;
}

}  // namespace VorNode
