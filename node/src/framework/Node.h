#pragma once

#include <filesystem>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "Findings.h"
#include "framework/ComponentFramework.h"
#include "framework/ComponentLibrary.h"
#include "framework/InstallPaths.h"
#include "framework/InterfaceRegistry.h"
#include "framework/NodeInput.h"
#include "framework/NodeRoot.h"
#include "services/EventRouter.h"
#include "services/LogService.h"
#include "services/ManagedObjectService.h"
#include "services/ManagementClient.h"
#include "services/ModelRepositoryService.h"
#include "services/PmService.h"
#include "services/TransactionService.h"

namespace VorNode {

class MeasurementProducer;
class PmServiceListener;

struct NodeOptions {
    std::filesystem::path configuration;
    std::filesystem::path model;
    std::filesystem::path root;
    std::filesystem::path library;
    /// The folder of the node's own `vorea`.
    std::filesystem::path commands;
    int logLevel = 6;
};

/// The platform in one process: the services, and the component that runs on them. At most one at a time.
/// Owned by the application and used by its thread.
class Node {
  public:
    /// Prepares everything and loads the component. Throws `InputError`, with all faults of configuration and
    /// model, when something that was given cannot be used, a dependency of the component that nobody offers
    /// included. The producer, the listener and the
    /// stream for log lines outlive the node.
    Node(const NodeOptions& options, MeasurementProducer& producer, PmServiceListener& listener,
         std::ostream& log);

    /// Stops what runs.
    ~Node();
    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    /// Starts the component. Throws `InputError` when it refuses; it is stopped then.
    void startComponent();

    /// Starts the component, then the measurement jobs. Throws as `startComponent` does; everything is
    /// stopped then.
    void start();

    /// Stops announcing, then the component, which publishes what is open. Throws `std::runtime_error`, with
    /// all stopped, when the component reports a failure. Does nothing when nothing runs.
    void stop();

    /// What people should know before the start: each names the place and what to do.
    const std::vector<std::string>& warnings() const { return _findings.warnings(); }
    const NodeRoot& root() const { return _root; }
    const std::vector<MeasurementJob>& jobs() const { return _input.jobs; }
    const PmService& pmService() const { return _pmService; }
    const LogService& log() const { return _log; }
    const ManagementClient& client() const { return _client; }

  private:
    /// The way of the platform library, and the component through it, to this node's services.
    class PlatformConnection {
      public:
        explicit PlatformConnection(LogService& log);
        ~PlatformConnection();
        PlatformConnection(const PlatformConnection&) = delete;
        PlatformConnection& operator=(const PlatformConnection&) = delete;
    };

    void offerServices();
    void loadComponent(const NodeOptions& options);
    /// The component's result.
    KelReturnT shutDown();

    /// Runs a step of the start; everything is stopped when it fails.
    template <class StepT>
    void startStep(StepT step);

    Findings _findings;
    const NodeInput _input;
    NodeRoot _root;
    LogService _log;
    TransactionService _transactions;
    ManagedObjectService _managedObjects;
    ManagementClient _client;
    ModelRepositoryService _modelRepository;
    EventRouter _router;
    PmService _pmService;
    InterfaceRegistry _registry;
    ComponentFramework _framework;
    PlatformConnection _connection{_log};
    ComponentLibrary _component;
    bool _running = false;
};

}  // namespace VorNode
