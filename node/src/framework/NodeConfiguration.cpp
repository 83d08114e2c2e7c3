#include "framework/NodeConfiguration.h"

#include <initializer_list>
#include <string_view>
#include <utility>

#include "Findings.h"
#include "framework/ComponentSettings.h"
#include "model/XmlFile.h"

namespace VorNode {

namespace {

/// What each of a setting's texts stands for.
template <class T>
using Choices = std::initializer_list<std::pair<std::string_view, T>>;

/// Stores what the setting's text stands for; an absent setting leaves its default.
template <class T>
void readChoice(const XmlFile& file, const XmlElement& node, const std::string& name, Choices<T> choices,
                T& setting) {
    const XmlElement* element = file.child(node, name);
    if (element == nullptr) {
        return;
    }
    file.expectAttributes(*element, {});
    file.expectChildren(*element, {});
    std::string remedy = "; write one of";
    for (const auto& [text, meaning] : choices) {
        if (element->text == text) {
            setting = meaning;
            return;
        }
        remedy += " '" + std::string(text) + "'";
    }
    file.refuse(*element, name + " is '" + element->text + "'" + remedy);
}

void readNodeElement(const XmlFile& file, const XmlElement& node, NodeConfiguration& configuration,
                     Findings& findings) {
    findings.collect([&] { file.expectAttributes(node, {}); });
    findings.collect([&] { file.expectNoText(node); });
    findings.collect([&] { file.expectChildren(node, {"pmServiceVersions", "fileManagement"}); });
    findings.collect([&] {
        readChoice<PmVersions>(
            file, node, "pmServiceVersions",
            {{"1", PmVersions::One}, {"2", PmVersions::Two}, {"1 2", PmVersions::OneAndTwo}},
            configuration.pmServiceVersions);
        const XmlElement* versions = file.child(node, "pmServiceVersions");
        configuration.pmServiceVersionsLine = versions != nullptr ? versions->line : 0;
    });
    findings.collect([&] {
        readChoice<FileManagement>(file, node, "fileManagement",
                                   {{"absent", FileManagement::Absent}, {"present", FileManagement::Present}},
                                   configuration.fileManagement);
    });
}

}  // namespace

NodeConfiguration loadNodeConfiguration(const std::string& path, Findings& findings) {
    NodeConfiguration configuration;
    findings.collect([&] {
        const XmlFile file(path);
        checkComponentSettings(file, findings);
        if (const XmlElement* node = file.child(file.root(), "VorNode")) {
            readNodeElement(file, *node, configuration, findings);
        }
    });
    return configuration;
}

}  // namespace VorNode
