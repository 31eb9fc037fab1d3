#pragma once

#include <cstddef>
#include <cstdint>

#include "platform/machine/TargetClones.h"

// NOLINTBEGIN(bugprone-macro-parentheses): the arguments are in parentheses of their own.
#define VECTOR_WIDTH_CLONE(level, name, parameters, kernel_of_lanes, arguments) \
  __attribute__((target(level))) void name parameters {                         \
    kernel_of_lanes arguments;                                                  \
  }

/// VECTOR_WIDTH_CLONES(name, parameters, kernel, arguments) defines the function `name` as
/// kernel<lanes> of as many 4-byte lanes as the processor's widest registers have, for kernels
/// written with vectors of that many: a compiler does badly what is wider, and a processor what is
/// narrower. The kernel is an ALWAYS_INLINE template; other files do not see the choice, and need
/// another function that calls this one.
#if !defined(PAINT_CLONES) || defined(__clang__)
#define VECTOR_WIDTH_CLONES(name, parameters, kernel, arguments) \
  void name parameters {                                         \
    kernel<4> arguments;                                         \
  }
#elif defined(PAINT_NO_AVX512)
#define VECTOR_WIDTH_CLONES(name, parameters, kernel, arguments)        \
  VECTOR_WIDTH_CLONE("default", name, parameters, kernel<4>, arguments) \
  VECTOR_WIDTH_CLONE("arch=x86-64-v3", name, parameters, kernel<8>, arguments)
#else
#define VECTOR_WIDTH_CLONES(name, parameters, kernel, arguments)               \
  VECTOR_WIDTH_CLONE("default", name, parameters, kernel<4>, arguments)        \
  VECTOR_WIDTH_CLONE("arch=x86-64-v3", name, parameters, kernel<8>, arguments) \
  VECTOR_WIDTH_CLONE("arch=x86-64-v4", name, parameters, kernel<16>, arguments)
#endif
// NOLINTEND(bugprone-macro-parentheses)
constexpr size_t kMaxLanes = 16;

/// The vectors of such kernels, and the same anywhere in memory.
template <size_t kLanes>
struct VectorTypes {
  using Floats [[gnu::vector_size(4 * kLanes)]] = float;
  using Ints [[gnu::vector_size(4 * kLanes)]] = int32_t;
  using Words [[gnu::vector_size(4 * kLanes)]] = uint32_t;
  using FloatsInMemory [[gnu::vector_size(4 * kLanes), gnu::aligned(4), gnu::may_alias]] = float;
  using IntsInMemory [[gnu::vector_size(4 * kLanes), gnu::aligned(4), gnu::may_alias]] = int32_t;
  using WordsInMemory [[gnu::vector_size(4 * kLanes), gnu::aligned(4), gnu::may_alias]] = uint32_t;

  // Copying bytes instead takes a compiler through narrower registers.
  static ALWAYS_INLINE void load(const float* from, Floats& to) {
    to = *reinterpret_cast<const FloatsInMemory*>(from);
  }
  static ALWAYS_INLINE void load(const int32_t* from, Ints& to) {
    to = *reinterpret_cast<const IntsInMemory*>(from);
  }
  static ALWAYS_INLINE void load(const uint32_t* from, Words& to) {
    to = *reinterpret_cast<const WordsInMemory*>(from);
  }
  static ALWAYS_INLINE void store(const Floats& from, float* to) {
    *reinterpret_cast<FloatsInMemory*>(to) = from;
  }
  static ALWAYS_INLINE void store(const Ints& from, int32_t* to) {
    *reinterpret_cast<IntsInMemory*>(to) = from;
  }
  static ALWAYS_INLINE void store(const Words& from, uint32_t* to) {
    *reinterpret_cast<WordsInMemory*>(to) = from;
  }
};
