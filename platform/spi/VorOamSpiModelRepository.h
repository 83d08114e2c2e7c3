// The model repository: which classes and attributes the managed-object model has,
// ("VorOamSpiModelRepositoryService", "VorOamSpiModelRepository", "2").
#pragma once

#include <stdint.h>

#include "VorSpiTypes.h"

/// Handles name classes and attributes of the model; the null handle has all 64 bits set.
typedef uint64_t VorOamSpiClassHandleT;
typedef uint64_t VorOamSpiAttributeHandleT;

/// Any thread. 0 on success.
struct VorOamSpiClassQuery_2 {
    /// The class of the object that `dn` names, whether or not such an object exists; the null handle when
    /// the model has no such class.
    KelReturnT (*getClassFromDn)(const char* dn, VorOamSpiClassHandleT* moClass);
    /// -2 when the class has no attributes.
    KelReturnT (*getFirstAttribute)(VorOamSpiClassHandleT moClass, VorOamSpiAttributeHandleT* attribute);
};

/// Any thread. 0 on success.
struct VorOamSpiAttributeQuery_2 {
    /// Stores the attribute's name, owned by the repository.
    KelReturnT (*getName)(VorOamSpiAttributeHandleT attribute, const char** name);
    /// -2 after the class's last attribute.
    KelReturnT (*getNextAttribute)(VorOamSpiAttributeHandleT attribute, VorOamSpiAttributeHandleT* next);
};

struct VorOamSpiModelRepository_2 {
    KelMgmtSpiInterface_1 identity;
    const VorOamSpiClassQuery_2* classQuery;
    const VorOamSpiAttributeQuery_2* attributeQuery;
};
typedef VorOamSpiModelRepository_2 VorOamSpiModelRepository;

static_assert(sizeof(VorOamSpiClassQuery_2) == 2 * sizeof(void*));
static_assert(sizeof(VorOamSpiAttributeQuery_2) == 2 * sizeof(void*));
static_assert(sizeof(VorOamSpiModelRepository_2) == 5 * sizeof(void*));
