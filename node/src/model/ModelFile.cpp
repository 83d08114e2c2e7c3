#include "model/ModelFile.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <set>
#include <string_view>
#include <utility>

#include <Poco/Environment.h>

#include "Findings.h"
#include "model/Dn.h"
#include "model/ReportTexts.h"
#include "model/XmlFile.h"

namespace VorNode {

namespace {

struct TypeText {
    std::string_view name;
    /// What a value looks like.
    std::string_view form;
};

/// In the order of `AttributeType`.
constexpr std::array<TypeText, 6> typeTexts{{
    {"string", "a text"},
    {"bool", "true or false"},
    {"uint16", "a whole number from 0 to 65535"},
    {"enum", "a whole number from -32768 to 32767"},
    {"ref",
     "a dn such as ManagedElement=1,SystemFunctions=1, its ids without quotes, '<', '&' and control "
     "characters"},
    {"struct", "<Member name=\"...\"> elements"},
}};
static_assert(typeTexts.size() == std::variant_size_v<AttributeValue>);

std::string quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// The elements' names with commas between them.
template <class ElementsT>
std::string namesOf(const ElementsT& elements) {
    std::string list;
    for (const auto& element : elements) {
        list.append(list.empty() ? "" : ", ").append(element.name);
    }
    return list;
}

template <class NumberT>
std::optional<AttributeValue> parseNumber(const std::string& text) {
    NumberT number{};
    const char* const end = text.data() + text.size();
    const auto [stop, fault] = std::from_chars(text.data(), end, number);
    return fault == std::errc() && stop == end ? std::optional<AttributeValue>(number) : std::nullopt;
}

std::optional<AttributeValue> parseBool(const std::string& text) {
    return text == "true" || text == "false" ? std::optional<AttributeValue>(text == "true") : std::nullopt;
}

/// The value of a type other than `Struct`; none when the text is no such value.
std::optional<AttributeValue> parseValue(AttributeType type, const std::string& text) {
    switch (type) {
        case AttributeType::String:
            return text;
        case AttributeType::Bool:
            return parseBool(text);
        case AttributeType::Uint16:
            return parseNumber<std::uint16_t>(text);
        case AttributeType::Enum:
            return parseNumber<std::int16_t>(text);
        case AttributeType::Ref:
            return isDn(text) ? std::optional<AttributeValue>(Reference{text}) : std::nullopt;
        case AttributeType::Struct:
            break;
    }
    return std::nullopt;
}

bool isEmpty(const XmlElement& element) {
    return element.text.empty() && element.children.empty();
}

/// Builds the model from the file's elements. One use.
class ModelReader {
  public:
    ModelReader(const std::string& path, const std::string& hostName) : _file(path), _hostName(hostName) {
        _model->source() = ModelSource(path);
    }

    std::unique_ptr<Model> read() {
        const XmlElement& root = _file.root();
        if (root.name != "Model") {
            _file.refuse(root, "the root element is <" + root.name + ">; write <Model>");
        }
        _file.expectAttributes(root, {});
        _file.expectChildren(root, {"Class", "Object"});
        _file.expectNoText(root);
        // All classes first: the file may give them in any order. Objects of a class that was refused would
        // be refused for that alone.
        readEach(root, "Class", &ModelReader::readClass);
        _findings.throwFaults();
        readEach(root, "Object", &ModelReader::readObject);
        _findings.throwFaults();
        checkReportNames(*_model, _findings);
        _findings.throwFaults();
        return std::move(_model);
    }

  private:
    void readEach(const XmlElement& root, std::string_view name,
                  void (ModelReader::*readOne)(const XmlElement&)) {
        for (const XmlElement& child : root.children) {
            if (child.name == name) {
                _findings.collect([&] { (this->*readOne)(child); });
            }
        }
    }

