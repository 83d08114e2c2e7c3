// The event service's router: ("VorOamSpiEventService", "VorOamSpiEventRouter", "1").
#pragma once

#include "VorSpiTypes.h"

typedef unsigned long KelOamSpiEventConsumerHandleT;

/// A name and a value, owned by whoever hands the pair over.
struct KelNameValuePair {
    const char* name;
    const char* value;
};
typedef KelNameValuePair KelNameValuePairT;

/// What a consumer registers; stays the consumer's, valid until it unregisters.
struct KelOamSpiEventConsumer {
    /// Called on the router's threads, several at once. The value belongs to the sender and is valid during
    /// the call.
    KelReturnT (*notify)(KelOamSpiEventConsumerHandleT handle, const char* eventType,
                         KelNameValuePairT** filter, void* value);
};

/// Any thread, but none of the operations from inside a callback. 0 on success.
struct VorOamSpiEventRouter_1 {
    KelMgmtSpiInterface_1 identity;
    void (*reserved1)();
    /// Fills the handle that names the consumer from then on.
    KelReturnT (*registerConsumer)(KelOamSpiEventConsumer* consumer, KelOamSpiEventConsumerHandleT* handle);
    /// The filter, a null-terminated array, stays the consumer's and valid until the subscription is removed.
    KelReturnT (*addSubscription)(KelOamSpiEventConsumerHandleT handle, const char* eventType,
                                  KelNameValuePairT** filter);
    /// When it returns, running deliveries of the subscription have ended.
    KelReturnT (*removeSubscription)(KelOamSpiEventConsumerHandleT handle, const char* eventType,
                                     KelNameValuePairT** filter);
    KelReturnT (*unregisterConsumer)(KelOamSpiEventConsumerHandleT handle, KelOamSpiEventConsumer* consumer);
};

static_assert(sizeof(KelNameValuePair) == 2 * sizeof(void*) &&
              sizeof(KelOamSpiEventConsumer) == sizeof(void*));
static_assert(sizeof(VorOamSpiEventRouter_1) == 8 * sizeof(void*));
