#include "VorConfiguration.h"

#include <Poco/DOM/DOMBuilder.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>
#include <Poco/SAX/InputSource.h>
#include <Poco/SAX/Locator.h>
#include <Poco/SAX/SAXException.h>
#include <Poco/SAX/SAXParser.h>
#include <Poco/SAX/XMLFilterImpl.h>

#include "ParserGuard.h"
#include "VorException.h"

namespace Vor {

namespace {

/// Lets a document pass unless its elements are nested very deep: whatever walks through the document needs
/// stack for its depth.
class DepthLimit : public Poco::XML::XMLFilterImpl {
  public:
    using XMLFilterImpl::XMLFilterImpl;

    /// Throws what stopped the document, if anything did.
    void rethrowFault() const { _guard.rethrowFault(); }

    void setDocumentLocator(const Poco::XML::Locator* locator) override {
        _locator = locator;
        XMLFilterImpl::setDocumentLocator(locator);
    }

    void startElement(const Poco::XML::XMLString& uri, const Poco::XML::XMLString& localName,
                      const Poco::XML::XMLString& name, const Poco::XML::Attributes& attributes) override {
        _guard.carryOut([&] {
            if (++_depth > deepest) {
                throw Poco::XML::SAXParseException("Elements are nested more than 100 deep", *_locator);
            }
            XMLFilterImpl::startElement(uri, localName, name, attributes);
        });
    }

    void endElement(const Poco::XML::XMLString& uri, const Poco::XML::XMLString& localName,
                    const Poco::XML::XMLString& name) override {
        _guard.carryOut([&] {
            --_depth;
            XMLFilterImpl::endElement(uri, localName, name);
        });
    }

    void characters(const Poco::XML::XMLChar text[], int start, int length) override {
        _guard.carryOut([&] { XMLFilterImpl::characters(text, start, length); });
    }

  private:
    static constexpr int deepest = 100;

    const Poco::XML::Locator* _locator = nullptr;
    int _depth = 0;
    ParserGuard _guard;
};

/// Throws what the document is refused for.
Poco::AutoPtr<Poco::XML::Document> parse(Poco::XML::InputSource& source) {
    Poco::XML::SAXParser parser;
    parser.setFeature(Poco::XML::XMLReader::FEATURE_EXTERNAL_GENERAL_ENTITIES, false);
    parser.setFeature(Poco::XML::XMLReader::FEATURE_EXTERNAL_PARAMETER_ENTITIES, false);
    DepthLimit limited(&parser);
    try {
        Poco::AutoPtr<Poco::XML::Document> document = Poco::XML::DOMBuilder(limited).parse(&source);
        limited.rethrowFault();
        return document;
    } catch (const Poco::XML::SAXParseException&) {
        limited.rethrowFault();
        throw;
    }
}

}  // namespace

void VorConfiguration::load(const std::string& path) {
    unload();
    try {
        Poco::FileInputStream file(path);
        Poco::XML::InputSource source(file);
        source.setSystemId(path);
        _document = parse(source);
    } catch (const Poco::Exception& fault) {
        throw VorException("%s: %s", path.c_str(), fault.displayText().c_str());
    }
}

void VorConfiguration::unload() {
    _document = new Poco::XML::Document;
}

Poco::XML::NodeList* VorConfiguration::getElementsByTagName(const std::string& name) const {
    return _document->getElementsByTagName(name);
}

std::string VorConfiguration::get_text(const Poco::XML::Element* element) const {
    return element->innerText();
}

}  // namespace Vor