    void readClass(const XmlElement& element) {
        _file.expectAttributes(element, {"path"});
        expectNamedChildren(element, "Attribute");
        ClassDefinition definition{_file.requiredAttribute(element, "path", "ManagedElement,SystemFunctions"),
                                   {}};
        if (!isClassPath(definition.path)) {
            _file.refuse(element,
                         quoted(definition.path) +
                             " is no path of a class; write it as in ManagedElement,SystemFunctions");
        }
        _model->source().note(definition.path, "", element.line);
        for (const XmlElement& child : element.children) {
            definition.attributes.push_back(readDefinition(child));
            _model->source().note(definition.path, definition.attributes.back().name, child.line);
        }
        if (!_model->addClass(std::move(definition))) {
            _file.refuse(element,
                         "class " + element.attributes.at("path") + " is given twice; remove one of the two");
        }
    }

    AttributeDefinition readDefinition(const XmlElement& element) const {
        _file.expectAttributes(element, {"name", "type", "seq"});
        _file.expectChildren(element, {});
        _file.expectNoText(element);
        return {nameOf(element), readType(element), readArity(element)};
    }

    AttributeType readType(const XmlElement& element) const {
        const std::string& name = _file.requiredAttribute(element, "type", "string");
        const auto* const type =
            std::find_if(typeTexts.begin(), typeTexts.end(),
                         [&](const TypeText& candidate) { return candidate.name == name; });
        if (type == typeTexts.end()) {
            _file.refuse(element, quoted(name) + " is no type; write one of: " + namesOf(typeTexts));
        }
        return static_cast<AttributeType>(type - typeTexts.begin());
    }

    Arity readArity(const XmlElement& element) const {
        const auto seq = element.attributes.find("seq");
        if (seq == element.attributes.end() || seq->second == "false") {
            return Arity::Single;
        }
        if (seq->second != "true") {
            _file.refuse(element, "seq is " + quoted(seq->second) + "; write true or false");
        }
        return Arity::Sequence;
    }

    void readObject(const XmlElement& element) {
        _file.expectAttributes(element, {"dn"});
        expectNamedChildren(element, "Attribute");
        const std::string dn =
            expanded(element, _file.requiredAttribute(element, "dn", "ManagedElement=1,SystemFunctions=1"));
        const ClassDefinition& definition = classOf(element, dn);
        if (!_model->addObject(dn)) {
            _file.refuse(element, "object " + dn + " is given twice; remove one of the two");
        }
        _model->source().note(dn, "", element.line);
        std::vector<AttributeWrite> writes;
        for (const XmlElement& child : element.children) {
            _file.expectAttributes(child, {"name"});
            const AttributeDefinition* attribute = definition.find(nameOf(child));
            if (attribute == nullptr) {
                _file.refuse(child, "class " + definition.path + " has no attribute " +
                                        quoted(nameOf(child)) +
                                        "; add it there or write one of: " + namesOf(definition.attributes));
            }
            _model->source().note(dn, attribute->name, child.line);
            writes.push_back({dn, attribute->name, readValues(child, *attribute)});
            refuseUnreportable(child, definition, writes.back());
        }
        _model->commit(std::move(writes));
    }

    const ClassDefinition& classOf(const XmlElement& element, const std::string& dn) const {
        if (!isDn(dn)) {
            _file.refuse(element,
                         quoted(dn) + " is no dn; write " +
                             std::string(typeTexts[static_cast<std::size_t>(AttributeType::Ref)].form));
        }
        const std::string path = classPathOf(dn);
        const ClassDefinition* definition = _model->findClass(path);
        if (definition == nullptr) {
            _file.refuse(element, "object " + dn + " is of an unknown class; write a <Class path=\"" + path +
                                      "\"> or correct the dn");
        }
        return *definition;
    }

