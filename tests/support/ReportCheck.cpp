#include "ReportCheck.h"

#include <map>
#include <set>

#include <Poco/AutoPtr.h>
#include <Poco/DOM/DOMParser.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/DOM/NodeList.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>
#include <Poco/InflatingStream.h>
#include <Poco/StreamCopier.h>

#include "TemporaryRoot.h"

namespace VorTest {

namespace {

using Poco::XML::Element;

Element* elementAt(const Poco::AutoPtr<Poco::XML::NodeList>& list, unsigned long index) {
    return static_cast<Element*>(list->item(index));
}

std::string faultInClass(Element& measInfo) {
    std::set<std::string> numbers;
    const Poco::AutoPtr<Poco::XML::NodeList> types = measInfo.getElementsByTagName("measType");
    for (unsigned long i = 0; i < types->length(); ++i)
        if (!numbers.insert(elementAt(types, i)->getAttribute("p")).second)
            return "measType number given twice";
    const Poco::AutoPtr<Poco::XML::NodeList> values = measInfo.getElementsByTagName("r");
    for (unsigned long i = 0; i < values->length(); ++i)
        if (!numbers.contains(elementAt(values, i)->getAttribute("p")))
            return "r without its measType";
    return "";
}

/// The text of each element, by what `key` makes of the element and its place from 1.
template <class KeyT>
std::map<std::string, std::string> textsBy(Element& parent, const std::string& name, KeyT key) {
    std::map<std::string, std::string> texts;
    const Poco::AutoPtr<Poco::XML::NodeList> found = parent.getElementsByTagName(name);
    for (unsigned long i = 0; i < found->length(); ++i)
        texts[key(*elementAt(found, i), std::to_string(i + 1))] = elementAt(found, i)->innerText();
    return texts;
}

template <class KeyT>
std::vector<std::string> valuesBy(const std::string& report, KeyT key) {
    std::vector<std::string> values;
    Poco::XML::DOMParser parser;
    const Poco::AutoPtr<Poco::XML::Document> document = parser.parseString(report);
    const Poco::AutoPtr<Poco::XML::NodeList> classes = document->getElementsByTagName("measInfo");
    for (unsigned long i = 0; i < classes->length(); ++i) {
        Element& measInfo = *elementAt(classes, i);
        auto types = textsBy(measInfo, "measType", key);
        const Poco::AutoPtr<Poco::XML::NodeList> objects = measInfo.getElementsByTagName("measValue");
        for (unsigned long j = 0; j < objects->length(); ++j)
            for (const auto& [number, text] : textsBy(*elementAt(objects, j), "r", key))
                values.push_back(measInfo.getAttribute("measInfoId") + " " +
                                 elementAt(objects, j)->getAttribute("measObjLdn") + " " + types[number] +
                                 " " + text);
    }
    return values;
}

}  // namespace

std::vector<std::string> valuesByNumber(const std::string& report) {
    return valuesBy(report, [](const Element& element, const std::string& /*place*/) {
        return std::string(element.getAttribute("p"));
    });
}

std::vector<std::string> valuesByPlace(const std::string& report) {
    return valuesBy(report, [](const Element& /*element*/, const std::string& place) { return place; });
}

std::string faultIn(const std::string& report) {
    try {
        Poco::XML::DOMParser parser;
        const Poco::AutoPtr<Poco::XML::Document> document = parser.parseString(report);
        for (const char* part : {"fileHeader", "measData", "fileFooter"}) {
            const Poco::AutoPtr<Poco::XML::NodeList> found = document->getElementsByTagName(part);
            if (found->length() != 1)
                return std::string("not exactly one ") + part;
        }
        const Poco::AutoPtr<Poco::XML::NodeList> classes = document->getElementsByTagName("measInfo");
        for (unsigned long i = 0; i < classes->length(); ++i)
            if (const std::string fault = faultInClass(*elementAt(classes, i)); !fault.empty())
                return fault;
        return report.ends_with("</measCollecFile>\n") ? "" : "does not end with its last tag";
    } catch (const Poco::Exception& fault) {
        return fault.displayText();
    }
}

std::string readReport(const std::filesystem::path& path) {
    if (path.extension() != ".gz")
        return readFile(path);
    Poco::FileInputStream file(path.string(), std::ios::in | std::ios::binary);
    Poco::InflatingInputStream unpacked(file, Poco::InflatingStreamBuf::STREAM_GZIP);
    std::string text;
    Poco::StreamCopier::copyToString(unpacked, text);
    return text;
}

}  // namespace VorTest
