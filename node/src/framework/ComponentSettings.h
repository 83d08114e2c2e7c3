#pragma once

#include <string>
#include <vector>

namespace VorNode {

class Findings;
class XmlFile;

/// The settings that the component reads from its element, "VorPmComp".
std::vector<std::string> componentSettings();

/// Looks at the component's element before the component does. What it would refuse is a fault; what it would
/// replace, or not read at all, is a warning.
void checkComponentSettings(const XmlFile& file, Findings& findings);

}  // namespace VorNode
