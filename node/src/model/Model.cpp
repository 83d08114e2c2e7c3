#include "model/Model.h"

#include <algorithm>
#include <stdexcept>

#include <Poco/Bugcheck.h>

#include "model/Dn.h"

namespace VorNode {

bool AttributeDefinition::accepts(const AttributeValues& values) const {
    return (arity == Arity::Sequence || values.size() <= 1) &&
           std::all_of(values.begin(), values.end(), [this](const AttributeValue& value) {
               return value.index() == static_cast<std::size_t>(type);
           });
}

const AttributeDefinition* ClassDefinition::find(const std::string& attribute) const {
    const auto found =
        std::find_if(attributes.begin(), attributes.end(),
                     [&](const AttributeDefinition& candidate) { return candidate.name == attribute; });
    return found != attributes.end() ? &*found : nullptr;
}

InputError ModelSource::finding(const std::string& dn, const std::string& attribute,
                                const std::string& text) const {
    const int line = lineOf(dn, attribute);
    return {_file, line > 0 ? line : lineOf(dn, ""), text};
}

int ModelSource::lineOf(const std::string& dn, const std::string& attribute) const {
    const auto found = _lines.find({dn, attribute});
    return found != _lines.end() ? found->second : 0;
}

bool Model::addClass(ClassDefinition definition) {
    if (findClass(definition.path) != nullptr) {
        return false;
    }
    _classes.push_back(std::move(definition));
    return true;
}

const ClassDefinition* Model::findClass(const std::string& path) const {
    const auto found = std::find_if(_classes.begin(), _classes.end(),
                                    [&](const ClassDefinition& candidate) { return candidate.path == path; });
    return found != _classes.end() ? &*found : nullptr;
}

bool Model::addObject(const std::string& dn) {
    const ClassDefinition* definition = findClass(classPathOf(dn));
    poco_assert(definition != nullptr);
    const std::scoped_lock lock(_mutex);
    if (_objectsByDn.contains(dn)) {
        return false;
    }
    Object& object = _objects.emplace_back(
        Object{dn, definition, std::vector<AttributeValues>(definition->attributes.size())});
    _objectsByDn.emplace(dn, &object);
    return true;
}

std::vector<std::string> Model::objectsOf(const std::string& classPath, const std::string& baseDn) const {
    const std::scoped_lock lock(_mutex);
    std::vector<std::string> dns;
    for (const Object& object : _objects) {
        if (object.definition->path == classPath && isAtOrBelow(object.dn, baseDn)) {
            dns.push_back(object.dn);
        }
    }
    return dns;
}

const AttributeDefinition* Model::findAttribute(const std::string& dn, const std::string& attribute) const {
    const std::scoped_lock lock(_mutex);
    return findSlot(dn, attribute).definition;
}

AttributeValues Model::read(const std::string& dn, const std::string& attribute) const {
    const std::scoped_lock lock(_mutex);
    const Slot slot = findSlot(dn, attribute);
    return slot.values != nullptr ? *slot.values : AttributeValues{};
}

void Model::commit(std::vector<AttributeWrite> writes) {
    const std::scoped_lock lock(_mutex);
    std::vector<AttributeValues*> targets;
    for (const AttributeWrite& write : writes) {
        const Slot slot = findSlot(write.dn, write.attribute);
        if (slot.definition == nullptr || !slot.definition->accepts(write.values)) {
            throw std::invalid_argument(write.dn + "::" + write.attribute +
                                        " does not take what was written");
        }
        targets.push_back(slot.values);
    }
    for (std::size_t i = 0; i < writes.size(); ++i) {
        *targets[i] = std::move(writes[i].values);
    }
}

Model::Slot Model::findSlot(const std::string& dn, const std::string& attribute) const {
    const auto entry = _objectsByDn.find(dn);
    if (entry == _objectsByDn.end()) {
        return {};
    }
    Object& object = *entry->second;
    const AttributeDefinition* definition = object.definition->find(attribute);
    if (definition == nullptr) {
        return {};
    }
    const auto index = static_cast<std::size_t>(definition - object.definition->attributes.data());
    return {definition, &object.values[index]};
}

}  // namespace VorNode
