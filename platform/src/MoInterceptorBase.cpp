#include "MoInterceptorBase.h"

#include "ExtCmInterceptorRepository.h"
#include "RequiredInterface.h"

namespace VorExtCmRouterService {

// The repository has to outlive whatever may be registered in it.
MoInterceptorBase::MoInterceptorBase() {
    ExtCmInterceptorRepository::instance();
}

MoInterceptorBase::~MoInterceptorBase() = default;

void MoInterceptorBase::initialize() {
    _managedObjects = &Vor::requiredManagedObjects();
    _interceptorRepository = &ExtCmInterceptorRepository::instance();
}

template <class OperationT, class... ArgumentsT>
KelReturnT MoInterceptorBase::forward(OperationT VorOamSpiManagedObject_1::*operation,
                                      ArgumentsT... arguments) const {
    return _managedObjects != nullptr ? (_managedObjects->*operation)(arguments...) : VorReturnFailed;
}

KelReturnT MoInterceptorBase::getMoAttribute(unsigned long txHandle, const char* dn,
                                             const char* attributeName, VorMoAttributeValueResult_3* result) {
    return forward(&VorOamSpiManagedObject_1::getMoAttribute, txHandle, dn, attributeName, result);
}

KelReturnT MoInterceptorBase::getMoAttributes(unsigned long txHandle, const char* dn,
                                              const char** attributeNames,
                                              VorMoAttributeValuesResult_3* result) {
    return forward(&VorOamSpiManagedObject_1::getMoAttributes, txHandle, dn, attributeNames, result);
}

KelReturnT MoInterceptorBase::setMoAttribute(unsigned long txHandle, const char* dn,
                                             const char* attributeName,
                                             const VorMoAttributeValueContainer_3* container) {
    return forward(&VorOamSpiManagedObject_1::setMoAttribute, txHandle, dn, attributeName, container);
}

KelReturnT MoInterceptorBase::setMoAttributes(unsigned long txHandle, const char* dn,
                                              KelMoNamedAttributeValueContainer_3** attributes) {
    return forward(&VorOamSpiManagedObject_1::setMoAttributes, txHandle, dn, attributes);
}

KelReturnT MoInterceptorBase::newMoIterator(unsigned long txHandle, const char* baseDn, const char* classPath,
                                            unsigned long long* iterator) {
    return forward(&VorOamSpiManagedObject_1::newMoIterator, txHandle, baseDn, classPath, iterator);
}

KelReturnT MoInterceptorBase::nextMo(unsigned long long iterator, char** dn) {
    return forward(&VorOamSpiManagedObject_1::nextMo, iterator, dn);
}

KelReturnT MoInterceptorBase::createMo(unsigned long txHandle, const char* parentDn, const char* className,
                                       const char* keyAttributeName, const char* keyAttributeValue,
                                       VorMoNamedAttributeValueContainer_3** attributes) {
    return forward(&VorOamSpiManagedObject_1::createMo, txHandle, parentDn, className, keyAttributeName,
                   keyAttributeValue, attributes);
}

KelReturnT MoInterceptorBase::deleteMo(unsigned long txHandle, const char* dn) {
    return forward(&VorOamSpiManagedObject_1::deleteMo, txHandle, dn);
}

KelReturnT MoInterceptorBase::action(unsigned long txHandle, const char* dn, const char* actionName,
                                     VorMoNamedAttributeValueContainer_3** parameters,
                                     VorMoAttributeValueResult_3* result) const {
    return forward(&VorOamSpiManagedObject_1::action, txHandle, dn, actionName, parameters, result);
}

KelReturnT MoInterceptorBase::finalizeMoIterator(unsigned long long iterator) const {
    return forward(&VorOamSpiManagedObject_1::finalizeMoIterator, iterator);
}

KelReturnT MoInterceptorBase::existsMo(unsigned long txHandle, const char* dn, bool* exists) {
    return forward(&VorOamSpiManagedObject_1::existsMo, txHandle, dn, exists);
}

KelReturnT MoInterceptorBase::countMoChildren(unsigned long txHandle, const char* dn, const char* classPath,
                                              unsigned long long* count) {
    return forward(&VorOamSpiManagedObject_1::countMoChildren, txHandle, dn, classPath, count);
}

}  // namespace VorExtCmRouterService
