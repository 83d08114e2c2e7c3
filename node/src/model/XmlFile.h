#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "InputError.h"

namespace VorNode {

/// One element of an XML file with all that it contains. A plain value.
struct XmlElement {
    std::string name;
    std::map<std::string, std::string> attributes;
    /// The element's own text, without the white space around it.
    std::string text;
    bool hasSpaceAround = false;
    std::vector<XmlElement> children;
    int line = 0;
};

/// An XML file, read whole, and the checks that a reader of its elements needs. Lives in the function that
/// loads something from the file; one thread at a time, several once it is made. Every refusal is an
/// `InputError` that names the file and the element's line.
class XmlFile {
  public:
    /// Refuses a file that cannot be read, is not well-formed or nests elements more than 100 deep. External
    /// entities are not fetched.
    explicit XmlFile(const std::string& path);

    const XmlElement& root() const { return _root; }

    /// The text with file and line in front.
    InputError finding(const XmlElement& element, const std::string& text) const;

    /// The text tells the fault and what to write instead.
    [[noreturn]] void refuse(const XmlElement& element, const std::string& text) const;

    /// The element's child of that name, null when there is none. Refuses a second one.
    const XmlElement* child(const XmlElement& element, const std::string& name) const;

    /// The element's XML attribute. Refuses its absence, proposing `example` as its value.
    const std::string& requiredAttribute(const XmlElement& element, const std::string& name,
                                         const std::string& example) const;

    /// Refuse XML attributes and children that are not among `names`, or any text.
    void expectAttributes(const XmlElement& element, std::initializer_list<std::string_view> names) const;
    void expectChildren(const XmlElement& element, std::initializer_list<std::string_view> names) const;
    void expectNoText(const XmlElement& element) const;

  private:
    std::string _path;
    XmlElement _root;
};

}  // namespace VorNode
