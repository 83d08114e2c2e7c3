#include "PmEngine.h"

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include <Poco/String.h>
#include <gtest/gtest.h>

#include "ExtCmInterceptorRepository.h"
#include "PmInterceptor.h"
#include "Portal.h"
#include "ReportCheck.h"
#include "model/ModelFile.h"

namespace VorTest {

using VorNode::GpRecords;

namespace {

PmEngine* current = nullptr;

template <class DataT>
KelReturnT fetch(const char* what, std::uint64_t gpId, const DataT** data,
                 const DataT* (GpRecords::*tree)() const) {
    current->happened(what + std::to_string(gpId));
    const GpRecords* records = nullptr;
    const KelReturnT result = current->getGp(gpId, records);
    *data = records != nullptr ? (records->*tree)() : nullptr;
    return result;
}

KelReturnT handBack(const char* what, std::uint64_t gpId) {
    current->happened(what + std::to_string(gpId));
    return current->releaseGp(gpId);
}

std::unique_ptr<VorNode::Model> loadModel(const TemporaryRoot& root, const Texts& without) {
    std::string text = golden("engine-model.xml");
    for (const std::string& dn : without) {
        const std::size_t begin = std::min(text.find("<Object dn=\"" + dn + "\""), text.size());
        text.erase(begin, text.find("<Object", begin + 1) - begin);
    }
    writeFile(root.path() / "model.xml", text);
    return VorNode::loadModel(root.path() / "model.xml");
}

std::string textOf(const VorMoAttributeValueContainer_3* container) {
    std::string text;
    for (std::uint32_t i = 0; container != nullptr && i < container->valueCount; ++i)
        text += (i == 0 ? "" : " ") + std::to_string(container->values[i].number);
    return container != nullptr ? text : "none";
}

}  // namespace

PmEngine::PmEngine(const Texts& without)
    : model(loadModel(root, without)),
      pm1{{"Test", "VorOamSpiPm", "1"},
          [](auto gpId, auto data) { return fetch("getGp1 ", gpId, data, &GpRecords::version1); },
          [](auto gpId) { return handBack("releaseGp1 ", gpId); }},
      pm2{{"Test", "VorOamSpiPm", "2"},
          [](auto gpId, auto data) { return fetch("getGp2 ", gpId, data, &GpRecords::version2); },
          [](auto gpId) { return handBack("releaseGp2 ", gpId); }},
      getGp([this](auto gpId, auto*& records) { return (records = store.fetch(gpId)) != nullptr ? 0 : -2; }),
      releaseGp([this](auto gpId) { return store.release(gpId) ? 0 : -2; }) {
    current = this;
    ::setenv("TZ", "UTC0", 1);
    log.onLine = [this](const LogLine& line) { happened(line.operation + " " + Poco::trim(line.text)); };
    for (auto* identity : {&objectTable.identity, &routerTable.identity, &pm1.identity, &pm2.identity,
                           &transactions.table().identity, &repository.table().identity}) {
        const std::string name = std::string(identity->interfaceName) + " " + identity->interfaceVersion;
        if (std::find(without.begin(), without.end(), name) == without.end())
            registry.offer(*identity);
    }
    Vor::Portal::instance().connect(&VorNode::InterfaceRegistry::lookUp);
}

PmEngine::~PmEngine() {
    if (worker.isRunning())
        stop();
    EXPECT_TRUE(tasks == nullptr || announced > 0) << "a test without a GP";
    tasks.reset();
    expectReleases();
    Vor::Portal::instance().connect(nullptr);
}

void PmEngine::renew(const std::string& timer, const std::string& maxNoOfPmFiles) {
    const std::string path = root.path() / "configuration.xml";
    writeFile(path, "<VorPmComp><pmTimerExpirationTime>" + timer +
                        "</pmTimerExpirationTime><maxNoOfPmFiles>" + maxNoOfPmFiles +
                        "</maxNoOfPmFiles></VorPmComp>");
    root.createReportFolders();
    tasks.reset();
    config.load(path);
    collector.init();
    tasks = std::make_unique<VorPm::PmTaskManager>(collector, config);
}

void PmEngine::startWorker() {
    const int passes = count("handleExpiredTimer <<");
    worker.start(*tasks);
    await("handleExpiredTimer <<", passes + 1);
}

void PmEngine::stop() {
    tasks->stop();
    worker.join();
}

KelReturnT PmEngine::announce(const std::string& job, std::int64_t now, std::int64_t end) {
    const auto nanoseconds = [](std::int64_t seconds) { return (minute + seconds) * 1'000'000'000; };
    const VorNode::MeasurementData data{
        {"Load", {{"Load=1", {{"id", static_cast<std::int64_t>(++announced)}}}}}};
    store.add(job, (minute + end) * 1'000'000, std::chrono::minutes(1),
              std::make_unique<GpRecords>(data, VorNode::PmVersions::OneAndTwo));
    const std::string gone = job;
    const std::int64_t begin = end - (job == "Pressure" ? 300 : 60);
    VorOamSpiPmEventValue_1 event{announced, gone.c_str(), static_cast<std::uint64_t>(nanoseconds(begin)),
                                  static_cast<std::uint64_t>(nanoseconds(end))};
    WallClock::set(nanoseconds(now));
    const auto send = [&] { return router.send("VorOamSpiPmEventTypeGpReady_2", &event) == 1 ? 0 : -1; };
    const KelReturnT result = tasks != nullptr ? tasks->pushGp(event) : send();
    if (result == VorReturnOk)
        taken.push_back(event.gpId);
    return result;
}

std::string PmEngine::read(const Texts& attributes, const std::string& dn) const {
    struct Raw : VorExtCmRouterService::MoInterceptorBase {
        Raw() { initialize(); }
    } raw;
    const Vor::MoAccessor accessor(1, 60);
    const unsigned long handle = accessor.getTransaction();
    const auto found =
        VorExtCmRouterService::ExtCmInterceptorRepository::instance().find(VorPm::pmMeasCapsClassPath);
    VorExtCmRouterService::MoInterceptorBase& way = found != nullptr ? *found : raw;
    std::vector<const char*> names;
    for (const std::string& attribute : attributes)
        names.push_back(attribute.c_str());
    names.push_back(nullptr);
    VorMoAttributeValueResult_3 one{};
    VorMoAttributeValuesResult_3 many{};
    const KelReturnT code = attributes.size() == 1
                                ? way.getMoAttribute(handle, dn.c_str(), names[0], &one)
                                : way.getMoAttributes(handle, dn.c_str(), names.data(), &many);
    if (code != VorReturnOk)
        return "result " + std::to_string(code);
    std::string text;
    for (std::size_t i = 0; i < attributes.size(); ++i)
        text += (i == 0 ? "" : "/") + textOf(many.containers != nullptr ? many.containers[i] : one.container);
    if (one.release != nullptr && one.container != nullptr)
        one.release(one.container);
    if (many.release != nullptr)
        many.release(many.containers);
    return text;
}

void PmEngine::await(const std::string& what, int times) {
    awaitUnlessEnded(what, times);
    if (count(what) < times)
        throw std::runtime_error("did not happen: " + what);
}

void PmEngine::awaitUnlessEnded(const std::string& what, int times) {
    std::unique_lock lock(mutex);
    const std::chrono::milliseconds limit(deadline);
    if (!hasHappened.wait_for(lock, limit,
                              [&] { return happenings[what] >= times || happenings[workerEnded] > 0; }))
        throw std::runtime_error("did not happen: " + what);
}

void PmEngine::expectReleases() {
    for (const std::uint64_t id : taken)
        EXPECT_EQ(count("releaseGp1 " + std::to_string(id)) + count("releaseGp2 " + std::to_string(id)), 1)
            << id;
}

int PmEngine::count(const std::string& what) {
    std::lock_guard lock(mutex);
    return happenings[what];
}

void PmEngine::happened(const std::string& what) {
    if (onHappening)
        onHappening(what);
    std::lock_guard lock(mutex);
    ++happenings[what];
    hasHappened.notify_all();
}

Texts PmEngine::reports() const {
    Texts texts = TemporaryRoot::filesIn(root.reportFolder());
    for (std::string& text : texts) {
        const std::string report = readReport(root.reportFolder() / text), value = "<r p=\"1\">";
        EXPECT_EQ(faultIn(report), "") << text;
        text += ":";
        for (auto at = report.find(value); at != std::string::npos; at = report.find(value, at + 1))
            text += " " + std::to_string(std::stoi(report.substr(at + value.size())));
    }
    return texts;
}

}  // namespace VorTest
