// A hint to the processor: memory that will be read soon.
// Without effect on results, and on compilers that have no such hint.
#pragma once

namespace QUOR_KELM25D {

inline void prefetch(const void* p) noexcept {
#if defined(__GNUC__)
    __builtin_prefetch(p);
#else
    static_cast<void>(p);
#endif
}

} // namespace QUOR_KELM25D
