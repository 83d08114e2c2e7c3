#pragma once

namespace VorPm {

/// True when the class of the object `dn` has an attribute of that name. Any thread. Throws
/// `Vor::VorException` when the model repository fails.
bool attributeExists(const char* dn, const char* attrName);

}  // namespace VorPm
