// How collectors that do not go by the numbers of types read a class.
#pragma once

#include "counters/Measurements.h"

namespace VorNode {

/// True when a collector that takes a type by its place in the report's list, or a value by its place in its
/// object, gives every value its own type: the types come in byte-wise order of their names, and every object
/// that has values has all of them, once.
bool readsTheSameByPlace(const MeasuredClass& measured);

}  // namespace VorNode
