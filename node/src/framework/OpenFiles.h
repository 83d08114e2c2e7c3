#pragma once

namespace VorNode {

/// Raises the number of files that the process may open as far as it may, up to 65,536: each open report
/// takes one. A larger limit stays.
void raiseOpenFilesLimit();

}  // namespace VorNode
