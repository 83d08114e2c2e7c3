// The step from two samples of a class to what was measured between them.
#pragma once

#include "counters/KernelSample.h"
#include "counters/MeasurementProducer.h"
#include "counters/Measurements.h"

namespace VorNode {

/// What the objects present in `now` did since `before`: counters by their increase, gauges as read in
/// `now`. A counter that went backwards, or that `before` does not have, delivers its new reading - the count
/// since its reset or appearance - and is suspect; with `Coverage::Partial` every value is. Every object has
/// a value, or Nil, for every type of the class, in the class's order.
MeasuredClass measureDelta(const KernelClass& kernelClass, const Sample& before, const Sample& now,
                           Coverage coverage);

}  // namespace VorNode