    /// An attribute without text and children has no value. A <Value> element always is one.
    AttributeValues readValues(const XmlElement& element, const AttributeDefinition& attribute) const {
        if (isEmpty(element)) {
            return {};
        }
        const bool single = attribute.arity == Arity::Single;
        if (single && (element.children.empty() || element.children.front().name != "Value")) {
            return {readValue(element, attribute)};
        }
        if (!element.text.empty()) {
            _file.refuse(element, quoted(attribute.name) + " holds the text " + quoted(element.text) +
                                      " outside of a <Value>; write each value into a <Value> of its own");
        }
        _file.expectChildren(element, {"Value"});
        AttributeValues values;
        for (const XmlElement& value : element.children) {
            _file.expectAttributes(value, {});
            values.push_back(readValue(value, attribute));
        }
        if (single && values.size() > 1) {
            _file.refuse(element, quoted(attribute.name) +
                                      " holds one value only; remove all but one, or write " +
                                      "seq=\"true\" in its class");
        }
        return values;
    }

    AttributeValue readValue(const XmlElement& element, const AttributeDefinition& attribute) const {
        if (attribute.type == AttributeType::Struct) {
            return readStruct(element);
        }
        _file.expectChildren(element, {});
        const std::optional<AttributeValue> value =
            parseValue(attribute.type, expanded(element, element.text));
        if (!value) {
            const TypeText& type = typeTexts[static_cast<std::size_t>(attribute.type)];
            _file.refuse(element, quoted(element.text) + " is no " + std::string(type.name) + " value for " +
                                      quoted(attribute.name) + "; write " + std::string(type.form));
        }
        return *value;
    }

    /// A member without text is not set.
    StructValue readStruct(const XmlElement& element) const {
        expectNamedChildren(element, "Member");
        StructValue members;
        for (const XmlElement& member : element.children) {
            _file.expectAttributes(member, {"name"});
            _file.expectChildren(member, {});
            if (!member.text.empty()) {
                members.emplace(nameOf(member), expanded(member, member.text));
            }
        }
        return members;
    }

    /// The text with what its '%' stand for.
    std::string expanded(const XmlElement& element, const std::string& text) const {
        std::string result;
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '%') {
                result += text[i];
                continue;
            }
            ++i;
            const std::string_view mark = std::string_view(text).substr(i, 1);
            if (mark != "%" && mark != "H") {
                _file.refuse(element, quoted("%" + std::string(mark)) + " in " + quoted(text) +
                                          " stands for nothing; write %H for the host's name, %% for a %");
            }
            if (mark == "H" && _hostName.empty()) {
                _file.refuse(element, "this host has no name for %H; give it one, or write the name itself");
            }
            result += mark == "%" ? mark : std::string_view(_hostName);
        }
        return result;
    }

    void refuseUnreportable(const XmlElement& element, const ClassDefinition& definition,
                            const AttributeWrite& write) const {
        if (const auto fault = faultInReport(definition.path, write.attribute, write.values)) {
            _file.refuse(element, write.attribute + " " + *fault);
        }
    }

    /// Refuses text, other children, and two children of the same name.
    void expectNamedChildren(const XmlElement& element, std::string_view child) const {
        _file.expectNoText(element);
        _file.expectChildren(element, {child});
        std::set<std::string> names;
        for (const XmlElement& candidate : element.children) {
            if (!names.insert(nameOf(candidate)).second) {
                _file.refuse(candidate, quoted(nameOf(candidate)) + " is given twice; remove one of the two");
            }
        }
    }

    const std::string& nameOf(const XmlElement& element) const {
        const std::string& name = _file.requiredAttribute(element, "name", "userLabel");
        if (!isName(name)) {
            _file.refuse(element, quoted(name) +
                                      " is no name; write letters, digits and '_', beginning with no digit");
        }
        return name;
    }

    XmlFile _file;
    const std::string& _hostName;
    std::unique_ptr<Model> _model = std::make_unique<Model>();
    Findings _findings;
};

}  // namespace

std::unique_ptr<Model> loadModel(const std::string& path) {
    return loadModel(path, Poco::Environment::nodeName());
}

std::unique_ptr<Model> loadModel(const std::string& path, const std::string& hostName) {
    return ModelReader(path, hostName).read();
}

}  // namespace VorNode
