// Parsing of the texts in which the kernel shows its counters. Nothing here depends on the locale, and
// text of another form than expected is told by an empty result, never by an exception.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace VorNode {

/// The words of a line; they point into the line.
using Fields = std::vector<std::string_view>;

/// A line of the form "name: field field ...".
struct NamedLine {
    std::string_view name;
    Fields fields;
};

/// The lines of a file; none when it cannot be read.
std::vector<std::string> readLines(const std::filesystem::path& file);

/// The words of `line`, which blanks separate.
Fields splitFields(std::string_view line);

/// Splits `line` at its last colon, which needs no blank beside it. No name and no fields without a colon.
NamedLine splitNamedLine(std::string_view line);

/// Splits `text` at `separator`; both parts are empty without one.
std::pair<std::string_view, std::string_view> splitPair(std::string_view text, char separator);

/// The unsigned number that makes up the whole of `text`.
std::optional<std::uint64_t> parseCount(std::string_view text);

/// The hundredths in a number such as "12.05", which makes up the whole of `text`.
std::optional<std::uint64_t> parseHundredths(std::string_view text);

/// The unsigned numbers that `fields` hold; empty when one of them is none.
std::vector<std::uint64_t> parseCounts(std::span<const std::string_view> fields);

}  // namespace VorNode
