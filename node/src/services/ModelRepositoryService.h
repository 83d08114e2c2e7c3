#pragma once

#include "VorOamSpiModelRepository.h"
#include "model/Model.h"
#include "services/Operation.h"
#include "services/Service.h"

namespace VorNode {

/// The model repository: tells which classes and attributes the model has. Owned by the application, after
/// the model. Any thread. The operations return -1 for null pointers and handles that name nothing.
class ModelRepositoryService : public Service<ModelRepositoryService> {
  public:
    explicit ModelRepositoryService(const Model& model);

    VorOamSpiModelRepository_2& table() { return _table; }

  private:
    // The operations of the table.
    void getClassFromDn(const char* dn, VorOamSpiClassHandleT* moClass);
    void getFirstAttribute(VorOamSpiClassHandleT moClass, VorOamSpiAttributeHandleT* attribute);
    void getName(VorOamSpiAttributeHandleT attribute, const char** name);
    void getNextAttribute(VorOamSpiAttributeHandleT attribute, VorOamSpiAttributeHandleT* next);

    const Model& _model;
    const VorOamSpiClassQuery_2 _classQuery{operation<&ModelRepositoryService::getClassFromDn>,
                                            operation<&ModelRepositoryService::getFirstAttribute>};
    const VorOamSpiAttributeQuery_2 _attributeQuery{operation<&ModelRepositoryService::getName>,
                                                    operation<&ModelRepositoryService::getNextAttribute>};
    VorOamSpiModelRepository_2 _table;
};

}  // namespace VorNode
