#include "services/ManagedObjectService.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "model/Dn.h"
#include "services/Operation.h"

namespace VorNode {

ManagedObjectService::ManagedObjectService(const Model& model, TransactionService& transactions)
    : _model(model),
      _transactions(transactions),
      _table{{"VorOamSpiExtCmRouterService", "VorOamSpiManagedObject", "1"},
             &setMoAttribute,
             &setMoAttributes,
             &getMoAttribute,
             &getMoAttributes,
             &newMoIterator,
             &nextMo,
             &finalizeMoIterator,
             &createMo,
             &deleteMo,
             &action,
             &existsMo,
             &countMoChildren} {}

KelReturnT ManagedObjectService::setMoAttribute(unsigned long txHandle, const char* dn,
                                                const char* attributeName,
                                                const VorMoAttributeValueContainer_3* container) {
    return carryOut([&] {
        requirePointers(dn, attributeName, container);
        ManagedObjectService& service = current();
        service._transactions.requireOpen(txHandle);
        service._transactions.write(txHandle, service.copyWrite(dn, attributeName, *container));
    });
}

KelReturnT ManagedObjectService::setMoAttributes(unsigned long txHandle, const char* dn,
                                                 KelMoNamedAttributeValueContainer_3** attributes) {
    return carryOut([&] {
        requirePointers(dn, attributes);
        ManagedObjectService& service = current();
        service._transactions.requireOpen(txHandle);
        std::vector<AttributeWrite> writes;
        for (auto* attribute = attributes; *attribute != nullptr; ++attribute) {
            requirePointers((*attribute)->name, (*attribute)->container);
            writes.push_back(service.copyWrite(dn, (*attribute)->name, *(*attribute)->container));
        }
        for (AttributeWrite& write : writes) {
            service._transactions.write(txHandle, std::move(write));
        }
    });
}

KelReturnT ManagedObjectService::getMoAttribute(unsigned long txHandle, const char* dn,
                                                const char* attributeName,
                                                VorMoAttributeValueResult_3* result) {
    return carryOut([&] {
        requirePointers(dn, attributeName, result);
        *result = {};
        *result = handOut(current().read(txHandle, dn, attributeName));
    });
}

KelReturnT ManagedObjectService::getMoAttributes(unsigned long txHandle, const char* dn,
                                                 const char** attributeNames,
                                                 VorMoAttributeValuesResult_3* result) {
    return carryOut([&] {
        requirePointers(dn, attributeNames, result);
        *result = {};
        ManagedObjectService& service = current();
        std::vector<TypedValues> attributes;
        for (const char** name = attributeNames; *name != nullptr; ++name) {
            attributes.push_back(service.read(txHandle, dn, *name));
        }
        *result = handOut(std::move(attributes));
    });
}

KelReturnT ManagedObjectService::newMoIterator(unsigned long txHandle, const char* baseDn,
                                               const char* classPath, unsigned long long* iterator) {
    return carryOut([&] {
        requirePointers(classPath, iterator);
        ManagedObjectService& service = current();
        service._transactions.requireOpen(txHandle);
        Iterator objects{service._model.objectsOf(classPath, baseDn != nullptr ? baseDn : "")};
        const std::scoped_lock lock(service._mutex);
        const unsigned long long handle = ++service._lastIterator;
        service._iterators.emplace(handle, std::move(objects));
        *iterator = handle;
    });
}

KelReturnT ManagedObjectService::nextMo(unsigned long long iterator, char** dn) {
    return carryOut([&] {
        requirePointers(dn);
        *dn = nullptr;
        ManagedObjectService& service = current();
        const std::scoped_lock lock(service._mutex);
        const auto found = service._iterators.find(iterator);
        if (found == service._iterators.end()) {
            throw Refusal{VorReturnFailed};
        }
        Iterator& objects = found->second;
        if (objects.next == objects.dns.size()) {
            throw Refusal{VorReturnAbsent};
        }
        *dn = objects.dns[objects.next++].data();
    });
}

KelReturnT ManagedObjectService::finalizeMoIterator(unsigned long long iterator) {
    return carryOut([&] {
        ManagedObjectService& service = current();
        const std::scoped_lock lock(service._mutex);
        if (service._iterators.erase(iterator) == 0) {
            throw Refusal{VorReturnFailed};
        }
    });
}

KelReturnT ManagedObjectService::createMo(unsigned long /*txHandle*/, const char* /*parentDn*/,
                                          const char* /*className*/, const char* /*keyAttributeName*/,
                                          const char* /*keyAttributeValue*/,
                                          VorMoNamedAttributeValueContainer_3** /*attributes*/) {
    return VorReturnFailed;
}

KelReturnT ManagedObjectService::deleteMo(unsigned long /*txHandle*/, const char* /*dn*/) {
    return VorReturnFailed;
}

KelReturnT ManagedObjectService::action(unsigned long /*txHandle*/, const char* /*dn*/,
                                        const char* /*actionName*/,
                                        VorMoNamedAttributeValueContainer_3** /*parameters*/,
                                        VorMoAttributeValueResult_3* /*result*/) {
    return VorReturnFailed;
}

KelReturnT ManagedObjectService::existsMo(unsigned long txHandle, const char* dn, bool* exists) {
    return carryOut([&] {
        requirePointers(dn, exists);
        ManagedObjectService& service = current();
        service._transactions.requireOpen(txHandle);
        *exists = !service._model.objectsOf(classPathOf(dn), dn).empty();
    });
}

KelReturnT ManagedObjectService::countMoChildren(unsigned long txHandle, const char* dn,
                                                 const char* classPath, unsigned long long* count) {
    return carryOut([&] {
        requirePointers(dn, classPath, count);
        ManagedObjectService& service = current();
        service._transactions.requireOpen(txHandle);
        const std::vector<std::string> objects = service._model.objectsOf(classPath, dn);
        *count = objects.size() - static_cast<std::size_t>(std::count(objects.begin(), objects.end(), dn));
    });
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
