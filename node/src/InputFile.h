// Reading of the files that a user gives.
#pragma once

#include <string>

namespace VorNode {

/// The bytes of the file. Throws `InputError` when it cannot be read, is not a regular file, or has more than
/// 64 MiB; `kind` tells what it should be, such as "an XML file".
std::string readInputFile(const std::string& path, const std::string& kind);

}  // namespace VorNode
