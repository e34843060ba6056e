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

/// The same for a record that may stand across two cache lines.
template <class Record>
inline void prefetchRecord(const Record* p) noexcept {
    static_assert(sizeof(Record) <= 64, "touches two cache lines at most");
    prefetch(p);
    prefetch(reinterpret_cast<const char*>(p + 1) - 1);
}

} // namespace QUOR_KELM25D
