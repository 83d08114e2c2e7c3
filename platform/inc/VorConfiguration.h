#pragma once

#include <string>

#include <Poco/AutoPtr.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/DOM/NodeList.h>

namespace Vor {

/// A configuration file, parsed. Not safe for several threads, not even for reading: the XML library counts
/// references without synchronisation.
class VorConfiguration {
  public:
    VorConfiguration() = default;
    virtual ~VorConfiguration() = default;
    VorConfiguration(const VorConfiguration&) = delete;
    VorConfiguration& operator=(const VorConfiguration&) = delete;

    /// Parses the file, in place of what was loaded before. Throws `VorException` naming the file when it
    /// cannot be read, is not well-formed or nests elements more than 100 deep; nothing is loaded then.
    /// External entities are not fetched.
    void load(const std::string& path);
    void unload();

    /// The document's elements of that name, none when nothing is loaded; the caller releases the list.
    Poco::XML::NodeList* getElementsByTagName(const std::string& name) const;
    std::string get_text(const Poco::XML::Element* element) const;

  private:
    Poco::AutoPtr<Poco::XML::Document> _document = new Poco::XML::Document;
};

}  // namespace Vor
