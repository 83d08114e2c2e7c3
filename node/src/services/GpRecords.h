// The read-only records of one granularity period (GP), as the PM service lends them out.
#pragma once

#include <optional>
#include <vector>

#include "VorOamSpiPm.h"
#include "counters/Measurements.h"

namespace VorNode {

/// The versions of the PM service's interface that are offered.
enum class PmVersions { One, Two, OneAndTwo };

constexpr bool isOffered1(PmVersions versions) {
    return versions != PmVersions::Two;
}
constexpr bool isOffered2(PmVersions versions) {
    return versions != PmVersions::One;
}

/// The types that version 1 of the tree is made of.
struct GpTypes1 {
    using Root = VorOamSpiPmGpData_1;
    using Class = VorOamSpiPmMeasObjClass_1;
    using Object = VorOamSpiPmMeasObj_1;
    using Value = VorOamSpiPmAggregatedValue_1;
};

/// The types that version 2 of the tree is made of.
struct GpTypes2 {
    using Root = VorOamSpiPmGpData_2;
    using Class = VorOamSpiPmMeasObjClass_2;
    using Object = VorOamSpiPmMeasObj_2;
    using Value = VorOamSpiPmAggregatedValue_2;
};

/// One version of the tree. Texts and arrays in it are those of the data that it was built from, which must
/// outlive it. Constant once built: any thread.
template <class TypesT>
class GpTree {
  public:
    explicit GpTree(const MeasurementData& data);
    GpTree(const GpTree&) = delete;
    GpTree& operator=(const GpTree&) = delete;

    const typename TypesT::Root* root() const { return &_root; }

  private:
    typename TypesT::Class buildClass(const MeasuredClass& measured);
    typename TypesT::Object buildObject(const MeasuredObject& measured);

    /// The values of each object, the objects of each class, and the classes: where the pointers lead.
    std::vector<std::vector<typename TypesT::Value>> _values;
    std::vector<std::vector<typename TypesT::Object>> _objects;
    std::vector<typename TypesT::Class> _classes;
    typename TypesT::Root _root;
};

/// One GP's data and the trees of it. Owned by the PM service. Constant once built: any thread.
class GpRecords {
  public:
    /// Builds the trees of `versions` only. Version 1 has no form for arrays and Nil, so that its objects
    /// lack these values; classes and objects are the same in both.
    GpRecords(MeasurementData data, PmVersions versions);

    /// The tree, which lives as long as the records; null when it was not built.
    const VorOamSpiPmGpData_1* version1() const { return _tree1 ? _tree1->root() : nullptr; }
    const VorOamSpiPmGpData_2* version2() const { return _tree2 ? _tree2->root() : nullptr; }

  private:
    const MeasurementData _data;
    std::optional<GpTree<GpTypes1>> _tree1;
    std::optional<GpTree<GpTypes2>> _tree2;
};

}  // namespace VorNode
