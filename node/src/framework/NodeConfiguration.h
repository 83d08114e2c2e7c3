#pragma once

#include <string>

#include "services/GpRecords.h"

namespace VorNode {

enum class FileManagement { Absent, Present };

/// The node's own settings: the `VorNode` element of the configuration file, beside those of the components.
struct NodeConfiguration {
    /// `pmServiceVersions`: "1", "2" or "1 2", the default.
    PmVersions pmServiceVersions = PmVersions::OneAndTwo;
    /// `fileManagement`: "absent", the default, or "present".
    FileManagement fileManagement = FileManagement::Absent;
};

/// Throws `InputError` naming file, line, fault and remedy. A file without a `VorNode` element has the
/// defaults.
NodeConfiguration loadNodeConfiguration(const std::string& path);

}  // namespace VorNode
