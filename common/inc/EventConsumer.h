#pragma once

#include <Poco/Bugcheck.h>
#include <Poco/Condition.h>
#include <Poco/Mutex.h>

#include <exception>
#include <string>
#include <vector>

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

/// One subscription to one event type, forwarded to a member function of its subscriber. At most one object of an
/// instantiation lives at a time. `start` and `stop` run on the component's thread, never inside a callback;
/// callbacks run on the router's threads. After `stop` no callback is running or will run.
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
        stop();
        _eventType = eventType;
        _subscriber = &subscriber;
        _method = method;
        _consumerRecord.notify = &notifyCallback;
        _started = subscribe(filter);
        LOG_TRACE(" << ");
    }

    /// Unsubscribes and unregisters, waits for callbacks that are running, and gives the filter up.
    void stop() {
        LOG_TRACE(" >> ");
        if (_started) {
            unsubscribe(getInterface());
            forgetSubscription();
        }
        LOG_TRACE(" << ");
    }

    /// Called by the router; always 0.
    static KelReturnT notifyCallback(KelOamSpiEventConsumerHandleT /*handle*/, const char* eventType,
                                     KelNameValuePairT** /*filter*/, void* value) {
        LOG_TRACE(" >> ");
        poco_assert(_instance);
        if (_instance->_gate.enter()) {
            try {
                (_instance->_subscriber->*_instance->_method)(eventType, value);
            } catch (const std::exception& fault) {
                LOG_WARNING("Exception thrown from event consumer :%s", fault.what());
            } catch (...) {
                LOG_WARNING("Unknown exception thrown from event consumer");
            }
            _instance->_gate.leave();
        }
        LOG_TRACE(" << ");
        return VorReturnOk;
    }

  private:
    VorOamSpiEventRouter_1* getInterface() {
        static const KelMgmtSpiInterface_1 router{"VorOamSpiEventService", "VorOamSpiEventRouter", "1"};
        return _portal->getInterface<VorOamSpiEventRouter_1>(router);
    }

    bool subscribe(const std::vector<NameValuePair>& filter) {
        VorOamSpiEventRouter_1* router = getInterface();
        if (router == nullptr || router->registerConsumer(&_consumerRecord, &_consumerHandle) != VorReturnOk) {
            LOG_ERROR("Could not register consumer");
            return false;
        }
        buildFilter(filter);
        _gate.open();
        if (router->addSubscription(_consumerHandle, _eventType.c_str(), _filter) != VorReturnOk) {
            LOG_ERROR("Could not add subscription");
            router->unregisterConsumer(_consumerHandle, &_consumerRecord);
            forgetSubscription();
            return false;
        }
        return true;
    }

    void unsubscribe(VorOamSpiEventRouter_1* router) {
        if (router == nullptr ||
            router->removeSubscription(_consumerHandle, _eventType.c_str(), _filter) != VorReturnOk) {
            LOG_TRACE("Could not unregister event subscription, eventType %s", _eventType.c_str());
        }
        if (router == nullptr || router->unregisterConsumer(_consumerHandle, &_consumerRecord) != VorReturnOk) {
            LOG_TRACE("Could not unregister event consumer, eventType %s", _eventType.c_str());
        }
    }

    void forgetSubscription() {
        _gate.closeAndWait();
        _started = false;
        _memory.release();
        _filter = nullptr;
    }

    void buildFilter(const std::vector<NameValuePair>& filter) {
        _filter = static_cast<KelNameValuePair**>(_memory.allocate(filter.size() + 1, sizeof(KelNameValuePair*)));
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
