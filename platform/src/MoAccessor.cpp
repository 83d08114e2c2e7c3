#include "MoAccessor.h"

#include <map>

#include "RequiredInterface.h"

namespace Vor {

namespace {

const KelMgmtSpiInterface_1 transactionMasterId{"KelOamSpiTransactionService", "KelOamSpiTransactionMaster",
                                                "1"};

std::string textOf(const VorMoAttributeValue_3& value) {
    return value.text != nullptr ? value.text : "";
}

bool holdsText(VorOamSpiMoAttributeType_3 type) {
    return type == VorMoTypeString || type == VorMoTypeRef;
}

/// Iterates the instances of a class; ends the iteration at destruction.
class InstanceIterator {
  public:
    InstanceIterator(const VorOamSpiManagedObject_1& managedObjects, unsigned long transaction,
                     const std::string& classPath)
        : _managedObjects(managedObjects) {
        const KelReturnT result =
            _managedObjects.newMoIterator(transaction, nullptr, classPath.c_str(), &_iterator);
        if (result != VorReturnOk) {
            throw VorException(result, "Failed to iterate instances of %s, reason (%d)", classPath.c_str(),
                               result);
        }
    }
    ~InstanceIterator() {
        try {
            _managedObjects.finalizeMoIterator(_iterator);
        } catch (...) {
            // A service that throws must not end the process.
        }
    }
    InstanceIterator(const InstanceIterator&) = delete;
    InstanceIterator& operator=(const InstanceIterator&) = delete;

    KelReturnT next(char** dn) { return _managedObjects.nextMo(_iterator, dn); }

  private:
    const VorOamSpiManagedObject_1& _managedObjects;
    unsigned long long _iterator = 0;
};

}  // namespace

MoAccessor::MoAccessor(VorLockPolicyT lockPolicy, int timeout)
    : Transaction(required<KelOamSpiTransactionMaster_1>(transactionMasterId), lockPolicy, timeout),
      _managedObjects(requiredManagedObjects()) {}

MoAccessor::~MoAccessor() = default;

void MoAccessor::getFirstMoInstance(const std::string& classPath, std::string& dn) {
    InstanceIterator instances(_managedObjects, getTransaction(), classPath);
    char* first = nullptr;
    const KelReturnT result = instances.next(&first);
    if (result != VorReturnOk || first == nullptr) {
        throw VorException(result != VorReturnOk ? result : VorReturnAbsent, "No instance of %s found",
                           classPath.c_str());
    }
    dn = first;
}

void MoAccessor::getAttrContainer(const std::string& dn, const std::string& attrName,
                                  MoAttributeValueResult& result) {
    const KelReturnT code =
        _managedObjects.getMoAttribute(getTransaction(), dn.c_str(), attrName.c_str(), &result);
    if (code != VorReturnOk) {
        throw VorException(code, "Failed to get attribute %s::%s, reason (%d)", dn.c_str(), attrName.c_str(),
                           code);
    }
}

void MoAccessor::validateType(const VorMoAttributeValueContainer_3& container,
                              const VorOamSpiMoAttributeType_3& expected) {
    if (container.type != expected) {
        throw VorException("Attribute has type %u, expected %u", static_cast<unsigned>(container.type),
                           static_cast<unsigned>(expected));
    }
}

/// The members of a struct, with all that their values point to.
class MoAccessor::Struct::Members {
  public:
    explicit Members(const VorMoAttributeValue_3& value) {
        for (auto* member = value.members; member != nullptr && *member != nullptr; ++member) {
            if ((*member)->name != nullptr && (*member)->container != nullptr) {
                _byName[(*member)->name].assign(*(*member)->container);
            }
        }
    }

    VorMoAttributeValueContainer_3 container(const std::string& name) const {
        const auto member = _byName.find(name);
        return member != _byName.end() ? member->second.container() : VorMoAttributeValueContainer_3{};
    }

  private:
    class Member {
      public:
        void assign(const VorMoAttributeValueContainer_3& container) {
            _type = container.type;
            if (container.values != nullptr) {
                _values.assign(container.values, container.values + container.valueCount);
            }
            if (_type == VorMoTypeStruct) {
                throw VorException("A struct within a struct is not supported");
            }
            if (holdsText(_type)) {
                for (const VorMoAttributeValue_3& value : _values) {
                    _texts.push_back(textOf(value));
                }
                for (std::size_t i = 0; i < _values.size(); ++i) {
                    _values[i].text = _texts[i].c_str();
                }
            }
        }

        VorMoAttributeValueContainer_3 container() const {
            return {_type, static_cast<std::uint32_t>(_values.size()),
                    const_cast<VorMoAttributeValue_3*>(_values.data())};
        }

      private:
        VorOamSpiMoAttributeType_3 _type = VorMoTypeString;
        std::vector<VorMoAttributeValue_3> _values;
        std::vector<std::string> _texts;
    };

    std::map<std::string, Member> _byName;
};

MoAccessor::Struct::Struct() = default;
MoAccessor::Struct::Struct(const VorMoAttributeValue_3& value) : _members(std::make_shared<Members>(value)) {}
MoAccessor::Struct::Struct(const Struct& other) = default;
MoAccessor::Struct& MoAccessor::Struct::operator=(const Struct& other) = default;
MoAccessor::Struct::~Struct() = default;

VorMoAttributeValueContainer_3 MoAccessor::Struct::getMemberValueContainer(
    const std::string& memberName) const {
    return _members != nullptr ? _members->container(memberName) : VorMoAttributeValueContainer_3{};
}

template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<MoAccessor::Enum>() {
    return VorMoTypeEnum;
}
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<MoAccessor::MoRef>() {
    return VorMoTypeRef;
}
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<MoAccessor::Struct>() {
    return VorMoTypeStruct;
}
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<bool>() {
    return VorMoTypeBool;
}
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<std::string>() {
    return VorMoTypeString;
}
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<unsigned short>() {
    return VorMoTypeUint16;
}

template <>
MoAccessor::Enum MoAccessor::extractAttr<MoAccessor::Enum>(const VorMoAttributeValue_3& value) {
    return Enum(static_cast<std::int16_t>(value.number));
}
template <>
MoAccessor::MoRef MoAccessor::extractAttr<MoAccessor::MoRef>(const VorMoAttributeValue_3& value) {
    return MoRef(textOf(value));
}
template <>
MoAccessor::Struct MoAccessor::extractAttr<MoAccessor::Struct>(const VorMoAttributeValue_3& value) {
    return Struct(value);
}
template <>
std::string MoAccessor::extractAttr<std::string>(const VorMoAttributeValue_3& value) {
    return textOf(value);
}

template <>
void MoAccessor::setValue<MoAccessor::Enum>(VorMoAttributeValue_3& slot, const MoAccessor::Enum& value) {
    slot.number = std::int16_t{value};
}
template <>
void MoAccessor::setValue<MoAccessor::MoRef>(VorMoAttributeValue_3& slot, const MoAccessor::MoRef& value) {
    slot.text = static_cast<const std::string&>(value).c_str();
}
template <>
void MoAccessor::setValue<bool>(VorMoAttributeValue_3& slot, const bool& value) {
    slot.number = value ? 1 : 0;
}
template <>
void MoAccessor::setValue<std::string>(VorMoAttributeValue_3& slot, const std::string& value) {
    slot.text = value.c_str();
}
template <>
void MoAccessor::setValue<unsigned short>(VorMoAttributeValue_3& slot, const unsigned short& value) {
    slot.number = value;
}

}  // namespace Vor
