// The data that tests compare with, as it lies in tests/golden.
#pragma once

#include <string>
#include <vector>

#include <Poco/String.h>
#include <Poco/StringTokenizer.h>

#include "TemporaryRoot.h"

namespace VorTest {

using Texts = std::vector<std::string>;

/// The bytes of a golden file.
inline std::string golden(const std::string& name) {
    return readFile(std::string(VOR_GOLDEN_FOLDER) + "/" + name);
}

/// The rows of a golden table: cells between "|", without lines that begin with "#".
inline std::vector<Texts> goldenTable(const std::string& name) {
    std::vector<Texts> rows;
    for (const std::string& line : Poco::StringTokenizer(golden(name), "\n")) {
        const Poco::StringTokenizer cells(line, "|");
        if (cells.count() > 1 && !line.starts_with('#'))
            rows.emplace_back(cells.begin(), cells.end());
    }
    return rows;
}

/// A cell in which \n stands for a line feed.
inline std::string withLineFeeds(const std::string& cell) {
    return Poco::replace(cell, std::string("\\n"), std::string("\n"));
}

}  // namespace VorTest
