#include "services/ManagedObjectService.h"

#include <optional>
#include <utility>

#include "services/AttributeContainer.h"
#include "services/Operation.h"

namespace VorNode {

ManagedObjectService::ManagedObjectService(const Model& model, TransactionService& transactions)
    : _model(model),
      _transactions(transactions),
      _table{{"VorOamSpiExtCmRouterService", "VorOamSpiManagedObject", "1"},
             &setMoAttribute,
             &getMoAttribute,
             &newMoIterator,
             &nextMo,
             &finalizeMoIterator} {}

KelReturnT ManagedObjectService::setMoAttribute(unsigned long txHandle, const char* dn,
                                                const char* attributeName,
                                                const VorMoAttributeValueContainer_3* container) {
    return carryOut([&] {
        requirePointers(dn, attributeName, container);
        ManagedObjectService& service = current();
        service._transactions.requireOpen(txHandle);
        AttributeValues values = copyValues(service.requireAttribute(dn, attributeName), *container);
        service._transactions.write(txHandle, {dn, attributeName, std::move(values)});
    });
}

KelReturnT ManagedObjectService::getMoAttribute(unsigned long txHandle, const char* dn,
                                                const char* attributeName,
                                                VorMoAttributeValueResult_3* result) {
    return carryOut([&] {
        requirePointers(dn, attributeName, result);
        *result = {};
        ManagedObjectService& service = current();
        std::optional<AttributeValues> values = service._transactions.written(txHandle, dn, attributeName);
        const AttributeDefinition& attribute = service.requireAttribute(dn, attributeName);
        if (!values) {
            values = service._model.read(dn, attributeName);
        }
        *result = handOut(attribute.type, std::move(*values));
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

const AttributeDefinition& ManagedObjectService::requireAttribute(const std::string& dn,
                                                                  const std::string& attribute) const {
    const AttributeDefinition* definition = _model.findAttribute(dn, attribute);
    if (definition == nullptr) {
        throw Refusal{VorReturnAbsent};
    }
    return *definition;
}

}  // namespace VorNode
