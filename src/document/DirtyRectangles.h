#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "draw/core/DrawBase.h"

/// Where on the canvas the draws of a document's buffer (all but the topmost one) were painted, so
/// that a change repaints only what it touches. Documents that are composed once pay nothing: areas
/// are noted from the second time on that everything is painted.
class DirtyRectangles {
 public:
  /// Everything that drawing it may change, in whole units, empty for an invisible draw. Nothing
  /// when that is not known, or when the draw depends on what lies beneath it.
  static std::optional<NSRect> areaOf(const DrawBase& draw);

  /// A top-level draw was changed or moved in the order, or is about to be.
  void noteChange(const std::shared_ptr<DrawBase>& draw);
  void noteChangeOfAll() { all_ = true; }
  /// There is no buffer any more.
  void forget();

  /// The parts of the buffer that are stale, which do not overlap; nothing for all of it. Draws
  /// that came to the list or left it need not be noted. The parts count as painted afterwards.
  std::optional<std::vector<NSRect>> takeStaleRects(const DrawArray& draws);
  /// Whether the draw at that index may paint there, for the list that takeStaleRects was given
  /// last and that it had an answer for.
  bool touches(size_t index, std::span<const NSRect> rects) const;

  /// The buffer holds the draws but the topmost one as they are now.
  void didPaintAll(const DrawArray& draws);
  /// A draw was painted over the buffer as it is.
  void didPaint(const DrawBase& draw);

 private:
  struct Record {
    std::optional<NSRect> area;
    uint64_t seen = 0;
  };

  std::unordered_map<const DrawBase*, Record> painted_;
  /// Areas of the draws passed to the last takeStaleRects, same order.
  std::vector<const Record*> inOrder_;
  /// Kept alive until they are painted again, so that no other draw gets their address.
  DrawArray changed_;
  bool all_ = true;
  bool paintedBefore_ = false;
  bool known_ = false;
  uint64_t round_ = 0;
};
