#include "model/ReportTexts.h"

#include <algorithm>
#include <string_view>

#include "Findings.h"
#include "model/ClassPaths.h"

namespace VorNode {

namespace {

/// A file's name has 255 bytes: 30 for the times, one before the group, and seven for ".xml.gz".
constexpr std::size_t longestElementAndGroup = 217;

struct ReportText {
    std::string_view classPath;
    std::string_view attribute;
    /// Beside control characters.
    std::string_view refused;
};

constexpr std::string_view unescaped = "<&\"";
constexpr ReportText reportTexts[]{
    {elementClass, "networkManagedElementId", "<&\"/"},
    {elementClass, "managedElementId", "<&\"/"},
    {elementClass, "userLabel", unescaped},
    {elementClass, "dnPrefix", unescaped},
    {elementClass, "productIdentity", unescaped},
    {softwareVersionClass, "administrativeData", unescaped},
    {jobClass, "jobGroup", "/"},
};

bool isControl(char character) {
    constexpr unsigned char blank = 0x20;
    constexpr unsigned char del = 0x7f;
    const auto byte = static_cast<unsigned char>(character);
    return byte < blank || byte == del;
}

std::optional<std::string> faultInText(const std::string& text, std::string_view refused) {
    if (std::any_of(text.begin(), text.end(), isControl)) {
        return "holds a line feed, a tab or another control character, which a report cannot carry; write it "
               "without";
    }
    const std::size_t found = text.find_first_of(refused);
    if (found == text.npos) {
        return std::nullopt;
    }
    return "is \"" + text + "\"; a report or its name cannot carry the '" + text[found] +
           "'; write it without";
}

std::optional<std::string> faultInValue(const AttributeValue& value, std::string_view refused) {
    if (const auto* text = std::get_if<std::string>(&value)) {
        return faultInText(*text, refused);
    }
    if (const auto* members = std::get_if<StructValue>(&value)) {
        for (const auto& [name, text] : *members) {
            if (auto fault = faultInText(text, refused)) {
                return fault;
            }
        }
    }
    return std::nullopt;
}

std::string textOf(const Model& model, const std::string& dn, const std::string& attribute) {
    return model.readSingle<std::string>(dn, attribute).value_or("");
}

}  // namespace

std::optional<std::string> faultInReport(const std::string& classPath, const std::string& attribute,
                                         const AttributeValues& values) {
    for (const ReportText& candidate : reportTexts) {
        if (candidate.classPath == classPath && candidate.attribute == attribute) {
            for (const AttributeValue& value : values) {
                if (auto fault = faultInValue(value, candidate.refused)) {
                    return fault;
                }
            }
        }
    }
    return std::nullopt;
}

void checkReportNames(const Model& model, Findings& findings) {
    const auto elements = model.objectsOf(elementClass);
    if (elements.empty()) {
        return;
    }
    const std::string& element = elements.front();
    const std::string network = textOf(model, element, "networkManagedElementId");
    const std::string attribute = network.empty() ? "managedElementId" : "networkManagedElementId";
    const std::size_t idLength = textOf(model, element, attribute).size();
    const std::string rule = " bytes long; reports have names of 255 bytes at most: write at most " +
                             std::to_string(longestElementAndGroup) + " for both together";
    if (idLength > longestElementAndGroup) {
        findings.refuse(model.source().finding(element, attribute,
                                               "the element's id is " + std::to_string(idLength) + rule));
        return;
    }
    for (const std::string& job : model.objectsOf(jobClass)) {
        const std::size_t length = idLength + textOf(model, job, "jobGroup").size();
        if (length > longestElementAndGroup) {
            findings.refuse(model.source().finding(
                job, "jobGroup",
                "the element's id and the job's group are " + std::to_string(length) + rule));
        }
    }
}

}  // namespace VorNode
