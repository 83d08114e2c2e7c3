#include "model/Dn.h"

#include <algorithm>
#include <vector>

#include <Poco/Ascii.h>

namespace VorNode {

namespace {

std::vector<std::string_view> splitAtCommas(std::string_view text) {
    std::vector<std::string_view> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

bool isNameCharacter(unsigned char character) {
    return Poco::Ascii::isAlphaNumeric(character) || character == '_';
}

bool isIdCharacter(unsigned char character) {
    constexpr std::string_view refused = "=\"'<&";
    constexpr unsigned char blank = 0x20;
    constexpr unsigned char del = 0x7f;
    return character >= blank && character != del &&
           refused.find(static_cast<char>(character)) == refused.npos;
}

std::string_view nameWithin(std::string_view part) {
    return part.substr(0, part.find('='));
}

bool isDnPart(std::string_view part) {
    const std::string_view name = nameWithin(part);
    if (!isName(name) || part.size() < name.size() + 2) {
        return false;
    }
    const std::string_view id = part.substr(name.size() + 1);
    return std::all_of(id.begin(), id.end(), isIdCharacter);
}

}  // namespace

bool isName(std::string_view text) {
    return !text.empty() && !Poco::Ascii::isDigit(text.front()) &&
           std::all_of(text.begin(), text.end(), isNameCharacter);
}

bool isClassPath(std::string_view text) {
    const auto parts = splitAtCommas(text);
    return std::all_of(parts.begin(), parts.end(), isName);
}

bool isDn(std::string_view text) {
    const auto parts = splitAtCommas(text);
    return std::all_of(parts.begin(), parts.end(), isDnPart);
}

std::string classPathOf(std::string_view dn) {
    std::string path;
    if (isDn(dn)) {
        for (const std::string_view part : splitAtCommas(dn)) {
            path.append(path.empty() ? "" : ",").append(nameWithin(part));
        }
    }
    return path;
}

std::string lastIdOf(std::string_view dn) {
    return std::string(dn.substr(dn.rfind('=') + 1));
}

bool isAtOrBelow(std::string_view dn, std::string_view base) {
    return base.empty() || (dn.starts_with(base) && (dn.size() == base.size() || dn[base.size()] == ','));
}

}  // namespace VorNode
