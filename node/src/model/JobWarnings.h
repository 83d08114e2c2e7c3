#pragma once

#include <vector>

#include "model/MeasurementJob.h"

namespace VorNode {

class Findings;
class Model;

/// Warns of jobs whose reports are not what people expect: with a period that the model does not announce,
/// that collectors cannot tell apart, or that comes to the name of another job's reports.
void warnOfJobs(const Model& model, const std::vector<MeasurementJob>& jobs, Findings& findings);

/// Warns of attributes that the component cannot write as the model declares them, and so refuses to start.
void warnOfCapabilities(const Model& model, Findings& findings);

}  // namespace VorNode
