#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <vector>

#include "PmReportBuffer.h"

namespace VorPm {

/// Orders names byte by byte.
struct counterCompare {
    bool operator()(const char* left, const char* right) const { return std::strcmp(left, right) < 0; }
};

/// The measurement types of one class, numbered from 1 in the order in which they are met. The names are not
/// copied. Objects of a class mostly carry the same types in the same order, so each type remembers which one
/// followed it: a guess that a comparison confirms, and a search only where it does not.
class PmMeasTypes {
  public:
    struct Type {
        std::string_view name;
        std::uint32_t number = 0;
        /// The number of the type that is expected to follow it; 0 when none did yet.
        std::uint32_t follower = 0;
        /// The start of an element with a value of the type.
        ShortText valueTag;
    };

    PmMeasTypes() { clear(); }

    void clear() {
        _byName.clear();
        _types.assign(1, {});
        _last = 0;
        _isGuessWrong = false;
    }

    /// What is asked for next is an object's first type.
    void beginObject() { _last = 0; }

    /// The type of that name; a name that was not met before gets the next number. Valid until the next call.
    const Type& find(const char* name) {
        const std::uint32_t expected = _types[_last].follower;
        _last = isNamed(expected, name) ? expected : findUnexpected(expected, name);
        return _types[_last];
    }

    /// The same, when all objects are walked once more as before: guesses that were right then are right now.
    const Type& findAgain(const char* name) {
        if (_isGuessWrong) {
            return find(name);
        }
        _last = _types[_last].follower;
        return _types[_last];
    }

    /// Calls `visit` with each type, in the order of the names.
    template <class VisitT>
    void forEachByName(VisitT visit) const {
        for (const std::uint32_t number : _byName) {
            visit(_types[number]);
        }
    }

  private:
    /// False for 0, too.
    bool isNamed(std::uint32_t number, const char* name) const {
        const char* const known = _types[number].name.data();
        return known == name || (number != 0 && std::strcmp(known, name) == 0);
    }

    std::uint32_t findUnexpected(std::uint32_t expected, const char* name) {
        if (expected != 0) {
            _isGuessWrong = true;
            // The object may lack the expected type, and go on with the next one.
            const std::uint32_t next = _types[expected].follower;
            if (isNamed(next, name)) {
                return next;
            }
        }
        const std::uint32_t number = search(name);
        _types[_last].follower = number;
        return number;
    }

    std::uint32_t search(const char* name) {
        const auto isBefore = [this](std::uint32_t number, const char* other) {
            return counterCompare()(_types[number].name.data(), other);
        };
        // New names often come in their order.
        auto place = _byName.end();
        if (place != _byName.begin() && !isBefore(_byName.back(), name)) {
            place = std::lower_bound(_byName.begin(), place, name, isBefore);
            if (isNamed(*place, name)) {
                return *place;
            }
        }
        const auto next = static_cast<std::uint32_t>(_types.size());
        _types.push_back({name, next, 0, {"\t\t\t\t<r p=\"", next, "\">"}});
        _byName.insert(place, next);
        return next;
    }

    /// By their numbers; the first stands for what precedes every object's first type.
    std::vector<Type> _types;
    std::uint32_t _last = 0;
    /// An object went on otherwise than one before it.
    bool _isGuessWrong = false;
    /// The numbers, in the order of the names.
    std::vector<std::uint32_t> _byName;
};

}  // namespace VorPm
