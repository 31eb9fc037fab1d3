#pragma once

/// TARGET_CLONES before a non-template free function compiles it for several processor levels and
/// lets the loader choose. Helpers inlined into such a function are compiled for each level too.
/// Without clones where the toolchain cannot have them: the thread sanitizer's run-time is not up
/// when the resolvers run, other platforms lack indirect functions, and clang before 17 gives such
/// a function no symbol that another file could call.
#if defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define PAINT_NO_CLONES 1
#endif
#endif
#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(__SANITIZE_THREAD__) && \
    !defined(PAINT_NO_CLONES) && (!defined(__clang__) || __clang_major__ >= 17)
#define PAINT_CLONES 1
#ifdef PAINT_NO_AVX512
#define TARGET_CLONES __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define TARGET_CLONES __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#endif
#else
// Not inlined either: a loop that is loses the promises its restrict parameters make.
#define TARGET_CLONES __attribute__((noinline))
#endif

/// ALWAYS_INLINE before a helper of such a function that is more than a few instructions long: left
/// to itself the compiler may call it, compiled for the lowest level, from every clone.
#define ALWAYS_INLINE inline __attribute__((always_inline))
