// Distinguished names, such as "ManagedElement=1,SystemFunctions=1", and the containment paths of classes,
// such as "ManagedElement,SystemFunctions". Pure: any thread.
#pragma once

#include <string>
#include <string_view>

namespace VorNode {

/// Whether the text is a name of a class, an attribute or a member: letters, digits and '_', no digit first.
bool isName(std::string_view text);

/// Whether the text is a containment path: names with commas between them.
bool isClassPath(std::string_view text);

/// Whether the text is a dn: a name, '=' and an id per class, with commas between them. Ids are not empty and
/// hold no comma, '=', quote, '<', '&' or control character.
bool isDn(std::string_view text);

/// The containment path of the class whose object the dn names; empty for a text that is no dn.
std::string classPathOf(std::string_view dn);

/// The id behind the dn's last '='.
std::string lastIdOf(std::string_view dn);

/// Whether the dn names the object `base` or one that it contains. Everything is below the empty base.
bool isAtOrBelow(std::string_view dn, std::string_view base);

}  // namespace VorNode
