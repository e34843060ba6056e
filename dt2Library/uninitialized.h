// Sequences whose new elements are left uninitialised, for buffers that are filled right after.
// Clearing them first would cost a pass over memory, on one thread.
#pragma once

#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace QUOR_KELM25D {

template <class T>
struct UninitializedAllocator : std::allocator<T> {
    template <class U>
    struct rebind {
        using other = UninitializedAllocator<U>;
    };

    template <class U>
    void construct(U* p) noexcept {
        ::new (static_cast<void*>(p)) U; // default initialisation: nothing for plain records
    }
    template <class U, class... Args>
    void construct(U* p, Args&&... args) {
        ::new (static_cast<void*>(p)) U{std::forward<Args>(args)...};
    }
};

template <class T>
using UninitializedVector = std::vector<T, UninitializedAllocator<T>>;

} // namespace QUOR_KELM25D
