#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "Logging.h"
#include "Transaction.h"
#include "VorException.h"
#include "VorOamSpiManagedObject.h"

namespace Vor {

/// Typed reads and writes of managed-object attributes within one transaction. Made on the stack for one
/// operation; one thread. Every failure is a `VorException`.
class MoAccessor : public Transaction {
  public:
    /// An enumeration value as the model stores it.
    class Enum {
      public:
        Enum() = default;
        Enum(std::int16_t value) : _value(value) {}
        operator std::int16_t() const { return _value; }

      private:
        std::int16_t _value = 0;
    };

    /// A reference to a managed object: its distinguished name.
    class MoRef {
      public:
        MoRef() = default;
        MoRef(std::string dn) : _dn(std::move(dn)) {}
        operator const std::string&() const { return _dn; }

      private:
        std::string _dn;
    };

    /// A structured value; owns a deep copy of what it was made from.
    class Struct {
      public:
        /// The member's value. Throws when the member is not set, or of another type.
        template <class T>
        T get(const std::string& memberName) const {
            const VorMoAttributeValueContainer_3 container = getMemberValueContainer(memberName);
            if (container.valueCount == 0) {
                LOG_WARNING("Struct member not set: '%s'", memberName.c_str());
                throw VorException(VorReturnFailed, "Struct member not set: '%s'", memberName.c_str());
            }
            validateType(container, getSpiType<T>());
            return extractAttr<T>(container.values[0]);
        }

        // Platform operations, defined by the platform library.

        Struct();
        explicit Struct(const VorMoAttributeValue_3& value);
        Struct(const Struct& other);
        Struct& operator=(const Struct& other);
        virtual ~Struct();

        /// The member's values, owned by the struct; a `valueCount` of 0 when the member is not set.
        VorMoAttributeValueContainer_3 getMemberValueContainer(const std::string& memberName) const;

      private:
        class Members;
        std::shared_ptr<const Members> _members;
    };

    template <class T>
    struct Optional {
        bool isSet = false;
        T value{};
    };

    /// A container handed out by the managed-object interface, given back at destruction.
    class MoAttributeValueResult : public VorMoAttributeValueResult_3 {
      public:
        MoAttributeValueResult() : VorMoAttributeValueResult_3{nullptr, nullptr} {}
        MoAttributeValueResult(const MoAttributeValueResult&) = delete;
        MoAttributeValueResult& operator=(const MoAttributeValueResult&) = delete;
        virtual ~MoAttributeValueResult() {
            if (release != nullptr && container != nullptr) {
                try {
                    release(container);
                } catch (...) {
                    // A service that throws must not end the process.
                }
            }
        }

        bool hasValue() const {
            return container != nullptr && container->valueCount != 0 && container->values != nullptr;
        }
    };

    /// The attribute's value; having none is a failure too.
    template <class T>
    T getAttr(const std::string& dn, const std::string& attrName) {
        LOG_TRACE("MoAccessor::getAttr<> dName :%s attrName :%s", dn.c_str(), attrName.c_str());
        MoAttributeValueResult result;
        getAttrContainer(dn, attrName, result);
        if (!result.hasValue()) {
            throw VorException("Attribute has no value set: %s::%s", dn.c_str(), attrName.c_str());
        }
        if (result.container->valueCount > 1) {
            LOG_ERROR("Attribute is a sequence: %s::%s", dn.c_str(), attrName.c_str());
            throw VorException("Attribute is a sequence: %s::%s", dn.c_str(), attrName.c_str());
        }
        validateType(*result.container, getSpiType<T>());
        return extractAttr<T>(result.container->values[0]);
    }

    /// The attribute's value, or none.
    template <class T>
    Optional<T> getOptionalAttr(const std::string& dn, const std::string& attrName) {
        LOG_TRACE("MoAccessor::getOptionalAttr<> dName :%s attrName :%s", dn.c_str(), attrName.c_str());
        MoAttributeValueResult result;
        getAttrContainer(dn, attrName, result);
        if (!result.hasValue()) {
            return {};
        }
        validateType(*result.container, getSpiType<T>());
        if (result.container->valueCount > 1) {
            LOG_ERROR("Attribute is a sequence: %s::%s", dn.c_str(), attrName.c_str());
            throw VorException("Attribute is a sequence: %s::%s", dn.c_str(), attrName.c_str());
        }
        return {true, extractAttr<T>(result.container->values[0])};
    }

