#include "services/ManagedObjectService.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "model/Dn.h"
#include "services/Operation.h"

namespace VorNode {

namespace {

/// Stands for the operations that no object has.
template <class... ArgumentsT>
KelReturnT refused(ArgumentsT... /*arguments*/) {
    return VorReturnFailed;
}

}  // namespace

ManagedObjectService::ManagedObjectService(const Model& model, TransactionService& transactions)
    : _model(model),
      _transactions(transactions),
      _table{{"VorOamSpiExtCmRouterService", "VorOamSpiManagedObject", "1"},
             operation<&ManagedObjectService::setMoAttribute>,
             operation<&ManagedObjectService::setMoAttributes>,
             operation<&ManagedObjectService::getMoAttribute>,
             operation<&ManagedObjectService::getMoAttributes>,
             operation<&ManagedObjectService::newMoIterator>,
             operation<&ManagedObjectService::nextMo>,
             operation<&ManagedObjectService::finalizeMoIterator>,
             &refused,
             &refused,
             &refused,
             operation<&ManagedObjectService::existsMo>,
             operation<&ManagedObjectService::countMoChildren>} {}

void ManagedObjectService::setMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                          const VorMoAttributeValueContainer_3* container) {
    requirePointers(dn, attributeName, container);
    _transactions.requireOpen(txHandle);
    _transactions.write(txHandle, copyWrite(dn, attributeName, *container));
}

void ManagedObjectService::setMoAttributes(unsigned long txHandle, const char* dn,
                                           KelMoNamedAttributeValueContainer_3** attributes) {
    requirePointers(dn, attributes);
    _transactions.requireOpen(txHandle);
    std::vector<AttributeWrite> writes;
    for (auto* attribute = attributes; *attribute != nullptr; ++attribute) {
        requirePointers((*attribute)->name, (*attribute)->container);
        writes.push_back(copyWrite(dn, (*attribute)->name, *(*attribute)->container));
    }
    for (AttributeWrite& write : writes) {
        _transactions.write(txHandle, std::move(write));
    }
}

void ManagedObjectService::getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                          VorMoAttributeValueResult_3* result) {
    requirePointers(dn, attributeName, result);
    *result = {};
    *result = handOut(read(txHandle, dn, attributeName));
}

void ManagedObjectService::getMoAttributes(unsigned long txHandle, const char* dn,
                                           const char** attributeNames,
                                           VorMoAttributeValuesResult_3* result) {
    requirePointers(dn, attributeNames, result);
    *result = {};
    std::vector<TypedValues> attributes;
    for (const char** name = attributeNames; *name != nullptr; ++name) {
        attributes.push_back(read(txHandle, dn, *name));
    }
    *result = handOut(std::move(attributes));
}

void ManagedObjectService::newMoIterator(unsigned long txHandle, const char* baseDn, const char* classPath,
                                         unsigned long long* iterator) {
    requirePointers(classPath, iterator);
    _transactions.requireOpen(txHandle);
    Iterator objects{_model.objectsOf(classPath, baseDn != nullptr ? baseDn : "")};
    const std::scoped_lock lock(_mutex);
    const unsigned long long handle = ++_lastIterator;
    _iterators.emplace(handle, std::move(objects));
    *iterator = handle;
}

void ManagedObjectService::nextMo(unsigned long long iterator, char** dn) {
    requirePointers(dn);
    *dn = nullptr;
    const std::scoped_lock lock(_mutex);
    const auto found = _iterators.find(iterator);
    if (found == _iterators.end()) {
        throw Refusal{VorReturnFailed};
    }
    Iterator& objects = found->second;
    if (objects.next == objects.dns.size()) {
        throw Refusal{VorReturnAbsent};
    }
    *dn = objects.dns[objects.next++].data();
}

void ManagedObjectService::finalizeMoIterator(unsigned long long iterator) {
    const std::scoped_lock lock(_mutex);
    if (_iterators.erase(iterator) == 0) {
        throw Refusal{VorReturnFailed};
    }
}

void ManagedObjectService::existsMo(unsigned long txHandle, const char* dn, bool* exists) {
    requirePointers(dn, exists);
    _transactions.requireOpen(txHandle);
    *exists = !_model.objectsOf(classPathOf(dn), dn).empty();
}

void ManagedObjectService::countMoChildren(unsigned long txHandle, const char* dn, const char* classPath,
                                           unsigned long long* count) {
    requirePointers(dn, classPath, count);
    _transactions.requireOpen(txHandle);
    const std::vector<std::string> objects = _model.objectsOf(classPath, dn);
    *count = objects.size() - static_cast<std::size_t>(std::count(objects.begin(), objects.end(), dn));
}

AttributeWrite ManagedObjectService::copyWrite(const std::string& dn, const std::string& attribute,
                                               const VorMoAttributeValueContainer_3& container) const {
    return {dn, attribute, copyValues(requireAttribute(dn, attribute), container)};
}

TypedValues ManagedObjectService::read(unsigned long txHandle, const char* dn, const char* attributeName) {
    std::optional<AttributeValues> values = _transactions.written(txHandle, dn, attributeName);
    const AttributeDefinition& attribute = requireAttribute(dn, attributeName);
    return {attribute.type, values ? std::move(*values) : _model.read(dn, attributeName)};
}

const AttributeDefinition& ManagedObjectService::requireAttribute(const std::string& dn,
                                                                  const std::string& attribute) const {
    const AttributeDefinition* definition = _model.findAttribute(dn, attribute);
    if (definition == nullptr) {
        throw Refusal{VorReturnAbsent};
    }
    return *definition;
}

}  // namespace VorNode
