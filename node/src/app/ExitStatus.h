#pragma once

namespace VorNode {

enum ExitStatus { allPublished = 0, failedRunning = 1, unusableInput = 2 };

}  // namespace VorNode
