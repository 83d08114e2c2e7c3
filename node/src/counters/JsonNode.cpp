#include "counters/JsonNode.h"

#include <algorithm>
#include <fstream>
#include <limits>
#include <set>
#include <sstream>
#include <string_view>

#include "InputError.h"

namespace VorNode {

using nlohmann::json;

namespace {

std::string readText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::ostringstream text;
    if (!(text << stream.rdbuf())) {
        throw InputError(file.string(), 0, "cannot be read, or is empty; name a readable JSON file");
    }
    return text.str();
}

int lineOf(const std::string& text, std::size_t byte) {
    // The parser's offset counts the character that it stopped at.
    const auto before = std::string_view(text).substr(0, byte > 0 ? byte - 1 : 0);
    return 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
}

/// The library's own text without its error number and its notion of the place.
std::string reasonOf(const json::exception& error) {
    const std::string text = error.what();
    const std::size_t place = text.find(": ");
    return place == std::string::npos ? text.substr(text.find("] ") + 2) : text.substr(place + 2);
}

std::string listOf(std::initializer_list<const char*> keys) {
    std::string list;
    for (const char* const key : keys) {
        list.append(list.empty() ? "\"" : ", \"").append(key).append("\"");
    }
    return list;
}

bool holdsNul(const std::string& text) {
    return text.find('\0') != std::string::npos;
}

/// Whether XML has all the characters of the UTF-8 text; line breaks and tabs, which would not stay what they
/// are, do not count.
bool fitsXml(const std::string& text) {
    constexpr unsigned char blank = 0x20;
    return std::none_of(text.begin(), text.end(),
                        [](char c) { return static_cast<unsigned char>(c) < blank; }) &&
           text.find("\uFFFE") == std::string::npos && text.find("\uFFFF") == std::string::npos;
}

/// Sees the parser's events, and whether a key is given twice in an object: all but its last value would be
/// lost.
class KeyWatch {
  public:
    bool isRepeated(json::parse_event_t event, const json& parsed) {
        if (event == json::parse_event_t::object_start) {
            _open.emplace_back();
        } else if (event == json::parse_event_t::object_end) {
            _open.pop_back();
        }
        return event == json::parse_event_t::key && !_open.back().insert(parsed.get<std::string>()).second;
    }

  private:
    /// The keys so far of the objects that are being read, from the outermost in.
    std::vector<std::set<std::string>> _open;
};

}  // namespace

json loadJson(const std::filesystem::path& file) {
    const std::string text = readText(file);
    // A stream tells how far the parser has come.
    std::istringstream stream(text);
    KeyWatch keys;
    const auto watch = [&](int, json::parse_event_t event, const json& parsed) {
        if (keys.isRepeated(event, parsed)) {
            throw InputError(
                file.string(), lineOf(text, static_cast<std::size_t>(stream.tellg())),
                "the key " + parsed.dump() + " is given twice in an object; remove one of the two");
        }
        return true;
    };
    try {
        return json::parse(stream, watch);
    } catch (const json::parse_error& error) {
        throw InputError(file.string(), lineOf(text, error.byte), "is not JSON: " + reasonOf(error));
    } catch (const json::exception& error) {
        throw InputError(file.string(), 0, "is not usable JSON: " + reasonOf(error));
    }
}

JsonNode::JsonNode(const std::string& file, const json& value, std::string path)
    : _file(file), _value(value), _path(std::move(path)) {}

void JsonNode::fail(const std::string& fault) const {
    throw InputError(_file, 0, (_path.empty() ? "the document" : _path) + " " + fault);
}

void JsonNode::expectKeys(std::initializer_list<const char*> known) const {
    expect(_value.is_object(), "an object {...}");
    for (const auto& [key, value] : _value.items()) {
        if (std::find(known.begin(), known.end(), key) == known.end()) {
            fail("has the unknown key " + json(key).dump() + "; write only " + listOf(known));
        }
    }
}

std::optional<JsonNode> JsonNode::find(const char* key) const {
    expect(_value.is_object(), "an object {...}");
    const auto found = _value.find(key);
    return found == _value.end() ? std::nullopt : std::optional(child(key, *found));
}

JsonNode JsonNode::at(const char* key) const {
    const auto found = find(key);
    if (!found) {
        fail("has no " + listOf({key}) + "; add it");
    }
    return *found;
}

std::vector<std::pair<std::string, JsonNode>> JsonNode::members() const {
    expect(_value.is_object(), "an object {...}");
    std::vector<std::pair<std::string, JsonNode>> members;
    for (const auto& [key, value] : _value.items()) {
        if (holdsNul(key)) {
            fail("has the key " + json(key).dump() + " with a NUL character; remove that");
        }
        members.emplace_back(key, child(key, value));
    }
    return members;
}

std::vector<JsonNode> JsonNode::elements() const {
    expect(_value.is_array(), "an array [...]");
    std::vector<JsonNode> elements;
    for (const json& value : _value) {
        elements.push_back(child(std::to_string(elements.size()), value));
    }
    return elements;
}

std::string JsonNode::text() const {
    expect(_value.is_string(), "a text in quotes");
    const auto& text = _value.get_ref<const std::string&>();
    if (!fitsXml(text)) {
        fail("holds a NUL, another control character or a non-character; remove it");
    }
    return text;
}

std::int64_t JsonNode::integer() const {
    constexpr std::uint64_t largest = std::numeric_limits<std::int64_t>::max();
    const bool tooLarge = _value.is_number_unsigned() && _value.get<std::uint64_t>() > largest;
    expect(_value.is_number_integer() && !tooLarge,
           "an integer from -9223372036854775808 to 9223372036854775807");
    return _value.get<std::int64_t>();
}

double JsonNode::number() const {
    expect(_value.is_number(), "a number");
    return _value.get<double>();
}

bool JsonNode::boolean() const {
    expect(_value.is_boolean(), "true or false");
    return _value.get<bool>();
}

void JsonNode::expect(bool isAsExpected, const char* expected) const {
    if (!isAsExpected) {
        fail(std::string("is unusable; write ") + expected);
    }
}

JsonNode JsonNode::child(const std::string& name, const json& value) const {
    return {_file, value, _path.empty() ? name : _path + "/" + name};
}

}  // namespace VorNode
