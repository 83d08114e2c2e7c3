#include "services/EventRouter.h"

#include <algorithm>
#include <iterator>

#include "services/Operation.h"

namespace VorNode {

EventRouter::EventRouter()
    : _table{{"VorOamSpiEventService", "VorOamSpiEventRouter", "1"},
             nullptr,
             operation<&EventRouter::registerConsumer>,
             operation<&EventRouter::addSubscription>,
             operation<&EventRouter::removeSubscription>,
             operation<&EventRouter::unregisterConsumer>} {}

unsigned EventRouter::send(const char* eventType, void* value) {
    unsigned delivered = 0;
    for (const auto& subscription : subscriptionsTo(eventType)) {
        if (beginDelivery(*subscription)) {
            carryOut([&] {
                subscription->consumer->notify(subscription->handle, eventType, subscription->filter, value);
            });
            endDelivery(*subscription);
            ++delivered;
        }
    }
    return delivered;
}

void EventRouter::registerConsumer(KelOamSpiEventConsumer* consumer, Handle* handle) {
    requirePointers(consumer, handle);
    if (consumer->notify == nullptr) {
        throw Refusal{VorReturnFailed};
    }
    Poco::FastMutex::ScopedLock lock(_mutex);
    _consumers.emplace(++_lastHandle, consumer);
    *handle = _lastHandle;
}

void EventRouter::addSubscription(Handle handle, const char* eventType, KelNameValuePairT** filter) {
    requirePointers(eventType);
    Poco::FastMutex::ScopedLock lock(_mutex);
    const auto consumer = _consumers.find(handle);
    if (consumer == _consumers.end()) {
        throw Refusal{VorReturnAbsent};
    }
    if (hasSubscription(handle, eventType, filter)) {
        throw Refusal{VorReturnFailed};
    }
    _subscriptions.push_back(
        std::make_shared<Subscription>(Subscription{handle, consumer->second, eventType, filter}));
}

void EventRouter::removeSubscription(Handle handle, const char* eventType, KelNameValuePairT** filter) {
    requirePointers(eventType);
    Poco::FastMutex::ScopedLock lock(_mutex);
    if (!hasSubscription(handle, eventType, filter)) {
        throw Refusal{VorReturnAbsent};
    }
    removeSubscriptions([=](const Subscription& other) { return other.isNamed(handle, eventType, filter); });
}

void EventRouter::unregisterConsumer(Handle handle, KelOamSpiEventConsumer* consumer) {
    Poco::FastMutex::ScopedLock lock(_mutex);
    const auto registered = _consumers.find(handle);
    if (registered == _consumers.end()) {
        throw Refusal{VorReturnAbsent};
    }
    if (registered->second != consumer) {
        throw Refusal{VorReturnFailed};
    }
    _consumers.erase(registered);
    removeSubscriptions([=](const Subscription& other) { return other.handle == handle; });
}

bool EventRouter::hasSubscription(Handle handle, const char* eventType, KelNameValuePairT** filter) const {
    return std::any_of(_subscriptions.begin(), _subscriptions.end(), [=](const auto& other) {
        return !other->removed && other->isNamed(handle, eventType, filter);
    });
}

template <class PredicateT>
void EventRouter::removeSubscriptions(PredicateT matches) {
    for (const auto& subscription : _subscriptions) {
        if (matches(*subscription)) {
            subscription->removed = true;
        }
    }
    const auto isRunning = [&](const auto& other) {
        return other->removed && other->running > 0 && matches(*other);
    };
    while (std::any_of(_subscriptions.begin(), _subscriptions.end(), isRunning)) {
        _deliveryEnded.wait(_mutex);
    }
    std::erase_if(_subscriptions, [&](const auto& other) { return other->removed && matches(*other); });
}

std::vector<std::shared_ptr<EventRouter::Subscription>> EventRouter::subscriptionsTo(const char* eventType) {
    Poco::FastMutex::ScopedLock lock(_mutex);
    std::vector<std::shared_ptr<Subscription>> found;
    std::copy_if(_subscriptions.begin(), _subscriptions.end(), std::back_inserter(found),
                 [&](const auto& subscription) { return subscription->eventType == eventType; });
    return found;
}

bool EventRouter::beginDelivery(Subscription& subscription) {
    Poco::FastMutex::ScopedLock lock(_mutex);
    if (!subscription.removed) {
        ++subscription.running;
    }
    return !subscription.removed;
}

void EventRouter::endDelivery(Subscription& subscription) {
    Poco::FastMutex::ScopedLock lock(_mutex);
    if (--subscription.running == 0) {
        _deliveryEnded.broadcast();
    }
}

}  // namespace VorNode
