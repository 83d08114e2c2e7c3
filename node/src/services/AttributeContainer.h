// The model's values as the managed-object interface passes them. Any thread.
#pragma once

#include "VorOamSpiManagedObject.h"
#include "model/Model.h"

namespace VorNode {

/// A copy of the values in a container that a client lends for the attribute. Throws `Refusal` with -1 when
/// they are malformed or the attribute does not accept them.
AttributeValues copyValues(const AttributeDefinition& attribute,
                           const VorMoAttributeValueContainer_3& container);

/// The values in a container that the receiver owns and gives back by the result's release function; a null
/// container when there are none.
VorMoAttributeValueResult_3 handOut(AttributeType type, AttributeValues values);

}  // namespace VorNode
