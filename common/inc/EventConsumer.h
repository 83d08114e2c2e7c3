#pragma once

#include <exception>
#include <memory>
#include <string>
#include <vector>

#include <Poco/Bugcheck.h>
#include <Poco/Condition.h>
#include <Poco/Mutex.h>

#include "AutoMemory.h"
#include "Logging.h"
#include "NameValuePair.h"
#include "Portal.h"
#include "VorOamSpiEventRouter.h"

namespace Vor {

/// Lets callbacks in while it is open; closing it waits for those inside. Any thread.
class CallbackGate {
  public:
    void open() {
        Poco::FastMutex::ScopedLock lock(_mutex);
        _open = true;
    }

    /// Not from inside a callback.
    void closeAndWait() {
        Poco::FastMutex::ScopedLock lock(_mutex);
        _open = false;
        while (_inside > 0) {
            _left.wait(_mutex);
        }
    }

    /// True while the callback may run; `leave` follows then.
    bool enter() {
        Poco::FastMutex::ScopedLock lock(_mutex);
        if (_open) {
            ++_inside;
        }
        return _open;
    }

    void leave() {
        Poco::FastMutex::ScopedLock lock(_mutex);
        if (--_inside == 0) {
            _left.broadcast();
        }
    }

  private:
    /// Guards the two below.
    Poco::FastMutex _mutex;
    bool _open = false;
    unsigned _inside = 0;
    Poco::Condition _left;
};

/// One subscription to one event type, forwarded to a member function of its subscriber. At most one object
/// of an instantiation lives at a time. `start` and `stop` run on the component's thread, never inside a
/// callback; callbacks run on the router's threads. After `stop` no callback is running or will run.
template <class SubscriberT, int instanceNumber>
class EventConsumer {
  public:
    using Method = void (SubscriberT::*)(const char* eventType, void* value);

    EventConsumer() : _portal(&Portal::instance()) {
        poco_assert(_instance == nullptr);
        _instance = this;
    }
    virtual ~EventConsumer() { _instance = nullptr; }
    EventConsumer(const EventConsumer&) = delete;
    EventConsumer& operator=(const EventConsumer&) = delete;

    /// Registers and subscribes. When either is refused, what was done is undone, a message tells, and the
    /// consumer stays stopped. A consumer that was started is stopped first.
    void start(const std::vector<NameValuePair>& filter, Method method, SubscriberT& subscriber,
               const char* eventType) {
        LOG_TRACE(" >> ");
        if (_started) {
            stop();
        }
        _eventType = eventType;
        _subscriber = &subscriber;
        _method = method;
        _consumerRecord.notify = &notifyCallback;
        VorOamSpiEventRouter_1* router = getInterface();
        if (!ask(router, &VorOamSpiEventRouter_1::registerConsumer, &_consumerRecord, &_consumerHandle)) {
            LOG_ERROR("Could not register consumer");
        } else if (!subscribe(router, filter)) {
            LOG_ERROR("Could not add subscription");
        }
        LOG_TRACE(" << ");
    }

    /// Unsubscribes and unregisters, waits for callbacks that are running, and gives the filter up.
    void stop() {
        LOG_TRACE(" >> ");
        if (_started) {
            VorOamSpiEventRouter_1* router = getInterface();
            if (!ask(router, &VorOamSpiEventRouter_1::removeSubscription, _consumerHandle, _eventType.c_str(),
                     _filter)) {
                LOG_TRACE("Could not unregister event subscription, eventType %s", _eventType.c_str());
            }
            if (!unregister(router)) {
                LOG_TRACE("Could not unregister event consumer, eventType %s", _eventType.c_str());
            }
            forgetSubscription();
        }
        LOG_TRACE(" << ");
    }

    /// Called by the router; always 0.
    static KelReturnT notifyCallback(KelOamSpiEventConsumerHandleT /*handle*/, const char* eventType,
                                     KelNameValuePairT** /*filter*/, void* value) {
        LOG_TRACE(" >> ");
        try {
            poco_assert(_instance);
            _instance->deliver(eventType, value);
        } catch (const std::exception& fault) {
            LOG_WARNING("Exception thrown from event consumer :%s", fault.what());
        } catch (...) {
            LOG_WARNING("Unknown exception thrown from event consumer");
        }
        LOG_TRACE(" << ");
        return VorReturnOk;
    }

  private:
    /// Calls the subscriber, unless the gate is closed.
    void deliver(const char* eventType, void* value) {
        if (_gate.enter()) {
            const std::unique_ptr<CallbackGate, void (*)(CallbackGate*)> inside(
                &_gate, [](CallbackGate* gate) { gate->leave(); });
            (_subscriber->*_method)(eventType, value);
        }
    }

    /// Null, with a warning, when there is no router; a look-up that throws finds none.
    VorOamSpiEventRouter_1* getInterface() {
        static const KelMgmtSpiInterface_1 router{"VorOamSpiEventService", "VorOamSpiEventRouter", "1"};
        try {
            return _portal->getInterface<VorOamSpiEventRouter_1>(router);
        } catch (...) {
            LOG_WARNING("Interface %s not found", router.interfaceName);
            return nullptr;
        }
    }

    /// Has the router carry out an operation. One that is not there, or throws, counts as one that refuses.
    template <class OperationT, class... ArgumentsT>
    static bool ask(VorOamSpiEventRouter_1* router, OperationT operation, ArgumentsT... arguments) {
        try {
            return router != nullptr && (router->*operation)(arguments...) == VorReturnOk;
        } catch (...) {
            return false;
        }
    }

    bool subscribe(VorOamSpiEventRouter_1* router, const std::vector<NameValuePair>& filter) {
        buildFilter(filter);
        _gate.open();
        _started = ask(router, &VorOamSpiEventRouter_1::addSubscription, _consumerHandle, _eventType.c_str(),
                       _filter);
        if (!_started) {
            unregister(router);
            forgetSubscription();
        }
        return _started;
    }

    bool unregister(VorOamSpiEventRouter_1* router) {
        return ask(router, &VorOamSpiEventRouter_1::unregisterConsumer, _consumerHandle, &_consumerRecord);
    }

    void forgetSubscription() {
        _gate.closeAndWait();
        _started = false;
        _memory.release();
        _filter = nullptr;
    }

    void buildFilter(const std::vector<NameValuePair>& filter) {
        _filter = _memory.allocate<KelNameValuePair*>(filter.size() + 1);
        for (std::size_t i = 0; i < filter.size(); ++i) {
            _filter[i] = _memory.create<NameValuePair>(filter[i]);
        }
    }

    inline static EventConsumer* _instance = nullptr;

    AutoMemory _memory;
    std::string _eventType;
    KelOamSpiEventConsumerHandleT _consumerHandle = 0;
    KelOamSpiEventConsumer _consumerRecord{};
    bool _started = false;
    SubscriberT* _subscriber = nullptr;
    Method _method = nullptr;
    KelNameValuePair** _filter = nullptr;
    Portal* _portal;
    CallbackGate _gate;
};

}  // namespace Vor
