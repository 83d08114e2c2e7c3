#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <memory_resource>
#include <vector>

#include "PmReportBuffer.h"

namespace VorPm {

/// Orders names byte by byte.
struct CounterCompare {
    bool operator()(const char* left, const char* right) const { return std::strcmp(left, right) < 0; }
};

/// The measurement types of one class, numbered from 1 in the order in which they are met. The names are not
/// copied. Objects of a class mostly carry the same types in the same order, so each type remembers which one
/// followed it: a guess that a comparison confirms, and a search only where it does not.
class PmMeasTypes {
  public:
    struct Type {
        const char* name = nullptr;
        std::uint32_t number = 0;
        /// The number of the type that is expected to follow it; 0 when none did yet.
        std::uint32_t follower = 0;
        /// The start of an element with a value of the type.
        ShortText valueTag;
    };

    PmMeasTypes() { clear(); }
    PmMeasTypes(const PmMeasTypes&) = delete;
    PmMeasTypes& operator=(const PmMeasTypes&) = delete;

    void clear() {
        _numbers.clear();
        _memory.release();
        _types.assign(1, {});
        _last = 0;
    }

    /// What is asked for next is an object's first type.
    void beginObject() { _last = 0; }

    /// The type of that name; a name that was not met before gets the next number. Valid until the next call.
    const Type& find(const char* name) {
        std::uint32_t number = _types[_last].follower;
        if (!isNamed(number, name)) {
            // The object may lack the expected type, and go on with the next one.
            number = _types[number].follower;
            if (!isNamed(number, name)) {
                number = search(name);
                _types[_last].follower = number;
            }
        }
        _last = number;
        return _types[number];
    }

    /// Calls `visit` with each type, in the order of the names.
    template <class VisitT>
    void forEachByName(VisitT visit) const {
        for (const auto& [name, number] : _numbers) {
            visit(_types[number]);
        }
    }

  private:
    /// False for 0, too.
    bool isNamed(std::uint32_t number, const char* name) const {
        const char* const known = _types[number].name;
        return known == name || (number != 0 && std::strcmp(known, name) == 0);
    }

    std::uint32_t search(const char* name) {
        const auto next = static_cast<std::uint32_t>(_types.size());
        const auto [found, isNew] = _numbers.try_emplace(name, next);
        if (isNew) {
            _types.push_back({name, next, 0, {"\t\t\t\t<r p=\"", next, "\">"}});
        }
        return found->second;
    }

    /// By their numbers; the first stands for what precedes every object's first type.
    std::vector<Type> _types;
    std::uint32_t _last = 0;
    /// Small classes need no other memory.
    std::array<std::byte, 2048> _ownMemory;
    std::pmr::monotonic_buffer_resource _memory{_ownMemory.data(), _ownMemory.size()};
    std::pmr::map<const char*, std::uint32_t, CounterCompare> _numbers{&_memory};
};

}  // namespace VorPm
