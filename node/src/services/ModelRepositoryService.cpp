#include "services/ModelRepositoryService.h"

#include <algorithm>

#include "model/Dn.h"
#include "services/Operation.h"

namespace VorNode {

namespace {

constexpr VorOamSpiClassHandleT nullHandle = ~VorOamSpiClassHandleT{0};

// A class handle is the class's index in the model; an attribute handle has it in its upper half, and the
// attribute's index in its lower half.
constexpr unsigned halfBits = 32;
constexpr std::uint64_t lowerHalf = ~std::uint64_t{0} >> halfBits;

const ClassDefinition& classOf(const Model& model, VorOamSpiClassHandleT handle) {
    if (handle >= model.classes().size()) {
        throw Refusal{VorReturnFailed};
    }
    return model.classes()[handle];
}

const AttributeDefinition& attributeOf(const Model& model, VorOamSpiAttributeHandleT handle) {
    const auto& attributes = classOf(model, handle >> halfBits).attributes;
    if ((handle & lowerHalf) >= attributes.size()) {
        throw Refusal{VorReturnFailed};
    }
    return attributes[handle & lowerHalf];
}

/// Refuses, with -2, an attribute behind the class's last.
VorOamSpiAttributeHandleT attributeHandle(const Model& model, VorOamSpiClassHandleT moClass,
                                          std::uint64_t attribute) {
    if (attribute == classOf(model, moClass).attributes.size()) {
        throw Refusal{VorReturnAbsent};
    }
    return moClass << halfBits | attribute;
}

}  // namespace

ModelRepositoryService::ModelRepositoryService(const Model& model)
    : _model(model),
      _table{{"VorOamSpiModelRepositoryService", "VorOamSpiModelRepository", "2"},
             &_classQuery,
             &_attributeQuery} {}

KelReturnT ModelRepositoryService::getClassFromDn(const char* dn, VorOamSpiClassHandleT* moClass) {
    return carryOut([&] {
        requirePointers(dn, moClass);
        const auto& classes = current()._model.classes();
        const auto found = std::find_if(
            classes.begin(), classes.end(),
            [path = classPathOf(dn)](const ClassDefinition& candidate) { return candidate.path == path; });
        *moClass =
            found != classes.end() ? static_cast<VorOamSpiClassHandleT>(found - classes.begin()) : nullHandle;
    });
}

KelReturnT ModelRepositoryService::getFirstAttribute(VorOamSpiClassHandleT moClass,
                                                     VorOamSpiAttributeHandleT* attribute) {
    return carryOut([&] {
        requirePointers(attribute);
        *attribute = attributeHandle(current()._model, moClass, 0);
    });
}

KelReturnT ModelRepositoryService::getName(VorOamSpiAttributeHandleT attribute, const char** name) {
    return carryOut([&] {
        requirePointers(name);
        *name = attributeOf(current()._model, attribute).name.c_str();
    });
}

KelReturnT ModelRepositoryService::getNextAttribute(VorOamSpiAttributeHandleT attribute,
                                                    VorOamSpiAttributeHandleT* next) {
    return carryOut([&] {
        requirePointers(next);
        const Model& model = current()._model;
        attributeOf(model, attribute);
        *next = attributeHandle(model, attribute >> halfBits, (attribute & lowerHalf) + 1);
    });
}

}  // namespace VorNode
