#include "framework/ComponentSettings.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include <Poco/String.h>

#include "Findings.h"
#include "model/XmlFile.h"

namespace VorNode {

namespace {

using Elements = std::vector<const XmlElement*>;

constexpr const char* componentElement = "VorPmComp";

/// A whole number in the notation that the component takes; white space around it counts.
std::optional<long> numberIn(const XmlElement& element) {
    std::string_view text = element.text;
    if (text.starts_with('+')) {
        text.remove_prefix(1);
    }
    long number = 0;
    const auto [stop, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = fault == std::errc() && stop == text.data() + text.size();
    return isWhole && !element.hasSpaceAround ? std::optional(number) : std::nullopt;
}

bool isWithin(std::optional<long> number, long first, long last) {
    return number && *number >= first && *number <= last;
}

bool isBoolean(const XmlElement& element) {
    const std::string word = Poco::toLower(element.text);
    return word == "true" || word == "false" || (word.empty() && !element.hasSpaceAround);
}

struct Setting {
    const char* name;
    const char* form;
    bool (*isUsable)(const XmlElement& element);
    /// What the component does otherwise, where it starts nevertheless.
    const char* otherwise = nullptr;
};

constexpr Setting settings[]{
    {"maxNoOfPmFiles", "a whole number from 0 to 65535, without white space around it",
     [](const XmlElement& element) { return isWithin(numberIn(element), 0, 65535); }},
    {"pmTimerExpirationTime", "a whole number from 1 to 50, without white space around it",
     [](const XmlElement& element) { return isWithin(numberIn(element), 1, 50); }, "50"},
    {"produceRopFilesInUtcFormat", "true or false", isBoolean},
};

template <class PredicateT>
void gather(const XmlElement& element, const PredicateT& isWanted, Elements& found) {
    if (isWanted(element)) {
        found.push_back(&element);
    }
    for (const XmlElement& child : element.children) {
        gather(child, isWanted, found);
    }
}

Elements elementsNamed(const XmlElement& element, const std::string& name) {
    Elements found;
    gather(
        element, [&name](const XmlElement& candidate) { return candidate.name == name; }, found);
    return found;
}

void report(const Setting& setting, const InputError& finding, Findings& findings) {
    if (setting.otherwise != nullptr) {
        findings.warn(finding);
    } else {
        findings.refuse(finding);
    }
}

void checkSetting(const XmlFile& file, const XmlElement& component, const Setting& setting,
                  Findings& findings) {
    const std::string otherwise =
        setting.otherwise != nullptr ? std::string("; ") + setting.otherwise + " may be taken instead" : "";
    const std::string name = setting.name;
    const Elements given = elementsNamed(component, name);
    if (given.size() > 1) {
        report(setting,
               file.finding(*given[1], name + " is given more than once; remove all but one" + otherwise),
               findings);
    } else if (!given.empty() && !setting.isUsable(*given.front())) {
        report(setting,
               file.finding(*given.front(),
                            name + " is '" + given.front()->text + "'; write " + setting.form + otherwise),
               findings);
    }
}

/// An element that holds others is a group: settings may stand at any depth.
void warnOfUnknown(const XmlFile& file, const XmlElement& component, Findings& findings) {
    const auto names = componentSettings();
    const auto isUnknown = [&](const XmlElement& element) {
        return &element != &component && element.children.empty() &&
               std::find(names.begin(), names.end(), element.name) == names.end();
    };
    Elements unknown;
    gather(component, isUnknown, unknown);
    for (const XmlElement* element : unknown) {
        findings.warn(file.finding(*element, "nobody reads the setting <" + element->name +
                                                 ">; remove it or write one of: " +
                                                 Poco::cat(std::string(", "), names.begin(), names.end())));
    }
}

}  // namespace

std::vector<std::string> componentSettings() {
    std::vector<std::string> names;
    for (const Setting& setting : settings) {
        names.emplace_back(setting.name);
    }
    return names;
}

void checkComponentSettings(const XmlFile& file, Findings& findings) {
    const Elements components = elementsNamed(file.root(), componentElement);
    if (components.size() != 1) {
        const XmlElement& place = components.empty() ? file.root() : *components[1];
        findings.refuse(file.finding(
            place, std::string(components.empty() ? "there is no" : "this is not the only") + " <" +
                       componentElement + ">; write exactly one, for the component's settings"));
        return;
    }
    const XmlElement& component = *components.front();
    for (const Setting& setting : settings) {
        checkSetting(file, component, setting, findings);
    }
    warnOfUnknown(file, component, findings);
}

}  // namespace VorNode