    /// Writes the values, none to empty the attribute. The caller commits.
    template <class T>
    void setSeqAttr(const std::string& dn, const std::string& attrName, const std::vector<T>& values) {
        LOG_TRACE("MoAccessor::setSeqAttr<> dName :%s attrName :%s", dn.c_str(), attrName.c_str());
        std::vector<VorMoAttributeValue_3> slots(values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const T& value = values[i];
            setValue<T>(slots[i], value);
        }
        const VorMoAttributeValueContainer_3 container{
            getSpiType<T>(), static_cast<std::uint32_t>(slots.size()), slots.data()};
        const KelReturnT result =
            _managedObjects.setMoAttribute(getTransaction(), dn.c_str(), attrName.c_str(), &container);
        if (result != VorReturnOk) {
            LOG_ERROR("Failed to write '%s' from MO ( error:%d )!", attrName.c_str(), result);
            throw VorException("Failed to set attribute :'%s' in MO :%s, reason (%d )!", attrName.c_str(),
                               dn.c_str(), result);
        }
    }

    template <class T>
    void setAttr(const std::string& dn, const std::string& attrName, const T& value) {
        LOG_TRACE("MoAccessor::setAttr<> dName :%s attrName :%s", dn.c_str(), attrName.c_str());
        setSeqAttr<T>(dn, attrName, std::vector<T>{value});
    }

    // Platform operations, defined by the platform library.

    /// Opens the transaction; the timeout is in seconds. Throws when the managed-object interface or the
    /// transaction master is not offered.
    MoAccessor(VorLockPolicyT lockPolicy, int timeout);
    ~MoAccessor() override;

    /// Stores the dn of the first instance, the one created first, of the class given by its containment
    /// path.
    void getFirstMoInstance(const std::string& classPath, std::string& dn);

    /// Fetches the attribute's container; null or empty when the attribute has no value.
    void getAttrContainer(const std::string& dn, const std::string& attrName, MoAttributeValueResult& result);

    /// Throws when the container's type is not the expected one.
    static void validateType(const VorMoAttributeValueContainer_3& container,
                             const VorOamSpiMoAttributeType_3& expected);

    template <class T>
    static VorOamSpiMoAttributeType_3 getSpiType();
    template <class T>
    static T extractAttr(const VorMoAttributeValue_3& value);
    /// The slot may borrow the value's text.
    template <class T>
    static void setValue(VorMoAttributeValue_3& slot, const T& value);

  private:
    const VorOamSpiManagedObject_1& _managedObjects;
};

template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<MoAccessor::Enum>();
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<MoAccessor::MoRef>();
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<MoAccessor::Struct>();
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<bool>();
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<std::string>();
template <>
VorOamSpiMoAttributeType_3 MoAccessor::getSpiType<unsigned short>();

template <>
MoAccessor::Enum MoAccessor::extractAttr<MoAccessor::Enum>(const VorMoAttributeValue_3& value);
template <>
MoAccessor::MoRef MoAccessor::extractAttr<MoAccessor::MoRef>(const VorMoAttributeValue_3& value);
template <>
MoAccessor::Struct MoAccessor::extractAttr<MoAccessor::Struct>(const VorMoAttributeValue_3& value);
template <>
std::string MoAccessor::extractAttr<std::string>(const VorMoAttributeValue_3& value);

template <>
void MoAccessor::setValue<MoAccessor::Enum>(VorMoAttributeValue_3& slot, const MoAccessor::Enum& value);
template <>
void MoAccessor::setValue<MoAccessor::MoRef>(VorMoAttributeValue_3& slot, const MoAccessor::MoRef& value);
template <>
void MoAccessor::setValue<bool>(VorMoAttributeValue_3& slot, const bool& value);
template <>
void MoAccessor::setValue<std::string>(VorMoAttributeValue_3& slot, const std::string& value);
template <>
void MoAccessor::setValue<unsigned short>(VorMoAttributeValue_3& slot, const unsigned short& value);

}  // namespace Vor
