#include "PmTask.h"

#include <utility>

#include "PmDataCollector.h"
#include "PmLog.h"
#include "PmReportWriter.h"

namespace VorPm {

PmTask::PmTask(Poco::AutoPtr<PmGpData> gp, PmDataCollector& dataCollector, PmReportWriter* writer)
    : _gpData(std::move(gp)), _dataCollector(dataCollector), _writer(writer) {}

void PmTask::runTask() {
    LOG_TRACE(" >> ");
    const auto gpId = static_cast<unsigned long long>(_gpData->_gpId);
    const int result = _dataCollector.populatePmSpi(_gpData);
    if (result != VorReturnOk) {
        LOG_ERROR("Error populating GpData, retval %d, gpid %llu", result, gpId);
        return;
    }
    try {
        if (!_writer->writeGpData(*_gpData)) {
            LOG_ERROR("Failed writing report with id %llu", gpId);
        }
    } catch (...) {
        LOG_ERROR("Caught unhandled exception while trying to write PM report id %llu", gpId);
    }
    LOG_TRACE(" << ");
}

}  // namespace VorPm
