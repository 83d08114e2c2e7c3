#pragma once

#include <string>

#include "model/Model.h"

namespace VorNode {

/// An attribute's values for people, with commas between them; "no value" when there is none.
std::string attributeText(const AttributeValues& values);

}  // namespace VorNode
