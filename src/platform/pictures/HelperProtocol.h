#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "platform/foundation/Geometry.h"

// What the engine and paint-picture-helper say to each other, over a socket that keeps messages
// apart (SOCK_SEQPACKET). Both are built together: messages are plain structures of this machine,
// and a helper of another version is not talked to.
//
// The helper greets first. Then each request gets one reply. Data and pixels go through memory that
// the helper makes and both map: an inbox, into which the engine copies a picture's data before the
// first request about it, and an outbox, in which the engine finds its pixels. Both stay for the
// next pictures while they are small; the pixels of a large picture have sealed memory of their
// own. The helper holds one open picture.

/// What a picture is, and what draws it.
enum class PictureKind : uint32_t { pdf = 1, systemSVG, builtInSVG };

enum class HelperOrder : uint32_t { findSystemSVG = 1, makeInbox, measure, draw };

inline constexpr uint32_t kHelperMagic = 0x50504831;

/// With it comes a process descriptor (pidfd_open(2)) of the helper, where the system has them.
struct HelperGreeting {
  uint32_t magic = kHelperMagic;
  std::array<char, 28> version{};  ///< PAINT_VERSION, zero at the end
};

struct HelperRequest {
  uint32_t magic = kHelperMagic;
  HelperOrder order = HelperOrder::findSystemSVG;
  PictureKind kind = PictureKind::pdf;
  uint32_t processorMilliseconds = 0;
  uint32_t wallMilliseconds = 0;
  uint64_t memoryBytes = 0;  ///< besides data and pixels
  /// makeInbox: what it must hold. measure, draw: the length of a new picture's data, which are in
  /// the inbox; 0 for the picture that is open.
  uint64_t dataBytes = 0;
  int64_t width = 0;  ///< draw, in pixels; both sides above 0
  int64_t height = 0;
  /// draw: from fractions of the picture's natural size (y downwards from its upper edge) to
  /// pixels, rows counted from the top.
  CGAffineTransform transform{};
};

enum class HelperResult : uint32_t {
  done = 1,
  no,  ///< findSystemSVG: it is not installed
  unreadable,
  tooMuchTime,
  tooMuchMemory,
  stuck,
  retired,  ///< this helper holds much memory; another one is to be asked
};

/// With a reply to makeInbox that is done comes the inbox, of boxBytes(dataBytes). With one to draw
/// comes the outbox, when it is a new one, of boxBytes(width x height x 4); pixels beyond
/// kMostBoxBytes come in sealed memory of exactly their size. They are premultiplied R, G, B, A,
/// rows top first.
struct HelperReply {
  uint32_t magic = kHelperMagic;
  HelperResult result = HelperResult::done;
  NSSize size{};                       ///< measure, draw: the natural size
  uint64_t processorMicroseconds = 0;  ///< what this request took
};

inline constexpr size_t kMostBoxBytes = size_t{4} << 20;

/// How large a box is made that is to hold some bytes.
constexpr size_t boxBytes(size_t bytes) {
  constexpr size_t kLeast = size_t{64} << 10;
  if (bytes > kMostBoxBytes) return bytes;
  return bytes <= kLeast ? kLeast : std::bit_ceil(bytes);
}
