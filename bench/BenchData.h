// Random measurement data, the same in every run, in the records of the PM service.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "VorOamSpiPm.h"

namespace VorBench {

/// Of `Mixed` 70 % are integers, 20 % floats, half of them with two decimals, 5 % arrays and 5 % Nil.
/// Integers have any number of digits.
enum class Values { Integers, ShortDecimals, RandomDoubles, Arrays, Nil, Mixed };

/// The objects of a class name their types by the same texts, by copies of them, without 5 % of them, or each
/// in another order.
enum class Names { SameAddress, SameContent, SomeMissing, Shuffled };

struct Shape {
    std::size_t gps = 1;
    std::size_t classes = 1;
    std::size_t objects = 1'000;
    std::size_t types = 100;
    Values values = Values::Mixed;
    Names names = Names::SameAddress;
};

class BenchData {
  public:
    explicit BenchData(const Shape& shape) {
        for (std::size_t i = 0; i < poolSize + longestArray; ++i) {
            _integers.push_back(randomInteger());
            _decimals.push_back(static_cast<double>(random(100'000)) / 100);
        }
        for (std::size_t i = 0; i < shape.types; ++i) {
            _types.push_back(keep("RRC.ConnEstabSucc." + std::to_string(i)));
        }
        // All at once: the records point at each other.
        _classes.reserve(shape.gps * shape.classes);
        _objects.reserve(_classes.capacity() * shape.objects);
        _values.reserve(_objects.capacity() * shape.types);
        for (std::size_t gp = 0; gp < shape.gps; ++gp) {
            for (std::size_t i = 0; i < shape.classes; ++i) {
                addClass("Class" + std::to_string(i), shape);
            }
            _gps.push_back({&_classes[gp * shape.classes], static_cast<std::uint32_t>(shape.classes)});
        }
    }
    BenchData(const BenchData&) = delete;
    BenchData& operator=(const BenchData&) = delete;

    const std::vector<VorOamSpiPmGpData_2>& gps() const { return _gps; }
    std::size_t valueCount() const { return _values.size(); }

  private:
    using Value = VorOamSpiPmAggregatedValue_2;
    using Type = VorOamSpiPmValueType_2;

    void addClass(const std::string& name, const Shape& shape) {
        const auto* objects = _objects.data() + _objects.size();
        for (std::size_t i = 0; i < shape.objects; ++i) {
            addObject("Cell=" + std::to_string(i), shape);
        }
        _classes.push_back({keep(name), objects, static_cast<std::uint32_t>(shape.objects)});
    }

    void addObject(const std::string& ldn, const Shape& shape) {
        const Value* values = _values.data() + _values.size();
        if (shape.names == Names::Shuffled) {
            std::shuffle(_types.begin(), _types.end(), _random);
        }
        for (const char* type : _types) {
            if (shape.names != Names::SomeMissing || random(20) != 0) {
                const char* name = shape.names == Names::SameContent ? keep(type) : type;
                _values.push_back(makeValue(name, shape.values));
            }
        }
        const auto count = static_cast<std::uint32_t>(_values.data() + _values.size() - values);
        _objects.push_back({keep(ldn), values, count});
    }

    Value makeValue(const char* name, Values kind) {
        if (kind == Values::Mixed) {
            static constexpr std::pair<std::uint64_t, Values> shares[] = {{14, Values::Integers},
                                                                          {16, Values::ShortDecimals},
                                                                          {18, Values::RandomDoubles},
                                                                          {19, Values::Arrays},
                                                                          {20, Values::Nil}};
            const std::uint64_t share = random(20);
            kind = std::find_if(shares, std::end(shares), [&](auto& limit) {
                       return share < limit.first;
                   })->second;
        }
        const auto suspect = static_cast<unsigned char>(random(1'000) == 0);
        const auto length = static_cast<std::uint32_t>(1 + random(longestArray));
        const std::size_t at = random(poolSize);
        switch (kind) {
            case Values::ShortDecimals:
                return {name, {.floatValue = _decimals[at]}, Type::Float, 0, suspect};
            case Values::RandomDoubles:
                return {name, {.floatValue = static_cast<double>(_random()) / 1e17}, Type::Float, 0, suspect};
            case Values::Arrays:
                return length % 2 == 0
                           ? Value{name, {.floatValues = &_decimals[at]}, Type::FloatArray, length, suspect}
                           : Value{name, {.intValues = &_integers[at]}, Type::IntegerArray, length, suspect};
            case Values::Nil:
                return {name, {}, Type::Nil, 0, suspect};
            default:
                return {name, {.intValue = randomInteger()}, Type::Integer, 0, suspect};
        }
    }

    const char* keep(std::string text) { return _texts.emplace_back(std::move(text)).c_str(); }
    std::uint64_t random(std::uint64_t limit) { return _random() % limit; }
    std::int64_t randomInteger() { return static_cast<std::int64_t>(_random() >> (1 + random(63))); }

    static constexpr std::size_t longestArray = 8;
    static constexpr std::size_t poolSize = 4'096;

    std::mt19937_64 _random{20'170'305};
    std::deque<std::string> _texts;
    std::vector<const char*> _types;
    /// What arrays are pieces of.
    std::vector<std::int64_t> _integers;
    std::vector<double> _decimals;
    std::vector<Value> _values;
    std::vector<VorOamSpiPmMeasObj_2> _objects;
    std::vector<VorOamSpiPmMeasObjClass_2> _classes;
    std::vector<VorOamSpiPmGpData_2> _gps;
};

}  // namespace VorBench
