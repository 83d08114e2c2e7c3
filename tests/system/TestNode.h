#pragma once

#include <condition_variable>
#include <filesystem>
#include <map>
#include <memory>
#include <mutex>
#include <sstream>
#include <string>
#include <vector>

#include "TemporaryRoot.h"
#include "WallClock.h"
#include "counters/MeasurementProducer.h"
#include "framework/Node.h"
#include "services/PmServiceListener.h"

namespace VorTest {

/// Waits for what the PM service does with GPs.
class GpWatch : public VorNode::PmServiceListener {
  public:
    /// True as soon as so many GPs were released; false when that takes longer than a generous deadline.
    bool waitForReleases(int count);

    void gpReleased(const VorNode::GpInfo& gp) override;

  private:
    std::mutex _mutex;
    std::condition_variable _changed;
    int _released = 0;
};

/// A whole node in this process: the real library and services on a temporary root. Its jobs are J1, which
/// measures memory, and J2, which measures the load, each minute; its zone is one hour east of UTC. The files
/// are written when the object is made and may be replaced until `start`.
class TestNode {
  public:
    /// Collection phases end in the first second of the minute; `nodeSettings` go into the node's own
    /// element.
    explicit TestNode(const std::string& nodeSettings = "");
    ~TestNode();
    TestNode(const TestNode&) = delete;
    TestNode& operator=(const TestNode&) = delete;

    /// Replaces the jobs; periods are the model's numbers.
    void runJobs(const std::map<std::string, int>& periodByJob) const;

    /// Starts with recorded counters.
    void start(const std::string& countersJson);
    void start(std::unique_ptr<VorNode::MeasurementProducer> producer);

    /// Stops and checks that every delivered GP was released.
    void stop();

    /// Waits until the report folder holds so many reports.
    bool waitForReports(std::size_t count) const;

    /// The names in the report folder.
    std::vector<std::string> reports() const { return TemporaryRoot::filesIn(_root.reportFolder()); }

    /// The log so far; only after `stop`.
    std::string log() const { return _log.str(); }
    const TemporaryRoot& root() const { return _root; }

    /// What a client reads of the measurement capabilities: values with ", " between them.
    std::string read(const std::string& attribute) const;

    /// Replaces what matches the regular expression in a file of the node.
    static void edit(const std::filesystem::path& file, const std::string& pattern,
                     const std::string& replacement);
    std::filesystem::path modelFile() const { return _root.path() / "model.xml"; }
    std::filesystem::path configurationFile() const { return _root.path() / "node.xml"; }
    VorNode::NodeOptions options() const;

    GpWatch gps;

  private:
    TemporaryRoot _root;
    std::ostringstream _log;
    std::unique_ptr<VorNode::MeasurementProducer> _producer;
    std::unique_ptr<VorNode::Node> _node;
    bool _started = false;
};

/// Nanoseconds since the epoch of an ISO 8601 time with zone.
std::int64_t at(const std::string& iso);

}  // namespace VorTest
