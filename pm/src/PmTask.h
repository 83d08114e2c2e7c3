#pragma once

#include <Poco/AutoPtr.h>

#include "PmGpData.h"

namespace VorPm {

class PmDataCollector;
class PmReportWriter;

/// The work on one GP: fetches its data and has it written. Made on the worker for one GP, run once,
/// destroyed; the GP is not handed back before that.
class PmTask {
  public:
    /// The collector and the writer outlive the task.
    PmTask(Poco::AutoPtr<PmGpData> gp, PmDataCollector& dataCollector, PmReportWriter* writer);

    /// A failure is logged; only what the fetch throws gets out.
    void runTask();

  private:
    Poco::AutoPtr<PmGpData> _gpData;
    PmDataCollector& _dataCollector;
    PmReportWriter* _writer;
};

}  // namespace VorPm
