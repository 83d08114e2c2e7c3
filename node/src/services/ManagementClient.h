#pragma once

#include <string>
#include <vector>

#include "VorSpiTypes.h"
#include "model/Model.h"

namespace VorNode {

class ManagedObjectService;
class TransactionService;

/// What a client reads of an attribute: values when the result is 0, none also when the attribute has none.
struct AttributeReading {
    std::string attribute;
    KelReturnT result = VorReturnFailed;
    AttributeValues values;
};

struct ObjectReading {
    std::string dn;
    std::vector<AttributeReading> attributes;
};

/// Management clients' way to the managed objects: each request has a transaction of its own and goes through
/// the interceptor that is registered for the object's class. Owned by the node, after the services it is
/// made of. Any thread.
class ManagementClient {
  public:
    ManagementClient(const Model& model, const TransactionService& transactions,
                     const ManagedObjectService& managedObjects)
        : _model(model), _transactions(transactions), _managedObjects(managedObjects) {}

    AttributeReading read(const std::string& dn, const std::string& attribute) const;

    /// Reads the objects of the class, given by its containment path, with a request for each attribute, all
    /// of an object's at once on request threads.
    std::vector<ObjectReading> readObjectsOf(const std::string& classPath) const;

  private:
    AttributeValues request(const std::string& dn, const std::string& attribute) const;

    const Model& _model;
    const TransactionService& _transactions;
    const ManagedObjectService& _managedObjects;
};

}  // namespace VorNode
