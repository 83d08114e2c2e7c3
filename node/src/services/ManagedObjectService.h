#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "VorOamSpiManagedObject.h"
#include "model/Model.h"
#include "services/AttributeContainer.h"
#include "services/Service.h"
#include "services/TransactionService.h"

namespace VorNode {

/// The raw managed-object interface to the model, within transactions. Owned by the application, after the
/// model and the transaction service. Any thread; one transaction or iterator is used by one thread at a
/// time. The operations return -2 for an unknown transaction, object or attribute and at an iterator's end;
/// -1 for null pointers, an unknown iterator, and values that the attribute does not accept. The objects are
/// fixed and have no actions: these operations return -1.
class ManagedObjectService : public Service<ManagedObjectService> {
  public:
    ManagedObjectService(const Model& model, TransactionService& transactions);

    VorOamSpiManagedObject_1& table() { return _table; }
    const VorOamSpiManagedObject_1& table() const { return _table; }

  private:
    /// The objects as they were when the iteration began.
    struct Iterator {
        std::vector<std::string> dns;
        std::size_t next = 0;
    };

    // The operations of the table.
    void setMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                        const VorMoAttributeValueContainer_3* container);
    void setMoAttributes(unsigned long txHandle, const char* dn,
                         KelMoNamedAttributeValueContainer_3** attributes);
    /// A transaction sees what it wrote itself.
    void getMoAttribute(unsigned long txHandle, const char* dn, const char* attributeName,
                        VorMoAttributeValueResult_3* result);
    void getMoAttributes(unsigned long txHandle, const char* dn, const char** attributeNames,
                         VorMoAttributeValuesResult_3* result);
    void newMoIterator(unsigned long txHandle, const char* baseDn, const char* classPath,
                       unsigned long long* iterator);
    void nextMo(unsigned long long iterator, char** dn);
    void finalizeMoIterator(unsigned long long iterator);
    void existsMo(unsigned long txHandle, const char* dn, bool* exists);
    void countMoChildren(unsigned long txHandle, const char* dn, const char* classPath,
                         unsigned long long* count);

    /// Refuses, with -2, an object or attribute that the model does not have.
    const AttributeDefinition& requireAttribute(const std::string& dn, const std::string& attribute) const;
    AttributeWrite copyWrite(const std::string& dn, const std::string& attribute,
                             const VorMoAttributeValueContainer_3& container) const;
    TypedValues read(unsigned long txHandle, const char* dn, const char* attributeName);

    const Model& _model;
    TransactionService& _transactions;
    VorOamSpiManagedObject_1 _table;

    /// Guards the two below.
    std::mutex _mutex;
    unsigned long long _lastIterator = 0;
    std::map<unsigned long long, Iterator> _iterators;
};

}  // namespace VorNode
