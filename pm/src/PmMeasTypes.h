#pragma once

#include <cstdint>
#include <cstring>
#include <map>

#include "PmReportBuffer.h"

namespace VorPm {

/// Orders names byte by byte.
struct CounterCompare {
    bool operator()(const char* left, const char* right) const { return std::strcmp(left, right) < 0; }
};

/// The measurement types of one class, numbered from 1 in the order in which they are met. The names are not
/// copied. Objects of a class mostly carry the same types in the same order, so each type remembers which one
/// followed it last: a guess that a comparison confirms, and a look-up only where it does not.
class PmMeasTypes {
  public:
    struct Type {
        std::uint32_t number = 0;
        /// The start of an element with a value of the type.
        ShortText valueTag;
        /// Null when none followed yet.
        const char* followerName = nullptr;
        Type* follower = nullptr;
    };
    using ByName = std::map<const char*, Type, CounterCompare>;

    /// The types by name.
    ByName& byName() { return _types; }
    const ByName& byName() const { return _types; }

    void clear() {
        _types.clear();
        _first = {};
        _last = &_first;
    }

    /// What is asked for next is an object's first type.
    void beginObject() { _last = &_first; }

    /// The type of that name; a name that was not met before gets the next number.
    const Type& find(const char* name) {
        const char* const expected = _last->followerName;
        if (expected == nullptr || (expected != name && std::strcmp(expected, name) != 0)) {
            lookUp(name);
        }
        _last = _last->follower;
        return *_last;
    }

  private:
    void lookUp(const char* name) {
        const auto [found, isNew] = _types.try_emplace(name);
        if (isNew) {
            found->second.number = static_cast<std::uint32_t>(_types.size());
        }
        _last->followerName = found->first;
        _last->follower = &found->second;
    }

    ByName _types;
    /// What precedes every object's first type.
    Type _first;
    Type* _last = &_first;
};

}  // namespace VorPm
