// Reading of JSON files with faults that name their place.
#pragma once

#include <cstdint>
#include <filesystem>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace VorNode {

/// The document in `file`. Throws `InputError` when it cannot be read, is not JSON or has a key twice in an
/// object.
nlohmann::json loadJson(const std::filesystem::path& file);

/// A value in a JSON document and the path to it. Belongs to the code that reads the document, which must
/// outlive it, as must the file's name. Every operation throws `InputError`, naming file, path and remedy,
/// when the value is not what is asked for.
class JsonNode {
  public:
    JsonNode(const std::string& file, const nlohmann::json& value, std::string path = "");

    /// Refuses the value for the reason that `fault` gives.
    [[noreturn]] void fail(const std::string& fault) const;

    /// Checks that this is an object without other keys than `known`.
    void expectKeys(std::initializer_list<const char*> known) const;

    /// The value of `key` in this object, if any.
    std::optional<JsonNode> find(const char* key) const;

    /// The value of `key` in this object.
    JsonNode at(const char* key) const;

    /// The keys and values of this object.
    std::vector<std::pair<std::string, JsonNode>> members() const;

    /// The elements of this array.
    std::vector<JsonNode> elements() const;

    /// A text in one line that XML can hold, escaped.
    std::string text() const;

    std::int64_t integer() const;
    double number() const;
    bool boolean() const;

  private:
    void expect(bool isAsExpected, const char* expected) const;
    JsonNode child(const std::string& name, const nlohmann::json& value) const;

    const std::string& _file;
    const nlohmann::json& _value;
    std::string _path;
};

}  // namespace VorNode
