// Text from elsewhere, as a line of a log or a terminal can take it.
#pragma once

#include <string>
#include <string_view>

namespace VorNode {

/// Control characters are written as \n, \t or \xNN, so that a line never breaks and a terminal obeys none of
/// them; all other bytes stay as they are. Any thread.
std::string plainText(std::string_view text);

}  // namespace VorNode
