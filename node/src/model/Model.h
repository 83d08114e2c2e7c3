#pragma once

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <variant>
#include <vector>

#include "InputError.h"

namespace VorNode {

/// A reference to an object: its dn.
struct Reference {
    std::string dn;

    bool operator==(const Reference&) const = default;
};

/// A structured value: those of its members that are set, by name.
using StructValue = std::map<std::string, std::string>;

/// One value; the signed number is an enumeration's.
using AttributeValue = std::variant<std::string, bool, std::uint16_t, std::int16_t, Reference, StructValue>;

/// The values of one attribute, none when the attribute has no value.
using AttributeValues = std::vector<AttributeValue>;

/// In the order of the alternatives of `AttributeValue`.
enum class AttributeType : std::size_t { String, Bool, Uint16, Enum, Ref, Struct };

enum class Arity { Single, Sequence };

struct AttributeDefinition {
    std::string name;
    AttributeType type = AttributeType::String;
    Arity arity = Arity::Single;

    /// Whether all values are of the attribute's type, and only as many as it may have.
    bool accepts(const AttributeValues& values) const;
};

struct ClassDefinition {
    /// The containment path, such as "ManagedElement,SystemFunctions".
    std::string path;
    std::vector<AttributeDefinition> attributes;

    /// Null when the class has no such attribute.
    const AttributeDefinition* find(const std::string& attribute) const;
};

/// New values for an attribute; no values leave it without.
struct AttributeWrite {
    std::string dn;
    std::string attribute;
    AttributeValues values;
};

/// Where a file gives the model's classes, by path, and objects, by dn, and their attributes: for messages
/// about them.
class ModelSource {
  public:
    explicit ModelSource(std::string file = {}) : _file(std::move(file)) {}

    void note(const std::string& dn, const std::string& attribute, int line) {
        _lines[{dn, attribute}] = line;
    }

    /// A finding about the attribute; about the object when the file does not give the attribute, or it is
    /// empty; else about the file.
    InputError finding(const std::string& dn, const std::string& attribute, const std::string& text) const;

  private:
    int lineOf(const std::string& dn, const std::string& attribute) const;

    std::string _file;
    std::map<std::pair<std::string, std::string>, int> _lines;
};

/// The managed-object model: classes, the objects of these classes, and the values of their attributes. Owned
/// by the application. Classes are added before a second thread uses the model and never change after that,
/// so their definitions may be kept by address; everything else may be called by any thread.
class Model {
  public:
    Model() = default;
    Model(const Model&) = delete;
    Model& operator=(const Model&) = delete;

    /// Set by whoever fills the model from a file, before a second thread uses the model.
    ModelSource& source() { return _source; }
    const ModelSource& source() const { return _source; }

    /// False when there is a class of that path already.
    bool addClass(ClassDefinition definition);

    /// All classes, in the order in which they were added.
    const std::deque<ClassDefinition>& classes() const { return _classes; }

    /// Null when there is no class of that path.
    const ClassDefinition* findClass(const std::string& path) const;

    /// Creates an object of a known class without values. False when there is an object of that dn already.
    bool addObject(const std::string& dn);

    /// The dns of the class's objects at or below `baseDn` (empty: everywhere), in the order of creation.
    std::vector<std::string> objectsOf(const std::string& classPath, const std::string& baseDn = {}) const;

    /// Null when there is no such object, or its class has no such attribute.
    const AttributeDefinition* findAttribute(const std::string& dn, const std::string& attribute) const;

    /// The attribute's values; none also when there is no such attribute.
    AttributeValues read(const std::string& dn, const std::string& attribute) const;

    /// The attribute's value when it has one value, of that type.
    template <class T>
    std::optional<T> readSingle(const std::string& dn, const std::string& attribute) const {
        AttributeValues values = read(dn, attribute);
        T* value = values.size() == 1 ? std::get_if<T>(&values.front()) : nullptr;
        return value != nullptr ? std::optional<T>(std::move(*value)) : std::nullopt;
    }

    /// Applies the writes in order, at once for all readers. Throws `std::invalid_argument`, with nothing
    /// changed, when one names no attribute or has values that its attribute does not accept.
    void commit(std::vector<AttributeWrite> writes);

  private:
    struct Object {
        std::string dn;
        const ClassDefinition* definition;
        /// One entry per attribute of the class.
        std::vector<AttributeValues> values;
    };

    /// One attribute of one object; both null when there is none.
    struct Slot {
        const AttributeDefinition* definition = nullptr;
        AttributeValues* values = nullptr;
    };
    /// Called with the lock held.
    Slot findSlot(const std::string& dn, const std::string& attribute) const;

    ModelSource _source;
    std::deque<ClassDefinition> _classes;

    /// Guards the objects and their values.
    mutable std::mutex _mutex;
    /// In the order of creation.
    std::list<Object> _objects;
    std::unordered_map<std::string, Object*> _objectsByDn;
};

}  // namespace VorNode
