#include "services/AttributeContainer.h"

#include <algorithm>
#include <array>
#include <deque>
#include <memory>
#include <utility>

#include "services/Operation.h"

namespace VorNode {

namespace {

VorOamSpiMoAttributeType_3 spiTypeOf(AttributeType type) {
    constexpr std::array<VorOamSpiMoAttributeType_3, 6> types{
        VorMoTypeString, VorMoTypeBool, VorMoTypeUint16, VorMoTypeEnum, VorMoTypeRef, VorMoTypeStruct};
    static_assert(types.size() == std::variant_size_v<AttributeValue>);
    return types[static_cast<std::size_t>(type)];
}

std::string copyText(const VorMoAttributeValue_3& value) {
    requirePointers(value.text);
    return value.text;
}

template <class NumberT>
NumberT copyNumber(const VorMoAttributeValue_3& value) {
    if (!std::in_range<NumberT>(value.number)) {
        throw Refusal{VorReturnFailed};
    }
    return static_cast<NumberT>(value.number);
}

bool copyBool(const VorMoAttributeValue_3& value) {
    if (value.number != 0 && value.number != 1) {
        throw Refusal{VorReturnFailed};
    }
    return value.number == 1;
}

/// A member without values is not set.
StructValue copyMembers(const VorMoAttributeValue_3& value) {
    requirePointers(value.members);
    StructValue members;
    for (auto* member = value.members; *member != nullptr; ++member) {
        requirePointers((*member)->name, (*member)->container);
        const AttributeDefinition definition{(*member)->name, AttributeType::String, Arity::Single};
        for (const AttributeValue& text : copyValues(definition, *(*member)->container)) {
            members[definition.name] = std::get<std::string>(text);
        }
    }
    return members;
}

AttributeValue copyValue(AttributeType type, const VorMoAttributeValue_3& value) {
    switch (type) {
        case AttributeType::String:
            return copyText(value);
        case AttributeType::Bool:
            return copyBool(value);
        case AttributeType::Uint16:
            return copyNumber<std::uint16_t>(value);
        case AttributeType::Enum:
            return copyNumber<std::int16_t>(value);
        case AttributeType::Ref:
            return Reference{copyText(value)};
        case AttributeType::Struct:
            return copyMembers(value);
    }
    throw Refusal{VorReturnFailed};
}

/// A container together with all that it points to.
class OwnedContainer : public VorMoAttributeValueContainer_3 {
  public:
    explicit OwnedContainer(TypedValues attribute)
        : VorMoAttributeValueContainer_3{spiTypeOf(attribute.type),
                                         static_cast<std::uint32_t>(attribute.values.size()), nullptr},
          _values(std::move(attribute.values)) {
        for (const AttributeValue& value : _values) {
            _slots.push_back(std::visit([this](const auto& held) { return this->slotOf(held); }, value));
        }
        values = _slots.data();
    }
    OwnedContainer(const OwnedContainer&) = delete;
    OwnedContainer& operator=(const OwnedContainer&) = delete;

  private:
    struct Member {
        VorMoAttributeValue_3 value;
        VorMoAttributeValueContainer_3 container;
        KelMoNamedAttributeValueContainer_3 named;
    };

    static VorMoAttributeValue_3 slotOf(std::int64_t number) { return {.number = number}; }
    static VorMoAttributeValue_3 slotOf(const std::string& text) { return {.text = text.c_str()}; }
    static VorMoAttributeValue_3 slotOf(const Reference& reference) { return slotOf(reference.dn); }
    VorMoAttributeValue_3 slotOf(const StructValue& members) {
        auto& list = _memberLists.emplace_back();
        for (const auto& [name, text] : members) {
            Member& member = _members.emplace_back();
            member.value = slotOf(text);
            member.container = {VorMoTypeString, 1, &member.value};
            member.named = {name.c_str(), &member.container};
            list.push_back(&member.named);
        }
        list.push_back(nullptr);
        return {.members = list.data()};
    }

    const AttributeValues _values;
    std::vector<VorMoAttributeValue_3> _slots;
    // Deques, for the addresses of their elements are given out while they grow.
    std::deque<Member> _members;
    std::deque<std::vector<KelMoNamedAttributeValueContainer_3*>> _memberLists;
};

void release(VorMoAttributeValueContainer_3* container) {
    delete static_cast<OwnedContainer*>(container);
}

/// The array ends with null.
void releaseAll(VorMoAttributeValueContainer_3** containers) {
    for (auto* container = containers; *container != nullptr; ++container) {
        release(*container);
    }
    delete[] containers;
}

}  // namespace

AttributeValues copyValues(const AttributeDefinition& attribute,
                           const VorMoAttributeValueContainer_3& container) {
    if (container.type != spiTypeOf(attribute.type)) {
        throw Refusal{VorReturnFailed};
    }
    AttributeValues values;
    for (std::uint32_t i = 0; i < container.valueCount; ++i) {
        requirePointers(container.values);
        values.push_back(copyValue(attribute.type, container.values[i]));
    }
    if (!attribute.accepts(values)) {
        throw Refusal{VorReturnFailed};
    }
    return values;
}

VorMoAttributeValueResult_3 handOut(TypedValues attribute) {
    return {&release, attribute.values.empty() ? nullptr : new OwnedContainer(std::move(attribute))};
}

VorMoAttributeValuesResult_3 handOut(std::vector<TypedValues> attributes) {
    std::unique_ptr<VorMoAttributeValueContainer_3*[], decltype(&releaseAll)> containers(
        new VorMoAttributeValueContainer_3* [attributes.size() + 1] {}, &releaseAll);
    std::transform(attributes.begin(), attributes.end(), containers.get(),
                   [](TypedValues& attribute) { return new OwnedContainer(std::move(attribute)); });
    return {&releaseAll, containers.release()};
}

}  // namespace VorNode
