#include "framework/NodeConfiguration.h"

#include "model/XmlFile.h"

namespace VorNode {

namespace {

PmVersions readVersions(const XmlFile& file, const XmlElement& element) {
    file.expectAttributes(element, {});
    file.expectChildren(element, {});
    if (element.text == "1") {
        return PmVersions::One;
    }
    if (element.text == "2") {
        return PmVersions::Two;
    }
    if (element.text == "1 2") {
        return PmVersions::OneAndTwo;
    }
    file.refuse(element, "pmServiceVersions is '" + element.text + "'; write 1, 2 or 1 2");
}

}  // namespace

NodeConfiguration loadNodeConfiguration(const std::string& path) {
    const XmlFile file(path);
    NodeConfiguration configuration;
    if (const XmlElement* node = file.child(file.root(), "VorNode")) {
        file.expectAttributes(*node, {});
        file.expectNoText(*node);
        file.expectChildren(*node, {"pmServiceVersions"});
        if (const XmlElement* versions = file.child(*node, "pmServiceVersions")) {
            configuration.pmServiceVersions = readVersions(file, *versions);
        }
    }
    return configuration;
}

}  // namespace VorNode
