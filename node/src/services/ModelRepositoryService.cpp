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

void ModelRepositoryService::getClassFromDn(const char* dn, VorOamSpiClassHandleT* moClass) {
    requirePointers(dn, moClass);
    const auto& classes = _model.classes();
    const auto found = std::find_if(
        classes.begin(), classes.end(),
        [path = classPathOf(dn)](const ClassDefinition& candidate) { return candidate.path == path; });
    *moClass =
        found != classes.end() ? static_cast<VorOamSpiClassHandleT>(found - classes.begin()) : nullHandle;
}

void ModelRepositoryService::getFirstAttribute(VorOamSpiClassHandleT moClass,
                                               VorOamSpiAttributeHandleT* attribute) {
    requirePointers(attribute);
    *attribute = attributeHandle(_model, moClass, 0);
}

void ModelRepositoryService::getName(VorOamSpiAttributeHandleT attribute, const char** name) {
    requirePointers(name);
    *name = attributeOf(_model, attribute).name.c_str();
}

void ModelRepositoryService::getNextAttribute(VorOamSpiAttributeHandleT attribute,
                                              VorOamSpiAttributeHandleT* next) {
    requirePointers(next);
    attributeOf(_model, attribute);
    *next = attributeHandle(_model, attribute >> halfBits, (attribute & lowerHalf) + 1);
}

}  // namespace VorNode
