// What is read of the kernel at one moment, and the description of a class of such readings.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "counters/Measurements.h"

namespace VorNode {

/// A quotient. As a gauge it is part / whole, as a counter the increase of part / the increase of whole;
/// without a whole it has no value.
struct Ratio {
    std::uint64_t part = 0;
    std::uint64_t whole = 0;
};

/// The share of `part` in `whole`, in percent.
constexpr Ratio percentage(std::uint64_t part, std::uint64_t whole) {
    return {100 * part, whole};
}

/// One reading of one measurement type. A counter is a number, an array of numbers or a ratio.
using Reading = std::variant<Nil, std::uint64_t, double, std::vector<std::uint64_t>, Ratio>;

/// A number that may not have been readable, as a reading.
template <typename Number>
Reading orNil(const std::optional<Number>& number) {
    return number ? Reading(*number) : Reading(Nil{});
}

/// The name of the object of a class that has one object only.
inline constexpr const char* onlyObject = "1";

/// The readings of one object, one for each type of its class and in their order.
struct SampledObject {
    std::string name;
    std::vector<Reading> readings;
    /// An object that is not reported still counts as present when the next sample is compared.
    bool reported = true;
};

/// All objects of one class at one moment, in report order.
using Sample = std::vector<SampledObject>;

/// A counter is delivered as its increase over the period, a gauge as it reads at the end.
enum class Kind { Counter, Gauge };

/// One measurement type of a class.
struct ValueType {
    std::string_view name;
    Kind kind;
};

/// The folders at which the kernel's proc and sys file systems are found.
struct KernelFolders {
    std::filesystem::path proc;
    std::filesystem::path sys;
};

/// A class of objects that the kernel counts for: its name, its types and the reader of its samples.
/// The reader returns no objects, or objects without values, when there is nothing to read, and never throws
/// for what it reads.
struct KernelClass {
    std::string_view name;
    std::span<const ValueType> types;
    Sample (*read)(const KernelFolders& folders);
};

}  // namespace VorNode
