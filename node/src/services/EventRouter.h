// The event service: takes the consumers' subscriptions and delivers events to them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include <Poco/Condition.h>
#include <Poco/Mutex.h>

#include "VorOamSpiEventRouter.h"
#include "services/Service.h"

namespace VorNode {

/// Delivers events to the consumers that subscribed to their type. Owned by the application; consumers and
/// senders may use it from any thread, several at once.
///
/// To consumers: -1 answers arguments that are null or contradict what is registered, -2 a handle or a
/// subscription that is not known. A consumer's filter is kept and handed to its callback, but not
/// interpreted: every event of the type is delivered. The filter array itself, not its contents, tells two
/// subscriptions to one type apart. Handles are never used again. Unregistering removes the subscriptions
/// that are left.
class EventRouter : public Service<EventRouter> {
  public:
    EventRouter();

    /// What consumers look up; lives as long as the router.
    VorOamSpiEventRouter_1& table() { return _table; }

    /// Delivers an event on the calling thread to all subscriptions to its type, one after the other, and
    /// returns to how many it did. Neither the result of a callback nor an exception out of it makes a
    /// difference. No lock is held while a callback runs.
    unsigned send(const char* eventType, void* value);

  private:
    using Handle = KelOamSpiEventConsumerHandleT;

    struct Subscription {
        Handle handle;
        const KelOamSpiEventConsumer* consumer;
        std::string eventType;
        KelNameValuePairT** filter;
        /// No delivery begins any more.
        bool removed = false;
        /// Deliveries that are running.
        unsigned running = 0;

        bool isNamed(Handle name, const char* type, KelNameValuePairT** array) const {
            return handle == name && eventType == type && filter == array;
        }
    };

    // The operations of the table. They throw a `Refusal`.
    void registerConsumer(KelOamSpiEventConsumer* consumer, Handle* handle);
    void addSubscription(Handle handle, const char* eventType, KelNameValuePairT** filter);
    void removeSubscription(Handle handle, const char* eventType, KelNameValuePairT** filter);
    void unregisterConsumer(Handle handle, KelOamSpiEventConsumer* consumer);

    /// With `_mutex` held.
    bool hasSubscription(Handle handle, const char* eventType, KelNameValuePairT** filter) const;
    /// With `_mutex` held, which it releases while it waits for running deliveries to end.
    template <class PredicateT>
    void removeSubscriptions(PredicateT matches);

    std::vector<std::shared_ptr<Subscription>> subscriptionsTo(const char* eventType);
    /// False for a subscription that was removed; `endDelivery` follows otherwise.
    bool beginDelivery(Subscription& subscription);
    void endDelivery(Subscription& subscription);

    VorOamSpiEventRouter_1 _table;
    /// Guards all below and the two variable members of subscriptions. Not held while a callback runs.
    Poco::FastMutex _mutex;
    Poco::Condition _deliveryEnded;
    Handle _lastHandle = 0;
    std::map<Handle, const KelOamSpiEventConsumer*> _consumers;
    /// In the order in which they were added. A removed one stays until its last delivery has ended.
    std::vector<std::shared_ptr<Subscription>> _subscriptions;
};

}  // namespace VorNode
