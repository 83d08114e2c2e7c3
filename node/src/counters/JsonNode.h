// Reading of JSON files with faults that name their place.
#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VorNode {

/// The document in `file`. Throws `InputError` when it cannot be read, is not JSON or has a key twice in an
/// object.
nlohmann::json loadJson(const std::filesystem::path& file);

/// The line of the value at the path of keys and numbers of elements, 0 when the file has no such value.
int lineOfValue(const std::filesystem::path& file, const std::vector<std::string>& path);

/// A value in a JSON document and the way to it. Belongs to the code that reads the document, which must
/// outlive it, as must the file's name and the node that it was asked of. Every operation throws
/// `InputError`, naming file, line, path and remedy, when the value is not what is asked for.
class JsonNode {
  public:
    JsonNode(const std::string& file, const nlohmann::json& value) : _file(file), _value(value) {}

    /// Refuses the value for the reason that `fault` gives.
    [[noreturn]] void fail(const std::string& fault) const;

    /// Checks that this is an object without other keys than `known`.
    void expectKeys(std::initializer_list<const char*> known) const;

    /// The value of `key` in this object, if any.
    std::optional<JsonNode> find(const char* key) const;

    /// The value of `key` in this object.
    JsonNode at(const char* key) const;

    /// Calls `visit` with each key and value of this object.
    template <class VisitT>
    void forEachMember(VisitT visit) const {
        expectMembers();
        for (const auto& [key, value] : _value.items()) {
            visit(key, JsonNode(*this, value, key));
        }
    }

    /// Calls `visit` with each element of this array.
    template <class VisitT>
    void forEachElement(VisitT visit) const {
        expect(_value.is_array(), "an array [...]");
        for (const nlohmann::json& value : _value) {
            visit(JsonNode(*this, value, {}));
        }
    }

    /// A text in one line that XML can hold, escaped.
    std::string text() const;

    std::int64_t integer() const;
    double number() const;
    bool boolean() const;

  private:
    JsonNode(const JsonNode& parent, const nlohmann::json& value, std::string_view key)
        : _file(parent._file), _value(value), _parent(&parent), _key(key) {}

    void expect(bool isAsExpected, const char* expected) const;
    void expectMembers() const;
    /// The keys and numbers of elements from the document down to this value; made for a fault only.
    std::vector<std::string> path() const;

    const std::string& _file;
    const nlohmann::json& _value;
    const JsonNode* _parent = nullptr;
    /// Of a member; an element has its number by its place.
    std::string_view _key;
};

}  // namespace VorNode
