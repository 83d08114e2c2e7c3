#pragma once

#include "VorOamSpiModelRepository.h"
#include "model/Model.h"
#include "services/Service.h"

namespace VorNode {

/// The model repository: tells which classes and attributes the model has. Owned by the application, after
/// the model. Any thread. The operations return -1 for null pointers and handles that name nothing.
class ModelRepositoryService : public Service<ModelRepositoryService> {
  public:
    explicit ModelRepositoryService(const Model& model);

    KelMgmtSpiInterface_1& interface() { return _table.identity; }

  private:
    static KelReturnT getClassFromDn(const char* dn, VorOamSpiClassHandleT* moClass);
    static KelReturnT getFirstAttribute(VorOamSpiClassHandleT moClass, VorOamSpiAttributeHandleT* attribute);
    static KelReturnT getName(VorOamSpiAttributeHandleT attribute, const char** name);
    static KelReturnT getNextAttribute(VorOamSpiAttributeHandleT attribute, VorOamSpiAttributeHandleT* next);

    const Model& _model;
    const VorOamSpiClassQuery_2 _classQuery{&getClassFromDn, &getFirstAttribute};
    const VorOamSpiAttributeQuery_2 _attributeQuery{&getName, &getNextAttribute};
    VorOamSpiModelRepository_2 _table;
};

}  // namespace VorNode
