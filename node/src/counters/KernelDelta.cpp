#include "counters/KernelDelta.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <string_view>
#include <type_traits>
#include <unordered_map>

namespace VorNode {

namespace {

/// What a counter counted, as a reading that began at zero.
struct Increase {
    Reading value;
    bool suspect = false;
};

/// Visits the readings of a counter before and after.
struct IncreaseBetween {
    Increase operator()(std::uint64_t before, std::uint64_t now) const {
        if (now < before) {
            return {now, true};
        }
        return {now - before};
    }

    /// Both parts restart together, for the increase of one over the whole count of the other means nothing.
    Increase operator()(const Ratio& before, const Ratio& now) const {
        if (now.part < before.part || now.whole < before.whole) {
            return {now, true};
        }
        return {Ratio{now.part - before.part, now.whole - before.whole, now.scale}};
    }

    /// There was nothing before that `now` compares with.
    template <typename Before, typename Now>
    Increase operator()(const Before&, const Now& now) const {
        return {now, !std::is_same_v<Now, Nil>};
    }
};

/// Visits a reading to deliver it; what is larger than a value can be is delivered as the largest.
struct Delivered {
    MeasuredValue operator()(Nil nil) const { return nil; }

    MeasuredValue operator()(std::uint64_t number) const {
        return static_cast<std::int64_t>(std::min(number, static_cast<std::uint64_t>(largest)));
    }

    MeasuredValue operator()(const Ratio& ratio) const {
        if (ratio.whole == 0) {
            return Nil{};
        }
        const double quotient = static_cast<double>(ratio.part) * static_cast<double>(ratio.scale) /
                                static_cast<double>(ratio.whole);
        return quotient < static_cast<double>(largest) ? std::int64_t{std::llround(quotient)} : largest;
    }

    static constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
};

Measurement measure(const ValueType& type, const Reading& before, const Reading& now) {
    if (type.kind == Kind::Gauge) {
        return {std::string(type.name), std::visit(Delivered{}, now)};
    }
    const Increase increase = std::visit(IncreaseBetween{}, before, now);
    return {std::string(type.name), std::visit(Delivered{}, increase.value), increase.suspect};
}

Reading readingOf(const SampledObject* object, std::string_view type) {
    if (object == nullptr) {
        return Nil{};
    }
    const auto reading = object->readings.find(type);
    return reading == object->readings.end() ? Nil{} : reading->second;
}

bool isLdnCharacter(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') ||
           std::string_view("._:@-").find(c) != std::string_view::npos;
}

std::string ldnOf(const KernelClass& kernelClass, std::string name) {
    std::replace_if(
        name.begin(), name.end(), [](char c) { return !isLdnCharacter(c); }, '_');
    return std::string(kernelClass.name) + "=" + name;
}

}  // namespace

MeasuredClass measureDelta(const KernelClass& kernelClass, const Sample& before, const Sample& now,
                           Coverage coverage) {
    std::unordered_map<std::string_view, const SampledObject*> known;
    for (const SampledObject& object : before) {
        known.emplace(object.name, &object);
    }

    MeasuredClass measured{std::string(kernelClass.name), {}};
    for (const SampledObject& object : now) {
        if (!object.reported) {
            continue;
        }
        const auto previous = known.find(object.name);
        const SampledObject* const old = previous == known.end() ? nullptr : previous->second;
        MeasuredObject& result = measured.objects.emplace_back();
        result.ldn = ldnOf(kernelClass, object.name);
        for (const ValueType& type : kernelClass.types) {
            result.values.push_back(measure(type, readingOf(old, type.name), readingOf(&object, type.name)));
            result.values.back().suspect |= coverage == Coverage::Partial;
        }
    }
    return measured;
}

}  // namespace VorNode
