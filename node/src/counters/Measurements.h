// Measurement data as the node's producers deliver it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace VorNode {

/// The producer has no value for this measurement type.
struct Nil {
    bool operator==(const Nil&) const = default;
};

using MeasuredValue = std::variant<std::int64_t, double, std::vector<std::int64_t>, std::vector<double>, Nil>;

/// One value of one measurement type. The type is a valid XML name.
struct Measurement {
    std::string type;
    MeasuredValue value;
    bool suspect = false;

    bool operator==(const Measurement&) const = default;
};

/// One measured object instance and its values, in report order.
struct MeasuredObject {
    std::string ldn;
    std::vector<Measurement> values;

    bool operator==(const MeasuredObject&) const = default;
};

/// One measurement object class; a class without name has no measInfoId in the report.
struct MeasuredClass {
    std::optional<std::string> name;
    std::vector<MeasuredObject> objects;

    bool operator==(const MeasuredClass&) const = default;
};

/// Everything measured for one job in one granularity period.
using MeasurementData = std::vector<MeasuredClass>;

}  // namespace VorNode
