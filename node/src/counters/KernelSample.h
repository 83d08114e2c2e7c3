// What is read of the kernel at one moment, and the description of a class of such readings.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "counters/Measurements.h"

namespace VorNode {

/// A quotient, delivered as scale * part / whole, rounded. As a gauge it is that of part and whole, as a
/// counter that of their increases; without a whole it has no value.
struct Ratio {
    std::uint64_t part = 0;
    std::uint64_t whole = 0;
    std::uint64_t scale = 1;
};

/// The share of `part` in `whole`, in hundredths of a per cent.
constexpr Ratio share(std::uint64_t part, std::uint64_t whole) {
    return {part, whole, 10'000};
}

/// One reading of one measurement type.
using Reading = std::variant<Nil, std::uint64_t, Ratio>;

/// The readings of an object by the types' names.
using Readings = std::map<std::string_view, Reading>;

/// A number that may not have been readable, as a reading.
inline Reading orNil(const std::optional<std::uint64_t>& number) {
    return number ? Reading(*number) : Reading(Nil{});
}

/// The name of the object of a class that has one object only.
inline constexpr const char* onlyObject = "1";

/// One object. A type of its class that has no reading here has no value.
struct SampledObject {
    std::string name;
    Readings readings;
    /// An object that is not reported still counts as present when the next sample is compared.
    bool reported = true;
};

/// All objects of one class at one moment, in report order.
using Sample = std::vector<SampledObject>;

/// A counter is delivered as its increase over the period, a gauge as it reads at the end.
enum class Kind { Counter, Gauge };

/// One measurement type of a class, with what operators are told of it.
struct ValueType {
    std::string_view name;
    Kind kind;
    std::string_view unit;
    std::string_view meaning;
};

/// The folders at which the kernel's proc and sys file systems are found.
struct KernelFolders {
    std::filesystem::path proc;
    std::filesystem::path sys;
};

/// A class of objects that the kernel counts for.
struct KernelClass {
    /// Returns no objects, or objects without readings, when there is nothing to read, and never throws for
    /// what it reads.
    using Reader = Sample (*)(const KernelFolders& folders);

    /// Refuses types that are not in byte-wise order of their names: the reports list them in that order, and
    /// collectors take the values by their place in it.
    consteval KernelClass(std::string_view className, std::string_view objectsMeaning,
                          std::span<const ValueType> classTypes, Reader reader)
        : name(className), objects(objectsMeaning), types(classTypes), read(reader) {
        for (std::size_t i = 1; i < types.size(); ++i) {
            if (types[i].name <= types[i - 1].name) {
                throw "types are not in byte-wise order of their names";
            }
        }
    }

    std::string_view name;
    /// What its objects are, and from which files they are read.
    std::string_view objects;
    std::span<const ValueType> types;
    Reader read;
};

}  // namespace VorNode
