#pragma once

/// VECTOR_CLONES before a non-template free function compiles it for several processor levels and
/// lets the loader choose. Helpers inlined into such a function are compiled for each level too.
/// Empty where the toolchain cannot have it: the thread sanitizer's run-time is not up when the
/// resolvers run, and other platforms lack indirect functions.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define PAINT_NO_CLONES 1
#endif
#endif
#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(__SANITIZE_THREAD__) && \
    !defined(PAINT_NO_CLONES)
#define VECTOR_CLONES __attribute__((target_clones("avx2", "default")))
#else
#define VECTOR_CLONES
#endif
