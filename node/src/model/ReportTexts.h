// What reports and their names can carry of a model's texts. Pure.
#pragma once

#include <optional>
#include <string>

#include "model/Model.h"

namespace VorNode {

class Findings;

/// What is wrong with an attribute's values, when a report or its name carries them as they are and they hold
/// what it cannot; none else. The fault follows the attribute's name.
std::optional<std::string> faultInReport(const std::string& classPath, const std::string& attribute,
                                         const AttributeValues& values);

/// Refuses elements and jobs whose report would have a name longer than a file's name can be.
void checkReportNames(const Model& model, Findings& findings);

}  // namespace VorNode
