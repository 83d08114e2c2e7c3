// The input is a file of recorded counters. What is accepted was told once, and fits into a report.
#include <nlohmann/json.hpp>

#include <Poco/Exception.h>
#include <Poco/SAX/SAXParser.h>

#include "FuzzSupport.h"
#include "InputError.h"
#include "counters/RecordedCounters.h"

namespace {

using nlohmann::json;
using VorFuzz::expect;

std::size_t countKeys(const json& value) {
    std::size_t keys = value.is_object() ? value.size() : 0;
    for (const json& part : value) {
        keys += part.is_structured() ? countKeys(part) : 0;
    }
    return keys;
}

/// Keys that are given twice are lost in the document.
bool tellsAllOnce(const std::string& text) {
    std::size_t keys = 0;
    const json document = json::parse(text, [&keys](int, json::parse_event_t event, const json&) {
        keys += event == json::parse_event_t::key ? 1 : 0;
        return true;
    });
    return countKeys(document) == keys;
}

bool isXml(const std::string& text) {
    try {
        Poco::XML::SAXParser parser;
        parser.setFeature(Poco::XML::XMLReader::FEATURE_NAMESPACES, false);
        parser.parseString(text);
        return true;
    } catch (const Poco::Exception&) {
        return false;
    }
}

/// Only a name can name an entity.
bool isXmlName(const std::string& text) {
    return isXml("<!DOCTYPE r [<!ENTITY " + text + " ''>]><r>&" + text + ";</r>");
}

bool isAttribute(const std::string& text) {
    return isXml("<r a=\"" + text + "\"/>");
}

/// Escaping takes care of these characters.
std::string withoutMarkup(std::string text) {
    std::erase_if(text, [](char c) { return std::string("<>&'\"").find(c) != std::string::npos; });
    return text;
}

void checkClass(const VorNode::MeasuredClass& measured) {
    expect(isAttribute(measured.name.value_or("")), "a class's name fits an attribute");
    for (const VorNode::MeasuredObject& object : measured.objects) {
        expect(isAttribute(withoutMarkup(object.ldn)), "an object's name fits an attribute, escaped");
        for (const VorNode::Measurement& measurement : object.values) {
            expect(isXmlName(measurement.type), "a type is an XML name");
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text = VorFuzz::textOf(data, size);
    const VorFuzz::InputFile file(text);
    try {
        VorNode::RecordedCounters counters(file.path());
        expect(tellsAllOnce(text), "no key is given twice");
        for (const auto& measured : counters.startJob("J1", {})->cut(VorNode::Coverage::Whole)) {
            checkClass(measured);
        }
    } catch (const VorNode::InputError& refusal) {
        expect(std::string(refusal.what()).starts_with(file.path()), "a refusal names the file");
    }
    return 0;
}
