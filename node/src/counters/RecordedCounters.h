// The producer that delivers measurement data recorded in a file.
#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "counters/MeasurementProducer.h"

namespace VorNode {

/// Delivers the data that a JSON file records for a job, the same at every cut and with the file's own
/// suspect marks alone, and no classes for a job that the file does not name. The classes that are asked for
/// make no difference. Owned by the application, used by the PM service's scheduler thread. Its jobs do not
/// depend on its life.
///
/// The file holds one value for each measurement, under "int", "float", "ints", "floats" or "nil":
///
///     {"jobs": {"J1": {"classes": [{"name": "C1", "objects": [{"ldn": "Cell=1", "values": [
///         {"type": "a", "int": 5}, {"type": "b", "ints": [1, 2], "suspect": true},
///         {"type": "c", "nil": true}]}]}]}}}
///
/// "name" and "suspect" may be left out. Types and names have to fit into a report: a type is an XML name, a
/// class's name holds no '<', '&' or '"', and no text a control character.
class RecordedCounters final : public MeasurementProducer {
  public:
    /// Reads `file`. Throws `InputError` when it cannot be used, naming the line or the JSON path at fault.
    explicit RecordedCounters(const std::filesystem::path& file);

    std::unique_ptr<JobMeasurement> startJob(const std::string& jobId,
                                             const std::vector<std::string>& classes) override;

    /// Names the recorded jobs that are not among these, and the classes whose values some collectors would
    /// take for those of other types.
    std::vector<std::string> warnings(const std::vector<std::string>& jobIds) const override;

    bool needsVersion2() const override;

  private:
    const std::string _file;
    std::map<std::string, MeasurementData> _jobs;
};

}  // namespace VorNode
