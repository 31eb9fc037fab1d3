#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "platform/graphics/pixels/coverage/CoverageRun.h"
#include "platform/graphics/pixels/paint/BlendFunctions.h"
#include "platform/graphics/pixels/paint/CompositingOperation.h"
#include "platform/graphics/pixels/paint/PixelSurface.h"
#include "platform/graphics/pixels/paint/RowSource.h"
#include "platform/graphics/pixels/paint/SpanKernels.h"

/// Paints coverage onto a surface: where a run has coverage m > 0 the destination D becomes
/// (1 - m) D + m f(S, D), f being the operation; no other pixel is touched. Runs are cut to the
/// surface.
class SpanCompositor final : public CoverageSink {
 public:
  /// `surface` and the paint's source must outlive this object. A solid pixel must be properly
  /// premultiplied.
  SpanCompositor(PixelSurface& surface, NSCompositingOperation operation, const SpanPaint& paint);
  SpanCompositor(const SpanCompositor&) = delete;
  SpanCompositor& operator=(const SpanCompositor&) = delete;
  /// Announces what was painted.
  ~SpanCompositor() override;

  void row(int32_t y, std::span<const CoverageRun> runs) override {
    SpanCompositor::rows(y, y + 1, runs);
  }
  void rows(int32_t y, int32_t end, std::span<const CoverageRun> runs) override;

 private:
  enum class Mode : uint8_t { nothing, mixSolid, overSolid, mixRows, overRows, blend };
  static constexpr int32_t kChunk = 1024;

  void touch(const PixelBox& box);
  void solidRun(int32_t y, int32_t end, const CoverageRun& run);
  void solidSpan(uint32_t* d, const CoverageRun& run) const;
  void sourceRun(uint32_t* d, int32_t y, const CoverageRun& run);
  void sourceChunk(uint32_t* d, int32_t y, const CoverageRun& run);
  const uint32_t* sourcePixels(int32_t x, int32_t y, int32_t n, uint32_t* buffer) const;
  void blendChunk(uint32_t* d, const uint32_t* s, const CoverageRun& run);

  PixelSurface& surface_;
  PixelBox touched_{INT32_MAX, INT32_MAX, INT32_MIN, INT32_MIN};
  SpanPaint paint_;
  Mode mode_ = Mode::nothing;
  BlendFunction blend_ = nullptr;
  std::array<uint32_t, kChunk> rowBuffer_;
  std::array<uint32_t, kChunk> blendBuffer_;
};
