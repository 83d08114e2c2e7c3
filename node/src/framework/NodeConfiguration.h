#pragma once

#include <string>

#include "services/GpRecords.h"

namespace VorNode {

class Findings;

enum class FileManagement { Absent, Present };

/// The node's own settings: the `VorNode` element of the configuration file, beside those of the components.
struct NodeConfiguration {
    /// `pmServiceVersions`: "1", "2" or "1 2", the default.
    PmVersions pmServiceVersions = PmVersions::OneAndTwo;
    int pmServiceVersionsLine = 0;
    /// `fileManagement`: "absent", the default, or "present".
    FileManagement fileManagement = FileManagement::Absent;
};

/// What is wrong, in the component's element too, is among the findings. A file without a `VorNode` element
/// has the defaults.
NodeConfiguration loadNodeConfiguration(const std::string& path, Findings& findings);

}  // namespace VorNode
