// The model's values as the managed-object interface passes them. Any thread.
#pragma once

#include <vector>

#include "VorOamSpiManagedObject.h"
#include "model/Model.h"

namespace VorNode {

/// A copy of the values in a container that a client lends for the attribute. Throws `Refusal` with -1 when
/// they are malformed or the attribute does not accept them.
AttributeValues copyValues(const AttributeDefinition& attribute,
                           const VorMoAttributeValueContainer_3& container);

/// The values of an attribute of that type.
struct TypedValues {
    AttributeType type;
    AttributeValues values;
};

/// The values in a container that the receiver owns and gives back by the result's release function; a null
/// container when there are none.
VorMoAttributeValueResult_3 handOut(TypedValues attribute);

/// Those of several attributes; an empty container where there are none.
VorMoAttributeValuesResult_3 handOut(std::vector<TypedValues> attributes);

}  // namespace VorNode
