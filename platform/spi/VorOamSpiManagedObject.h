// Managed objects: attribute values and the raw managed-object interface,
// ("VorOamSpiExtCmRouterService", "VorOamSpiManagedObject", "1").
#pragma once

#include <stdint.h>

#include "VorSpiTypes.h"

enum VorOamSpiMoAttributeType_3 : uint32_t {
    VorMoTypeString = 1,
    VorMoTypeBool = 2,
    VorMoTypeUint16 = 3,
    VorMoTypeEnum = 4,
    VorMoTypeRef = 5,
    VorMoTypeStruct = 6
};

struct KelMoNamedAttributeValueContainer_3;

/// One attribute value. Numbers, booleans and enumeration values are held sign-extended in `number`, strings
/// and references (a dn) in `text`, a struct as a null-terminated array of named members.
union VorMoAttributeValue_3 {
    int64_t number;
    const char* text;
    KelMoNamedAttributeValueContainer_3** members;
};
static_assert(sizeof(VorMoAttributeValue_3) == 8, "values are 8 bytes on every platform");

/// The values of one attribute: one for a single-valued attribute, any number for a sequence.
struct VorMoAttributeValueContainer_3 {
    VorOamSpiMoAttributeType_3 type;
    uint32_t valueCount;
    VorMoAttributeValue_3* values;
};

/// A member of a struct, or an attribute where several are given at once.
struct KelMoNamedAttributeValueContainer_3 {
    const char* name;
    VorMoAttributeValueContainer_3* container;
};
typedef KelMoNamedAttributeValueContainer_3 VorMoNamedAttributeValueContainer_3;

/// A container handed out. The receiver owns it and gives it back, with all it points to, by
/// `release(container)`.
struct VorMoAttributeValueResult_3 {
    void (*release)(VorMoAttributeValueContainer_3* container);
    VorMoAttributeValueContainer_3* container;
};

/// The containers of several attributes, one per requested name, in the order of the request; null or empty
/// for an attribute without value. The receiver owns them and gives all back by `release(containers)`.
struct VorMoAttributeValuesResult_3 {
    void (*release)(VorMoAttributeValueContainer_3** containers);
    VorMoAttributeValueContainer_3** containers;
};

/// Any thread; one transaction is used by one thread at a time. 0 on success. Arrays of names and of named
/// containers end with null.
struct VorOamSpiManagedObject_1 {
    KelMgmtSpiInterface_1 identity;
    /// Writes an attribute in the transaction; the container is lent for the call. An empty container empties
    /// it.
    KelReturnT (*setMoAttribute)(unsigned long txHandle, const char* dn, const char* attributeName,
                                 const VorMoAttributeValueContainer_3* container);
    /// Writes several, all or none.
    KelReturnT (*setMoAttributes)(unsigned long txHandle, const char* dn,
                                  KelMoNamedAttributeValueContainer_3** attributes);
    /// Reads an attribute; a null container in the result stands for "no value".
    KelReturnT (*getMoAttribute)(unsigned long txHandle, const char* dn, const char* attributeName,
                                 VorMoAttributeValueResult_3* result);
    /// Reads several; nothing is handed out when one of them cannot be read.
    KelReturnT (*getMoAttributes)(unsigned long txHandle, const char* dn, const char** attributeNames,
                                  VorMoAttributeValuesResult_3* result);
    /// Iterates the objects of a class, given by its containment path, at or below `baseDn` (null:
    /// everywhere), in the order in which they were created.
    KelReturnT (*newMoIterator)(unsigned long txHandle, const char* baseDn, const char* classPath,
                                unsigned long long* iterator);
    /// Stores the next object's dn, valid until the iterator is used again; -2 after the last.
    KelReturnT (*nextMo)(unsigned long long iterator, char** dn);
    KelReturnT (*finalizeMoIterator)(unsigned long long iterator);
    /// Creates an object of the class `className` below `parentDn`, identified by the value of a key
    /// attribute.
    KelReturnT (*createMo)(unsigned long txHandle, const char* parentDn, const char* className,
                           const char* keyAttributeName, const char* keyAttributeValue,
                           VorMoNamedAttributeValueContainer_3** attributes);
    KelReturnT (*deleteMo)(unsigned long txHandle, const char* dn);
    /// Calls an action of the object; the receiver owns its result.
    KelReturnT (*action)(unsigned long txHandle, const char* dn, const char* actionName,
                         VorMoNamedAttributeValueContainer_3** parameters,
                         VorMoAttributeValueResult_3* result);
    KelReturnT (*existsMo)(unsigned long txHandle, const char* dn, bool* exists);
    /// Counts the objects of a class, given by its containment path, below `dn`.
    KelReturnT (*countMoChildren)(unsigned long txHandle, const char* dn, const char* classPath,
                                  unsigned long long* count);
};

static_assert(sizeof(VorMoAttributeValueContainer_3) == 8 + sizeof(void*));
static_assert(sizeof(VorMoAttributeValueResult_3) == 2 * sizeof(void*));
static_assert(sizeof(VorMoAttributeValuesResult_3) == 2 * sizeof(void*));
static_assert(sizeof(VorOamSpiManagedObject_1) == 15 * sizeof(void*));
