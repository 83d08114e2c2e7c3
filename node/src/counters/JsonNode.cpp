#include "counters/JsonNode.h"

#include <algorithm>
#include <limits>
#include <set>
#include <sstream>
#include <string_view>

#include <Poco/String.h>

#include "InputError.h"
#include "InputFile.h"

namespace VorNode {

using nlohmann::json;

namespace {

std::string readText(const std::filesystem::path& file) {
    std::string text = readInputFile(file.string(), "a JSON file");
    if (text.empty()) {
        throw InputError(file.string(), 0, "is empty; name a JSON file");
    }
    return text;
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

/// Follows the parser without a document.
class JsonEvents : public json::json_sax_t {
  public:
    bool null() override { return scalar(); }
    bool boolean(bool) override { return scalar(); }
    bool number_integer(number_integer_t) override { return scalar(); }
    bool number_unsigned(number_unsigned_t) override { return scalar(); }
    bool number_float(number_float_t, const string_t&) override { return scalar(); }
    bool string(string_t&) override { return scalar(); }
    bool binary(binary_t&) override { return scalar(); }
    bool parse_error(std::size_t, const std::string&, const json::exception&) override { return false; }

  protected:
    /// False ends the parsing.
    virtual bool scalar() { return true; }
};

/// Refuses a key that is given twice in an object: all but its last value would be lost.
class KeyWatch : public JsonEvents {
  public:
    KeyWatch(const std::string& file, const std::string& text, std::istream& stream)
        : _file(file), _text(text), _stream(stream) {}

    bool start_object(std::size_t) override {
        _open.emplace_back();
        return true;
    }
    bool key(string_t& key) override {
        if (!_open.back().insert(key).second) {
            throw InputError(
                _file, lineOf(_text, static_cast<std::size_t>(_stream.tellg())),
                "the key " + json(key).dump() + " is given twice in an object; remove one of the two");
        }
        return true;
    }
    bool end_object() override {
        _open.pop_back();
        return true;
    }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }

  private:
    const std::string& _file;
    const std::string& _text;
    std::istream& _stream;
    /// The keys so far of the objects that are being read, from the outermost in.
    std::vector<std::set<std::string>> _open;
};

/// Follows the parser until the value at a path begins.
class PlaceFinder : public JsonEvents {
  public:
    PlaceFinder(std::istream& stream, const std::vector<std::string>& path) : _stream(stream), _path(path) {}

    /// How far the parser had come, none when there was no such value.
    std::optional<std::size_t> place() const { return _place; }

    bool start_object(std::size_t) override { return container(false); }
    bool start_array(std::size_t) override { return container(true); }
    bool key(string_t& key) override {
        _open.back().key = key;
        return true;
    }
    bool end_object() override { return end(); }
    bool end_array() override { return end(); }

  private:
    /// An object or array that is being read.
    struct Container {
        bool isArray;
        bool isOnPath;
        std::size_t elements = 0;
        std::string key{};
    };

    bool scalar() override {
        noteWhenThere(isNextOnPath());
        return !_place;
    }

    bool container(bool isArray) {
        const bool isOnPath = isNextOnPath();
        noteWhenThere(isOnPath);
        _open.push_back({isArray, isOnPath});
        return !_place;
    }

    bool end() {
        _open.pop_back();
        return true;
    }

    /// Whether the value that begins is the one at the path, or holds it.
    bool isNextOnPath() {
        if (_open.empty()) {
            return true;
        }
        Container& parent = _open.back();
        const std::size_t number = parent.elements++;
        if (!parent.isOnPath || _open.size() > _path.size()) {
            return false;
        }
        const std::string& step = _path[_open.size() - 1];
        return parent.isArray ? step == std::to_string(number) : step == parent.key;
    }

    void noteWhenThere(bool isOnPath) {
        if (isOnPath && _open.size() == _path.size()) {
            _place = static_cast<std::size_t>(_stream.tellg());
        }
    }

    std::istream& _stream;
    const std::vector<std::string>& _path;
    std::vector<Container> _open;
    std::optional<std::size_t> _place;
};

/// Apart from the making of the document: the parser's own callbacks cost the square of an array's length.
void expectKeysOnce(const std::string& file, const std::string& text) {
    std::istringstream stream(text);
    KeyWatch keys(file, text, stream);
    json::sax_parse(stream, &keys);
}

}  // namespace

json loadJson(const std::filesystem::path& file) {
    const std::string text = readText(file);
    // A stream tells how far the parser has come.
    std::istringstream stream(text);
    try {
        json document = json::parse(stream);
        expectKeysOnce(file.string(), text);
        return document;
    } catch (const json::parse_error& error) {
        throw InputError(file.string(), lineOf(text, error.byte), "is not JSON: " + reasonOf(error));
    } catch (const json::exception& error) {
        throw InputError(file.string(), lineOf(text, static_cast<std::size_t>(stream.tellg())),
                         "is not usable JSON: " + reasonOf(error));
    }
}

int lineOfValue(const std::filesystem::path& file, const std::vector<std::string>& path) {
    const std::string text = readText(file);
    std::istringstream stream(text);
    PlaceFinder finder(stream, path);
    json::sax_parse(stream, &finder);
    return finder.place() ? lineOf(text, *finder.place()) : 0;
}

void JsonNode::fail(const std::string& fault) const {
    const std::vector<std::string> steps = path();
    throw InputError(
        _file, lineOfValue(_file, steps),
        (steps.empty() ? "the document" : Poco::cat(std::string("/"), steps.begin(), steps.end())) + " " +
            fault);
}

std::vector<std::string> JsonNode::path() const {
    std::vector<std::string> steps;
    for (const JsonNode* node = this; node->_parent != nullptr; node = node->_parent) {
        const json& parent = node->_parent->_value;
        steps.push_back(parent.is_array() ? std::to_string(&node->_value - &parent.front())
                                          : std::string(node->_key));
    }
    std::reverse(steps.begin(), steps.end());
    return steps;
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
    return found == _value.end() ? std::nullopt : std::optional(JsonNode(*this, *found, key));
}

JsonNode JsonNode::at(const char* key) const {
    const auto found = find(key);
    if (!found) {
        fail("has no " + listOf({key}) + "; add it");
    }
    return *found;
}

void JsonNode::expectMembers() const {
    expect(_value.is_object(), "an object {...}");
    for (const auto& [key, value] : _value.items()) {
        if (holdsNul(key)) {
            fail("has the key " + json(key).dump() + " with a NUL character; remove that");
        }
    }
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

}  // namespace VorNode
