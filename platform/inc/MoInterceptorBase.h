#pragma once

#include "VorOamSpiManagedObject.h"

namespace VorExtCmRouterService {

class ExtCmInterceptorRepository;

/// Stands between management clients and the managed objects of the classes that it is registered for. Every
/// operation forwards to the raw managed-object interface, with its parameters, results and ownership; a
/// class that derives from it replaces the ones that it answers itself. The operations are called on the
/// platform's request threads, several at once. They return -1 before `initialize`.
class MoInterceptorBase {
  public:
    MoInterceptorBase();
    MoInterceptorBase(const MoInterceptorBase&) = delete;
    MoInterceptorBase& operator=(const MoInterceptorBase&) = delete;

    /// An interceptor is deregistered before its end.
    virtual ~MoInterceptorBase();
    virtual KelReturnT getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                      VorMoAttributeValueResult_3* result);
    virtual KelReturnT getMoAttributes(unsigned long txHandle, const char* dn, const char** attributeNames,
                                       VorMoAttributeValuesResult_3* result);
    virtual KelReturnT setMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                                      const VorMoAttributeValueContainer_3* container);
    virtual KelReturnT setMoAttributes(unsigned long txHandle, const char* dn,
                                       KelMoNamedAttributeValueContainer_3** attributes);
    virtual KelReturnT newMoIterator(unsigned long txHandle, const char* baseDn, const char* classPath,
                                     unsigned long long* iterator);
    virtual KelReturnT nextMo(unsigned long long iterator, char** dn);
    virtual KelReturnT createMo(unsigned long txHandle, const char* parentDn, const char* className,
                                const char* keyAttributeName, const char* keyAttributeValue,
                                VorMoNamedAttributeValueContainer_3** attributes);
    virtual KelReturnT deleteMo(unsigned long txHandle, const char* dn);
    virtual KelReturnT action(unsigned long txHandle, const char* dn, const char* actionName,
                              VorMoNamedAttributeValueContainer_3** parameters,
                              VorMoAttributeValueResult_3* result) const;
    virtual KelReturnT finalizeMoIterator(unsigned long long iterator) const;
    virtual KelReturnT existsMo(unsigned long txHandle, const char* dn, bool* exists);
    virtual KelReturnT countMoChildren(unsigned long txHandle, const char* dn, const char* classPath,
                                       unsigned long long* count);

  protected:
    /// Finds the repository and the raw interface. Before the interceptor is registered. Throws
    /// `Vor::VorException` when nobody offers the interface.
    void initialize();

    /// Both null until `initialize`.
    ExtCmInterceptorRepository* _interceptorRepository = nullptr;
    const VorOamSpiManagedObject_1* _managedObjects = nullptr;

  private:
    template <class OperationT, class... ArgumentsT>
    KelReturnT forward(OperationT VorOamSpiManagedObject_1::*operation, ArgumentsT... arguments) const;
};

}  // namespace VorExtCmRouterService
