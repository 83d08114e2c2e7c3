#include "PlainText.h"

#include <cstddef>

#include <Poco/NumberFormatter.h>

namespace VorNode {

namespace {

bool isControl(unsigned char byte) {
    return byte < 0x20 || byte == 0x7f;
}

/// U+0080 to U+009F in UTF-8; some terminals take them for the beginning of a command.
bool isLongControl(unsigned char first, unsigned char second) {
    return first == 0xc2 && second >= 0x80 && second < 0xa0;
}

void appendEscaped(unsigned char byte, std::string& plain) {
    if (byte == '\n') {
        plain += "\\n";
    } else if (byte == '\t') {
        plain += "\\t";
    } else {
        plain += "\\x" + Poco::NumberFormatter::formatHex(static_cast<unsigned>(byte), 2);
    }
}

}  // namespace

std::string plainText(std::string_view text) {
    std::string plain;
    for (std::size_t position = 0; position < text.size(); ++position) {
        const auto byte = static_cast<unsigned char>(text[position]);
        const auto next = static_cast<unsigned char>(position + 1 < text.size() ? text[position + 1] : '\0');
        if (isLongControl(byte, next)) {
            appendEscaped(byte, plain);
            appendEscaped(next, plain);
            ++position;
        } else if (isControl(byte)) {
            appendEscaped(byte, plain);
        } else {
            plain += text[position];
        }
    }
    return plain;
}

}  // namespace VorNode
