#include "counters/KernelText.h"

#include <algorithm>
#include <charconv>
#include <fstream>
#include <system_error>

namespace VorNode {

namespace {

constexpr std::string_view blanks = " \t";

}  // namespace

std::vector<std::string> readLines(const std::filesystem::path& file) {
    std::ifstream stream(file);
    std::vector<std::string> lines;
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

Fields splitFields(std::string_view line) {
    Fields fields;
    std::size_t begin = line.find_first_not_of(blanks);
    while (begin != std::string_view::npos) {
        const std::size_t end = std::min(line.find_first_of(blanks, begin), line.size());
        fields.push_back(line.substr(begin, end - begin));
        begin = line.find_first_not_of(blanks, end);
    }
    return fields;
}

NamedLine splitNamedLine(std::string_view line) {
    const std::size_t colon = line.rfind(':');
    if (colon == std::string_view::npos) {
        return {};
    }
    const Fields name = splitFields(line.substr(0, colon));
    if (name.size() != 1) {
        return {};
    }
    return {name.front(), splitFields(line.substr(colon + 1))};
}

std::pair<std::string_view, std::string_view> splitPair(std::string_view text, char separator) {
    const std::size_t at = text.find(separator);
    if (at == std::string_view::npos) {
        return {};
    }
    return {text.substr(0, at), text.substr(at + 1)};
}

std::optional<std::uint64_t> parseCount(std::string_view text) {
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || rest != end) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::uint64_t> parseHundredths(std::string_view text) {
    const auto [whole, hundredths] = splitPair(text, '.');
    if (whole.empty() || hundredths.size() != 2) {
        return std::nullopt;
    }
    return parseCount(std::string(whole).append(hundredths));
}

std::vector<std::uint64_t> parseCounts(std::span<const std::string_view> fields) {
    std::vector<std::uint64_t> counts;
    for (const std::string_view field : fields) {
        const auto count = parseCount(field);
        if (!count) {
            return {};
        }
        counts.push_back(*count);
    }
    return counts;
}

}  // namespace VorNode
