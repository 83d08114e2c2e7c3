#include "counters/RecordedCounters.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include <Poco/Ascii.h>

#include "InputError.h"
#include "counters/CollectorOrder.h"
#include "counters/JsonNode.h"

namespace VorNode {

namespace {

/// Delivers the same data at every cut.
class RecordedJob final : public JobMeasurement {
  public:
    explicit RecordedJob(MeasurementData data) : _data(std::move(data)) {}

    void begin() override {}
    MeasurementData cut(Coverage) override { return _data; }

  private:
    const MeasurementData _data;
};

std::vector<std::int64_t> readIntegers(const JsonNode& array) {
    std::vector<std::int64_t> integers;
    array.forEachElement([&](const JsonNode& element) { integers.push_back(element.integer()); });
    return integers;
}

std::vector<double> readNumbers(const JsonNode& array) {
    std::vector<double> numbers;
    array.forEachElement([&](const JsonNode& element) { numbers.push_back(element.number()); });
    return numbers;
}

Nil readNil(const JsonNode& nil) {
    if (!nil.boolean()) {
        nil.fail("is false; write true, or another value in its place");
    }
    return {};
}

MeasuredValue readValue(const JsonNode& node) {
    std::vector<MeasuredValue> values;
    if (const auto integer = node.find("int")) {
        values.emplace_back(integer->integer());
    }
    if (const auto number = node.find("float")) {
        values.emplace_back(number->number());
    }
    if (const auto integers = node.find("ints")) {
        values.emplace_back(readIntegers(*integers));
    }
    if (const auto numbers = node.find("floats")) {
        values.emplace_back(readNumbers(*numbers));
    }
    if (const auto nil = node.find("nil")) {
        values.emplace_back(readNil(*nil));
    }
    if (values.size() != 1) {
        node.fail("has " + std::to_string(values.size()) +
                  R"( values; write exactly one of "int", "float", "ints", "floats", "nil")");
    }
    return std::move(values.front());
}

/// An XML name of ASCII characters.
bool isTypeName(std::string_view text) {
    constexpr std::string_view notFirst = "0123456789-.";
    constexpr std::string_view marks = "_:-.";
    return !text.empty() && notFirst.find(text.front()) == notFirst.npos &&
           std::all_of(text.begin(), text.end(),
                       [&](char c) { return Poco::Ascii::isAlphaNumeric(c) || marks.find(c) != marks.npos; });
}

std::string readType(const JsonNode& node) {
    std::string type = node.text();
    if (!isTypeName(type)) {
        node.fail(
            "is no XML name; write letters, digits, '_', ':', '-' and '.', with no digit, '-' or '.' first");
    }
    return type;
}

/// A report holds the name as it is.
std::string readClassName(const JsonNode& node) {
    std::string name = node.text();
    if (name.find_first_of("<&\"") != std::string::npos) {
        node.fail(R"(holds a '<', '&' or '"'; remove it)");
    }
    return name;
}

Measurement readMeasurement(const JsonNode& node) {
    node.expectKeys({"type", "int", "float", "ints", "floats", "nil", "suspect"});
    const auto suspect = node.find("suspect");
    return {readType(node.at("type")), readValue(node), suspect && suspect->boolean()};
}

MeasuredObject readObject(const JsonNode& node) {
    node.expectKeys({"ldn", "values"});
    MeasuredObject object{node.at("ldn").text(), {}};
    node.at("values").forEachElement(
        [&](const JsonNode& value) { object.values.push_back(readMeasurement(value)); });
    return object;
}

MeasuredClass readClass(const JsonNode& node) {
    node.expectKeys({"name", "objects"});
    MeasuredClass measured;
    if (const auto name = node.find("name")) {
        measured.name = readClassName(*name);
    }
    node.at("objects").forEachElement(
        [&](const JsonNode& object) { measured.objects.push_back(readObject(object)); });
    return measured;
}

MeasurementData readJob(const JsonNode& node) {
    node.expectKeys({"classes"});
    MeasurementData data;
    node.at("classes").forEachElement([&](const JsonNode& measured) { data.push_back(readClass(measured)); });
    return data;
}

bool needsVersion2(const MeasuredObject& object) {
    return std::any_of(object.values.begin(), object.values.end(), [](const Measurement& measurement) {
        return !std::holds_alternative<std::int64_t>(measurement.value) &&
               !std::holds_alternative<double>(measurement.value);
    });
}

std::string misfiledText(const MeasuredClass& measured, const std::string& jobId) {
    return (measured.name ? "class \"" + *measured.name + "\"" : "a class without name") + " of job " +
           jobId +
           ": collectors that go by the place of a type would file its values under other types; record its "
           "types in byte-wise order of their names, and all of them in every object";
}

}  // namespace

RecordedCounters::RecordedCounters(const std::filesystem::path& file) : _file(file.string()) {
    const nlohmann::json document = loadJson(file);
    const JsonNode root(_file, document);
    root.expectKeys({"jobs"});
    root.at("jobs").forEachMember(
        [&](const std::string& id, const JsonNode& job) { _jobs.emplace(id, readJob(job)); });
}

std::unique_ptr<JobMeasurement> RecordedCounters::startJob(const std::string& jobId,
                                                           const std::vector<std::string>&) {
    const auto job = _jobs.find(jobId);
    return std::make_unique<RecordedJob>(job == _jobs.end() ? MeasurementData{} : job->second);
}

std::vector<std::string> RecordedCounters::warnings(const std::vector<std::string>& jobIds) const {
    std::vector<std::string> warnings;
    for (const auto& [id, data] : _jobs) {
        if (std::find(jobIds.begin(), jobIds.end(), id) == jobIds.end()) {
            warnings.emplace_back(InputError(_file, lineOfValue(_file, {"jobs", id}),
                                             "the model has no active job " + id +
                                                 ", so its data is not reported; correct the id, or write a "
                                                 "PmJob object with it into the model")
                                      .what());
        }
    }
    for (const std::string& id : jobIds) {
        const auto job = _jobs.find(id);
        if (job == _jobs.end()) {
            continue;
        }
        for (const MeasuredClass& measured : job->second) {
            if (!readsTheSameByPlace(measured)) {
                warnings.push_back(_file + ": " + misfiledText(measured, id));
            }
        }
    }
    return warnings;
}

bool RecordedCounters::needsVersion2() const {
    for (const auto& [id, data] : _jobs) {
        for (const MeasuredClass& measured : data) {
            if (std::any_of(measured.objects.begin(), measured.objects.end(), VorNode::needsVersion2)) {
                return true;
            }
        }
    }
    return false;
}

}  // namespace VorNode
