#include "app/AttributeText.h"

namespace VorNode {

namespace {

struct ValueText {
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::uint16_t number) const { return std::to_string(number); }
    std::string operator()(std::int16_t number) const { return std::to_string(number); }
    std::string operator()(const Reference& reference) const { return reference.dn; }
    std::string operator()(const StructValue& members) const {
        std::string text;
        for (const auto& [name, member] : members) {
            text += (text.empty() ? "" : " ") + name + "=" + member;
        }
        return "{" + text + "}";
    }
};

}  // namespace

std::string attributeText(const AttributeValues& values) {
    std::string text;
    for (const AttributeValue& value : values) {
        text += (text.empty() ? "" : ", ") + std::visit(ValueText{}, value);
    }
    return values.empty() ? "no value" : text;
}

}  // namespace VorNode
