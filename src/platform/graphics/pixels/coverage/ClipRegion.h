#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "platform/graphics/pixels/PixelBox.h"
#include "platform/graphics/pixels/coverage/CoverageRows.h"
#include "platform/graphics/pixels/coverage/CoverageRun.h"

/// The pixels that drawing may reach, and how much: a box of whole pixels, or coverage runs per
/// row inside a box. A value: copies share the runs, so that saving a graphics state is cheap.
class ClipRegion {
 public:
  /// Nothing.
  ClipRegion() = default;
  /// Whole pixels.
  explicit ClipRegion(const PixelBox& box) : box_(box.empty() ? PixelBox{} : box) {}
  /// What `rows` covers.
  explicit ClipRegion(std::shared_ptr<const CoverageRows> rows);
  /// A soft mask: `covers` holds a byte of coverage per pixel of `box`, rows top first.
  static ClipRegion ofMask(const PixelBox& box, const uint8_t* covers, size_t bytesPerRow);

  bool isEmpty() const { return box_.empty(); }
  /// Whether every pixel of box() is fully inside.
  bool isBox() const { return !rows_; }
  /// Every pixel outside this box is outside the region.
  const PixelBox& box() const { return box_; }

  /// What is inside both.
  ClipRegion intersected(const PixelBox& box) const;
  ClipRegion intersected(const ClipRegion& other) const;

  /// Hands the region itself to `sink`, as the coverage of painting all of it.
  void emit(CoverageSink& sink) const;

 private:
  friend class ClipSink;
  PixelBox box_;
  std::shared_ptr<const CoverageRows> rows_;  ///< null for a plain box
};

/// Passes coverage on to another sink, multiplied by a region. Long opaque runs stay runs where
/// the region is opaque. The region must outlive the sink.
class ClipSink : public CoverageSink {
 public:
  ClipSink(const ClipRegion& region, CoverageSink& next);
  void row(int32_t y, std::span<const CoverageRun> runs) override;

 private:
  void combine(const CoverageRun& a, const CoverageRun& b);

  const ClipRegion& region_;
  CoverageSink& next_;
  std::vector<CoverageRun> out_;
  std::vector<uint8_t> covers_;
  size_t used_ = 0;  ///< bytes of covers_ taken by the current row
};
