// The PM service: measurement data of granularity periods (GP), in two versions.
//
// A GP's data is a read-only tree owned by the service, valid from a successful `getGp` until `releaseGp`.
// Every array is a pointer to its first element and a count; the pointer is not read when the count is 0.
#pragma once

#include <stddef.h>
#include <stdint.h>

#include "VorSpiTypes.h"

/// Value of the events "VorOamSpiPmEventTypeGpReady_1" and "VorOamSpiPmEventTypeGpReady_2". Valid during the
/// callback.
struct VorOamSpiPmEventValue_1 {
    alignas(8) uint64_t gpId;
    const char* jobId;
    /// ns since the Unix epoch.
    alignas(8) uint64_t gpStartTime;
    alignas(8) uint64_t gpEndTime;
};

struct VorOamSpiPmAggregatedValue_1 {
    /// Measurement type name; types are equal when their bytes are.
    const char* measType;
    union {
        alignas(8) int64_t intValue;
        double floatValue;
    } value;
    /// 8-bit booleans: 0 is false, everything else true.
    unsigned char isSuspect;
    unsigned char isFloat;
};

enum class VorOamSpiPmValueType_2 : int32_t {
    Integer = 0,
    Float = 1,
    IntegerArray = 2,
    FloatArray = 3,
    Nil = 4
};

struct VorOamSpiPmAggregatedValue_2 {
    const char* measType;
    /// `valueType` tells the member; none for `Nil`.
    union {
        alignas(8) int64_t intValue;
        double floatValue;
        const int64_t* intValues;
        const double* floatValues;
    } value;
    VorOamSpiPmValueType_2 valueType;
    /// Elements of the two array types.
    uint32_t arraySize;
    unsigned char isSuspect;
};

/// One measured object instance.
struct VorOamSpiPmMeasObj_1 {
    const char* measObjLdn;
    const VorOamSpiPmAggregatedValue_1* values;
    uint32_t nrOfValues;
};

struct VorOamSpiPmMeasObj_2 {
    const char* measObjLdn;
    const VorOamSpiPmAggregatedValue_2* values;
    uint32_t nrOfValues;
};

/// One measurement object class; the name may be null.
struct VorOamSpiPmMeasObjClass_1 {
    const char* name;
    const VorOamSpiPmMeasObj_1* measObjs;
    uint32_t nrOfMeasObjs;
};

struct VorOamSpiPmMeasObjClass_2 {
    const char* name;
    const VorOamSpiPmMeasObj_2* measObjs;
    uint32_t nrOfMeasObjs;
};

/// The root: one GP.
struct VorOamSpiPmGpData_1 {
    const VorOamSpiPmMeasObjClass_1* measObjClasses;
    uint32_t nrOfMeasObjClasses;
};

struct VorOamSpiPmGpData_2 {
    const VorOamSpiPmMeasObjClass_2* measObjClasses;
    uint32_t nrOfMeasObjClasses;
};

/// Both versions: any thread; 0 on success. `getGp` lends the record, the service keeps it alive until
/// `releaseGp`. `releaseGp` takes every announced GP, fetched or not; -2 for a GP that it does not know.
struct VorOamSpiPm_1 {
    KelMgmtSpiInterface_1 identity;
    KelReturnT (*getGp)(uint64_t gpId, const VorOamSpiPmGpData_1** data);
    KelReturnT (*releaseGp)(uint64_t gpId);
};

struct VorOamSpiPm_2 {
    KelMgmtSpiInterface_1 identity;
    KelReturnT (*getGp)(uint64_t gpId, const VorOamSpiPmGpData_2** data);
    KelReturnT (*releaseGp)(uint64_t gpId);
};

static_assert(sizeof(VorOamSpiPmEventValue_1) == 32 && offsetof(VorOamSpiPmEventValue_1, gpStartTime) == 16 &&
              offsetof(VorOamSpiPmEventValue_1, gpEndTime) == 24);
static_assert(sizeof(VorOamSpiPmValueType_2) == 4);
static_assert(offsetof(VorOamSpiPmAggregatedValue_1, value) == 8 &&
              offsetof(VorOamSpiPmAggregatedValue_1, isSuspect) == 16 &&
              offsetof(VorOamSpiPmAggregatedValue_1, isFloat) == 17 &&
              sizeof(VorOamSpiPmAggregatedValue_1) == 24);
static_assert(offsetof(VorOamSpiPmAggregatedValue_2, value) == 8 &&
              offsetof(VorOamSpiPmAggregatedValue_2, valueType) == 16 &&
              offsetof(VorOamSpiPmAggregatedValue_2, arraySize) == 20 &&
              offsetof(VorOamSpiPmAggregatedValue_2, isSuspect) == 24 &&
              sizeof(VorOamSpiPmAggregatedValue_2) == 32);
#if UINTPTR_MAX == UINT64_MAX
static_assert(sizeof(VorOamSpiPmMeasObj_1) == 24 && sizeof(VorOamSpiPmMeasObj_2) == 24);
static_assert(sizeof(VorOamSpiPmMeasObjClass_1) == 24 && sizeof(VorOamSpiPmMeasObjClass_2) == 24);
static_assert(sizeof(VorOamSpiPmGpData_1) == 16 && sizeof(VorOamSpiPmGpData_2) == 16);
static_assert(offsetof(VorOamSpiPmMeasObj_1, nrOfValues) == 16 &&
              offsetof(VorOamSpiPmMeasObjClass_1, nrOfMeasObjs) == 16);
#else
static_assert(sizeof(VorOamSpiPmMeasObj_1) == 12 && sizeof(VorOamSpiPmMeasObj_2) == 12);
static_assert(sizeof(VorOamSpiPmMeasObjClass_1) == 12 && sizeof(VorOamSpiPmMeasObjClass_2) == 12);
static_assert(sizeof(VorOamSpiPmGpData_1) == 8 && sizeof(VorOamSpiPmGpData_2) == 8);
#endif

static_assert(sizeof(VorOamSpiPm_1) == 5 * sizeof(void*) && sizeof(VorOamSpiPm_2) == 5 * sizeof(void*));
