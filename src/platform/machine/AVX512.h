#pragma once

/// True where kernels written with AVX-512 VBMI instructions may be called.
inline bool hasAVX512VBMI() {
#if defined(__x86_64__) && defined(__GNUC__) && !defined(PAINT_NO_AVX512)
  // Processors that have these have the other extensions as well that are used with them.
  return __builtin_cpu_supports("avx512vbmi") > 0 && __builtin_cpu_supports("avx512vl") > 0;
#else
  return false;
#endif
}

#if defined(__x86_64__) && defined(__GNUC__)
/// Defined where the compiler knows the instructions. Kernels need a definition elsewhere, too.
#define PAINT_AVX512_KERNELS 1
/// Before a function that uses the instructions.
#define AVX512_KERNEL __attribute__((target("avx512f,avx512bw,avx512vl,avx512dq,avx512vbmi")))
/// Before a helper of such functions.
#define AVX512_INLINE AVX512_KERNEL __attribute__((always_inline)) inline

// GCC 12's own headers pass registers on that they leave undefined on purpose. The pragma counts
// from where it stands in the file that includes the intrinsics.
#ifdef __clang__
#define AVX512_UNDEFINED_REGISTERS
#else
#define AVX512_UNDEFINED_REGISTERS _Pragma("GCC diagnostic ignored \"-Wmaybe-uninitialized\"")
#endif
#endif
