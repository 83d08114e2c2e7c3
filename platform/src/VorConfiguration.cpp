#include "VorConfiguration.h"

#include <Poco/DOM/DOMParser.h>
#include <Poco/Exception.h>
#include <Poco/FileStream.h>
#include <Poco/SAX/InputSource.h>
#include <Poco/SAX/XMLReader.h>

#include "VorException.h"

namespace Vor {

void VorConfiguration::load(const std::string& path) {
    unload();
    try {
        Poco::FileInputStream file(path);
        Poco::XML::InputSource source(file);
        source.setSystemId(path);
        Poco::XML::DOMParser parser;
        parser.setFeature(Poco::XML::XMLReader::FEATURE_EXTERNAL_GENERAL_ENTITIES, false);
        parser.setFeature(Poco::XML::XMLReader::FEATURE_EXTERNAL_PARAMETER_ENTITIES, false);
        _document = parser.parse(&source);
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
