#pragma once

#include <string>

#include <Poco/Bugcheck.h>

#include "Logging.h"
#include "Portal.h"
#include "VorException.h"
#include "VorOamSpiModelRepository.h"

namespace Vor {

/// What the managed-object model has: classes and their attributes. Any thread; an iterator belongs to one.
/// A failing repository, or none, is a `VorException`.
class ModRepWrap {
  public:
    static constexpr VorOamSpiAttributeHandleT allOnes = ~VorOamSpiAttributeHandleT{0};

    static void nullHandle(VorOamSpiAttributeHandleT& handle) { handle = allOnes; }
    static bool isHandleNull(VorOamSpiAttributeHandleT handle) { return handle == allOnes; }

    /// The model-repository interface, or null with a warning.
    static VorOamSpiModelRepository* spi() {
        VorOamSpiModelRepository* repository = Portal::instance().modelRepository();
        if (repository == nullptr) {
            LOG_WARNING("Interface %s not found", "VorOamSpiModelRepository");
        }
        return repository;
    }

    /// Walks the attributes of a class.
    class AttributeIterator {
      public:
        using NextAttribute = KelReturnT (*)(VorOamSpiAttributeHandleT, VorOamSpiAttributeHandleT*);

        /// The end.
        AttributeIterator() { nullHandle(_handle); }
        AttributeIterator(VorOamSpiAttributeHandleT first, NextAttribute next)
            : _handle(first), _last(false), _next(next) {}

        VorOamSpiAttributeHandleT operator*() const { return _handle; }
        AttributeIterator& operator++() {
            poco_assert(!_last);
            const VorReturnT result = _next(_handle, &_handle);
            if (result == VorReturnAbsent) {
                _last = true;
            } else {
                verifyModelRepositoryRetCode(result);
            }
            return *this;
        }
        bool operator==(const AttributeIterator& other) const {
            return _last == other._last && (_last || _handle == other._handle);
        }

      private:
        VorOamSpiAttributeHandleT _handle;
        bool _last = true;
        NextAttribute _next = nullptr;
    };

    /// A managed-object class; its handle is null when the model has no such class.
    class Moc {
      public:
        explicit Moc(VorOamSpiClassHandleT handle) : _handle(handle) {}

        VorOamSpiClassHandleT handle() const { return _handle; }

        // Platform operations, defined by the platform library.

        AttributeIterator attributesBegin() const;
        AttributeIterator attributesEnd() const;

      private:
        VorOamSpiClassHandleT _handle;
    };

    /// The repository's entry point.
    class Entry {
      public:
        // Platform operations, defined by the platform library.

        /// The class of the object that `dn` names.
        Moc getMocFromDn(const char* dn) const;
    };

    /// What the repository tells of one attribute.
    class AttrDescriptor {
      public:
        const std::string& name() const { return _name; }

        // Platform operations, defined by the platform library.

        explicit AttrDescriptor(VorOamSpiAttributeHandleT handle);

      private:
        std::string _name;
    };

    // Platform operations, defined by the platform library.

    /// Throws for every code but 0.
    static void verifyModelRepositoryRetCode(VorReturnT result);
};

}  // namespace Vor
