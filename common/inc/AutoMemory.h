#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace Vor {

/// Owns raw memory blocks and objects until it is released or destroyed. One thread at a time.
class AutoMemory {
  public:
    class OwnedObjBase {
      public:
        virtual ~OwnedObjBase() = default;
    };

    /// A `T` that an `AutoMemory` can own.
    template <class T>
    class OwnedObj : public OwnedObjBase, public T {
      public:
        using T::T;
        explicit OwnedObj(const T& object) : T(object) {}
    };

    /// A zero-filled array of plain `T`, owned here. Throws `std::bad_alloc`.
    template <class T>
    T* allocate(std::size_t count) {
        // NOLINTNEXTLINE(bugprone-sizeof-expression): arrays of pointers are what filters are made of.
        Block block(std::calloc(count, sizeof(T)), &std::free);
        if (block == nullptr) {
            throw std::bad_alloc();
        }
        _blocks.push_back(std::move(block));
        return static_cast<T*>(_blocks.back().get());
    }

    /// A new `T`, owned here.
    template <class T, class... ArgumentsT>
    T* create(ArgumentsT&&... arguments) {
        auto owned = std::make_unique<OwnedObj<T>>(std::forward<ArgumentsT>(arguments)...);
        T* object = owned.get();
        _objects.push_back(std::move(owned));
        return object;
    }

    void release() {
        _blocks.clear();
        _objects.clear();
    }

  private:
    using Block = std::unique_ptr<void, void (*)(void*)>;

    std::vector<Block> _blocks;
    std::vector<std::unique_ptr<OwnedObjBase>> _objects;
};

}  // namespace Vor
