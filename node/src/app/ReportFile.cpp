#include "app/ReportFile.h"

#include <algorithm>
#include <array>
#include <istream>
#include <regex>
#include <string_view>

#include <Poco/FileStream.h>
#include <Poco/InflatingStream.h>

namespace VorNode {

namespace {

constexpr std::size_t mostBytesRead = std::size_t{64} * 1024 * 1024;

/// Counts a mark in a text that comes in pieces.
class MarkCounter {
  public:
    explicit MarkCounter(std::string_view mark) : _mark(mark) {}

    void take(std::string_view piece) {
        // What began at the end of the piece before may end in this one.
        std::string text = _rest;
        text += piece;
        for (std::size_t found = text.find(_mark); found != std::string::npos;
             found = text.find(_mark, found + _mark.size())) {
            ++_count;
        }
        _rest = text.substr(text.size() - std::min(text.size(), _mark.size() - 1));
    }

    std::size_t count() const { return _count; }

  private:
    const std::string_view _mark;
    std::string _rest;
    std::size_t _count = 0;
};

void readText(std::istream& document, ReportFacts& facts) {
    MarkCounter blocks("<measInfo");
    MarkCounter values("<r p=");
    std::array<char, 65536> buffer{};
    std::size_t read = 0;
    while (document && read < mostBytesRead) {
        document.read(buffer.data(), buffer.size());
        const std::string_view piece(buffer.data(), static_cast<std::size_t>(document.gcount()));
        blocks.take(piece);
        values.take(piece);
        read += piece.size();
    }
    facts.blocks = blocks.count();
    facts.values = values.count();
    facts.isComplete = !document;
}

}  // namespace

bool isReportName(const std::string& fileName) {
    static const std::regex form(R"(A\d{8}\.\d{4}([+-]\d{4})?-\d{4}([+-]\d{4})?_[^/]*\.xml(\.gz)?)");
    return std::regex_match(fileName, form);
}

ReportFacts readReportFacts(const std::filesystem::path& path) {
    ReportFacts facts;
    facts.bytes = std::filesystem::file_size(path);
    Poco::FileInputStream file(path.string(), std::ios::in | std::ios::binary);
    if (path.extension() == ".gz") {
        Poco::InflatingInputStream document(file, Poco::InflatingStreamBuf::STREAM_GZIP);
        readText(document, facts);
    } else {
        readText(file, facts);
    }
    return facts;
}

}  // namespace VorNode
