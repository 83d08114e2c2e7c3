#include "framework/Node.h"

#include <stdexcept>

#include "InputError.h"
#include "LoggingWrapper.h"
#include "Portal.h"

namespace VorNode {

namespace {

/// All that is at fault is told at once, before anything is locked or started.
NodeInput usableInput(const NodeOptions& options, MeasurementProducer& producer, Findings& findings) {
    NodeInput input = readNodeInput(options.configuration, options.model, findings);
    if (input.model) {
        checkMeasuring(input, producer, findings);
    }
    findings.throwFaults();
    return input;
}

}  // namespace

Node::Node(const NodeOptions& options, MeasurementProducer& producer, PmServiceListener& listener,
           std::ostream& log)
    : _input(usableInput(options, producer, _findings)),
      _root(options.root),
      _log(log),
      _transactions(*_input.model),
      _managedObjects(*_input.model, _transactions),
      _client(*_input.model, _transactions, _managedObjects),
      _modelRepository(*_input.model),
      _pmService(_input.configuration.pmServiceVersions, _input.jobs, producer, _router, listener),
      _framework(_registry),
      _component(options.library) {
    Vor::LoggingWrapper::instance().setLevel(options.logLevel);
    offerServices();
    _root.serveQueries(options.commands);
    loadComponent(options);
}

Node::~Node() {
    shutDown();
}

Node::PlatformConnection::PlatformConnection(LogService& log) {
    Vor::LoggingWrapper::instance().connect(reinterpret_cast<const VorMwSpiLog_1*>(&log.logInterface()),
                                            reinterpret_cast<const KelMwSpiTrace*>(&log.traceInterface()));
    Vor::Portal::instance().connect(&InterfaceRegistry::lookUp);
}

Node::PlatformConnection::~PlatformConnection() {
    Vor::Portal::instance().connect(nullptr);
    Vor::LoggingWrapper::instance().connect(nullptr, nullptr);
}

void Node::offerServices() {
    // The component's list of dependencies has other names for the router than its look-ups.
    static const KelMgmtSpiInterface_1 routerAsDependency{"KelOamSpiEventService", "KelOamSpiEventRouter",
                                                          "1"};
    // The objects of file management are in the node's own model.
    static const KelMgmtSpiInterface_1 fileManagement{"VorFileManagementComponent", "VorOamSpiManagedObject",
                                                      "3"};
    _registry.offerAs(Vor::Portal::COMP_ID, _framework.portalInterface());
    _registry.offer(_log.logInterface());
    _registry.offer(_log.traceInterface());
    _registry.offer(_router.table().identity);
    _registry.offerAs(routerAsDependency, _router.table().identity);
    _registry.offer(_transactions.table().identity);
    _registry.offer(_managedObjects.table().identity);
    _registry.offer(_modelRepository.table().identity);
    if (_input.configuration.fileManagement == FileManagement::Present) {
        _registry.offerAs(fileManagement, _managedObjects.table().identity);
    }
    for (KelMgmtSpiInterface_1* version : _pmService.interfaces()) {
        _registry.offer(*version);
    }
}

void Node::loadComponent(const NodeOptions& options) {
    const KelReturnT result = _component.init(_framework.portalAccessor(), options.configuration);
    if (result != VorReturnOk) {
        throw InputError(options.configuration, 0,
                         "the component refused this configuration (result " + std::to_string(result) +
                             "); the log above tells why");
    }
    if (!_framework.isRegistered()) {
        throw InputError(options.library, 0,
                         "registered no component; name the component's library with --library");
    }
    if (const auto missing = _framework.missingDependency()) {
        throw InputError(options.library, 0,
                         "the component depends on " + *missing + ", which this node does not offer");
    }
}

template <class StepT>
void Node::startStep(StepT step) {
    try {
        step();
    } catch (...) {
        shutDown();
        throw;
    }
}

void Node::startComponent() {
    _running = true;
    startStep([this] {
        const KelReturnT result = _framework.startComponent();
        if (result != VorReturnOk) {
            throw InputError("the component did not start (result " + std::to_string(result) +
                             "); the log above tells why");
        }
    });
}

void Node::start() {
    startComponent();
    startStep([this] { _pmService.start(); });
}

void Node::stop() {
    const KelReturnT result = shutDown();
    if (result != VorReturnOk) {
        throw std::runtime_error("the component did not stop cleanly (result " + std::to_string(result) +
                                 "); the log above tells why");
    }
}

KelReturnT Node::shutDown() {
    if (!_running) {
        return VorReturnOk;
    }
    _running = false;
    _pmService.stopAnnouncing();
    return _framework.stopComponent();
}

}  // namespace VorNode
