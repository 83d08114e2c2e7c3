#include "model/XmlFile.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <utility>

#include <Poco/SAX/Attributes.h>
#include <Poco/SAX/DefaultHandler.h>
#include <Poco/SAX/InputSource.h>
#include <Poco/SAX/Locator.h>
#include <Poco/SAX/SAXException.h>
#include <Poco/SAX/SAXParser.h>
#include <Poco/String.h>

#include "InputError.h"
#include "InputFile.h"
#include "ParserGuard.h"

namespace VorNode {

namespace {

/// Builds the tree while the parser walks through the file.
class TreeBuilder : public Poco::XML::DefaultHandler {
  public:
    explicit TreeBuilder(const std::string& path) : _path(path) {}

    /// Throws what stopped the building, if anything did.
    void rethrowFault() const { _guard.rethrowFault(); }

    XmlElement takeRoot() { return std::move(_root); }

    void setDocumentLocator(const Poco::XML::Locator* locator) override { _locator = locator; }

    void startElement(const Poco::XML::XMLString&, const Poco::XML::XMLString&,
                      const Poco::XML::XMLString& name, const Poco::XML::Attributes& attributes) override {
        _guard.carryOut([&] { open(name, attributes); });
    }

    void endElement(const Poco::XML::XMLString&, const Poco::XML::XMLString&,
                    const Poco::XML::XMLString&) override {
        _guard.carryOut([&] { close(); });
    }

    void characters(const Poco::XML::XMLChar text[], int start, int length) override {
        _guard.carryOut([&] { _open.back().text.append(text + start, static_cast<std::size_t>(length)); });
    }

  private:
    /// Far more than any file needs. What walks through a tree needs stack for its depth.
    static constexpr std::size_t deepest = 100;

    void open(const Poco::XML::XMLString& name, const Poco::XML::Attributes& attributes) {
        if (_open.size() == deepest) {
            throw InputError(
                _path, _locator->getLineNumber(),
                "elements are nested more than " + std::to_string(deepest) + " deep; correct the file there");
        }
        XmlElement element;
        element.name = name;
        element.line = _locator->getLineNumber();
        for (int i = 0; i < attributes.getLength(); ++i) {
            element.attributes.emplace(attributes.getQName(i), attributes.getValue(i));
        }
        _open.push_back(std::move(element));
    }

    void close() {
        XmlElement element = std::move(_open.back());
        _open.pop_back();
        const std::size_t length = element.text.size();
        Poco::trimInPlace(element.text);
        element.hasSpaceAround = element.text.size() != length;
        if (_open.empty()) {
            _root = std::move(element);
        } else {
            _open.back().children.push_back(std::move(element));
        }
    }

    const std::string& _path;
    const Poco::XML::Locator* _locator = nullptr;
    /// From the root down to the element that is being read.
    std::vector<XmlElement> _open;
    XmlElement _root;
    Vor::ParserGuard _guard;
};

XmlElement parse(const std::string& path) {
    using Poco::XML::XMLReader;
    std::istringstream text(readInputFile(path, "an XML file"));
    Poco::XML::InputSource source(text);
    Poco::XML::SAXParser parser;
    TreeBuilder builder(path);
    // Names are taken as they are written: a declaration of a name space is an unknown attribute like any
    // other.
    parser.setFeature(XMLReader::FEATURE_NAMESPACES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_GENERAL_ENTITIES, false);
    parser.setFeature(XMLReader::FEATURE_EXTERNAL_PARAMETER_ENTITIES, false);
    parser.setContentHandler(&builder);
    try {
        parser.parse(&source);
    } catch (const Poco::XML::SAXParseException& fault) {
        builder.rethrowFault();
        throw InputError(path, fault.getLineNumber(),
                         "is not well-formed XML (" + fault.message() + "); correct the file there");
    } catch (const Poco::Exception& fault) {
        throw InputError(path, 0, "cannot be read as XML (" + fault.displayText() + "); correct the file");
    }
    builder.rethrowFault();
    return builder.takeRoot();
}

bool isAmong(std::initializer_list<std::string_view> names, std::string_view name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// The remedy for a name that is none of those allowed.
std::string proposal(std::initializer_list<std::string_view> names) {
    std::string list;
    for (const std::string_view name : names) {
        list.append(list.empty() ? "" : ", ").append(name);
    }
    return names.size() == 0 ? "; remove it" : "; remove it or write one of: " + list;
}

}  // namespace

XmlFile::XmlFile(const std::string& path) : _path(path), _root(parse(path)) {}

InputError XmlFile::finding(const XmlElement& element, const std::string& text) const {
    return {_path, element.line, text};
}

void XmlFile::refuse(const XmlElement& element, const std::string& text) const {
    throw finding(element, text);
}

const XmlElement* XmlFile::child(const XmlElement& element, const std::string& name) const {
    const XmlElement* found = nullptr;
    for (const XmlElement& candidate : element.children) {
        if (candidate.name == name) {
            if (found != nullptr) {
                refuse(candidate,
                       "<" + name + "> is given twice within <" + element.name + ">; remove one of the two");
            }
            found = &candidate;
        }
    }
    return found;
}

const std::string& XmlFile::requiredAttribute(const XmlElement& element, const std::string& name,
                                              const std::string& example) const {
    const auto attribute = element.attributes.find(name);
    if (attribute == element.attributes.end()) {
        refuse(element, "<" + element.name + "> has no '" + name + "'; write it as in <" + element.name +
                            " " + name + "=\"" + example + "\">");
    }
    return attribute->second;
}

void XmlFile::expectAttributes(const XmlElement& element,
                               std::initializer_list<std::string_view> names) const {
    for (const auto& [name, value] : element.attributes) {
        if (!isAmong(names, name)) {
            refuse(element,
                   "<" + element.name + "> has the unknown XML attribute '" + name + "'" + proposal(names));
        }
    }
}

void XmlFile::expectChildren(const XmlElement& element, std::initializer_list<std::string_view> names) const {
    for (const XmlElement& candidate : element.children) {
        if (!isAmong(names, candidate.name)) {
            refuse(candidate, "unknown element <" + candidate.name + "> within <" + element.name + ">" +
                                  proposal(names));
        }
    }
}

void XmlFile::expectNoText(const XmlElement& element) const {
    if (!element.text.empty()) {
        refuse(element,
               "<" + element.name + "> holds the text \"" + element.text + "\" of its own; remove it");
    }
}

}  // namespace VorNode
