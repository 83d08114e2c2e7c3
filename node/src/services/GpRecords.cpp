#include "services/GpRecords.h"

#include <utility>

namespace VorNode {

namespace {

template <class ContainerT>
std::uint32_t countOf(const ContainerT& container) {
    return static_cast<std::uint32_t>(container.size());
}

void addValue(const Measurement& measured, std::vector<VorOamSpiPmAggregatedValue_1>& values) {
    VorOamSpiPmAggregatedValue_1 value{};
    value.measType = measured.type.c_str();
    value.isSuspect = measured.suspect;
    if (const auto* integer = std::get_if<std::int64_t>(&measured.value)) {
        value.value.intValue = *integer;
    } else if (const auto* real = std::get_if<double>(&measured.value)) {
        value.value.floatValue = *real;
        value.isFloat = 1;
    } else {
        return;
    }
    values.push_back(value);
}

/// Sets the value and its type, one function for each kind.
struct ValueSetter {
    VorOamSpiPmAggregatedValue_2& target;

    void operator()(std::int64_t integer) const {
        target.value.intValue = integer;
        target.valueType = VorOamSpiPmValueType_2::Integer;
    }
    void operator()(double real) const {
        target.value.floatValue = real;
        target.valueType = VorOamSpiPmValueType_2::Float;
    }
    void operator()(const std::vector<std::int64_t>& integers) const {
        target.value.intValues = integers.data();
        target.arraySize = countOf(integers);
        target.valueType = VorOamSpiPmValueType_2::IntegerArray;
    }
    void operator()(const std::vector<double>& reals) const {
        target.value.floatValues = reals.data();
        target.arraySize = countOf(reals);
        target.valueType = VorOamSpiPmValueType_2::FloatArray;
    }
    void operator()(Nil) const { target.valueType = VorOamSpiPmValueType_2::Nil; }
};

void addValue(const Measurement& measured, std::vector<VorOamSpiPmAggregatedValue_2>& values) {
    VorOamSpiPmAggregatedValue_2 value{};
    value.measType = measured.type.c_str();
    value.isSuspect = measured.suspect;
    std::visit(ValueSetter{value}, measured.value);
    values.push_back(value);
}

}  // namespace

template <class TypesT>
GpTree<TypesT>::GpTree(const MeasurementData& data) {
    for (const MeasuredClass& measured : data) {
        _classes.push_back(buildClass(measured));
    }
    _root = {_classes.data(), countOf(_classes)};
}

template <class TypesT>
typename TypesT::Class GpTree<TypesT>::buildClass(const MeasuredClass& measured) {
    std::vector<typename TypesT::Object> built;
    for (const MeasuredObject& object : measured.objects) {
        built.push_back(buildObject(object));
    }
    const auto& objects = _objects.emplace_back(std::move(built));
    return {measured.name ? measured.name->c_str() : nullptr, objects.data(), countOf(objects)};
}

template <class TypesT>
typename TypesT::Object GpTree<TypesT>::buildObject(const MeasuredObject& measured) {
    std::vector<typename TypesT::Value> built;
    for (const Measurement& measurement : measured.values) {
        addValue(measurement, built);
    }
    const auto& values = _values.emplace_back(std::move(built));
    return {measured.ldn.c_str(), values.data(), countOf(values)};
}

GpRecords::GpRecords(MeasurementData data, PmVersions versions) : _data(std::move(data)) {
    if (isOffered1(versions)) {
        _tree1.emplace(_data);
    }
    if (isOffered2(versions)) {
        _tree2.emplace(_data);
    }
}

}  // namespace VorNode
