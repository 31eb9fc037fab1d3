#include "platform/graphics/pixels/SpanCompositor.h"

#include <algorithm>
#include <cstring>

#include "platform/graphics/pixels/PixelMath.h"

namespace {

/// Below this a call into a vector kernel costs more than the pixels.
constexpr int32_t kShortSpan = 8;

bool isSourceOver(NSCompositingOperation operation) {
  return operation == NSCompositingOperation::sourceOver ||
         operation == NSCompositingOperation::highlight;
}

CoverageRun piece(const CoverageRun& run, int32_t offset, int32_t length) {
  return {run.x + offset, length, run.covers == nullptr ? nullptr : run.covers + offset, run.cover};
}

CoverageRun cutTo(const CoverageRun& run, int32_t x0, int32_t x1) {
  const int32_t first = std::max(run.x, x0);
  const int32_t end = std::min(run.x + run.length, x1);
  return piece(run, first - run.x, end - first);
}

void shortSolid(uint32_t* d, const CoverageRun& run, uint32_t s) {
  for (int32_t i = 0; i < run.length; ++i) {
    const uint32_t m = run.covers == nullptr ? run.cover : run.covers[i];
    d[i] = sourceOver(scaled(s, m), d[i]);
  }
}

void shortMix(uint32_t* d, const CoverageRun& run, uint32_t s) {
  for (int32_t i = 0; i < run.length; ++i) {
    d[i] = mixed(d[i], s, run.covers == nullptr ? run.cover : run.covers[i]);
  }
}

}  // namespace

SpanCompositor::SpanCompositor(PixelSurface& surface, NSCompositingOperation operation,
                               const SpanPaint& paint)
    : surface_(surface), paint_(paint), blend_(blendFunction(operation)) {
  const bool solid = paint.source == nullptr;
  const bool opaque =
      solid ? alphaOf(paint.pixel) == 255 : paint.source->opaque() && paint.alpha == 255;
  if (operation == NSCompositingOperation::clear) {
    paint_ = SpanPaint::solid(0);
    mode_ = Mode::mixSolid;
  } else if (operation == NSCompositingOperation::copy || (isSourceOver(operation) && opaque)) {
    mode_ = solid ? Mode::mixSolid : Mode::mixRows;
  } else if ((solid ? paint.pixel == 0 : paint.alpha == 0) &&
             keepsDestinationUnderNothing(operation)) {
    mode_ = Mode::nothing;
  } else if (isSourceOver(operation)) {
    mode_ = solid ? Mode::overSolid : Mode::overRows;
  } else {
    mode_ = Mode::blend;
    if (solid) rowBuffer_.fill(paint.pixel);
  }
}

void SpanCompositor::row(int32_t y, std::span<const CoverageRun> runs) {
  const PixelBox& box = surface_.box();
  if (mode_ == Mode::nothing || y < box.y0 || y >= box.y1 || runs.empty()) return;
  // Announced once: what lies between the runs is not written.
  const int32_t left = std::max(runs.front().x, box.x0);
  const int32_t right = std::min(runs.back().x + runs.back().length, box.x1);
  if (left >= right) return;
  uint32_t* const pixels = surface_.paint(left, y, right);
  for (const CoverageRun& whole : runs) {
    const CoverageRun run = cutTo(whole, left, right);
    if (run.length <= 0) continue;
    uint32_t* const d = pixels + (run.x - left);
    if (isSolid()) {
      solidRun(d, run);
    } else {
      sourceRun(d, y, run);
    }
  }
}

void SpanCompositor::rows(int32_t y0, int32_t y1, std::span<const CoverageRun> runs) {
  if (!isSolid()) {
    CoverageSink::rows(y0, y1, runs);
    return;
  }
  const PixelBox& box = surface_.box();
  for (const CoverageRun& whole : runs) {
    const CoverageRun run = cutTo(whole, box.x0, box.x1);
    const PixelBox painted{run.x, std::max(y0, box.y0), run.x + run.length, std::min(y1, box.y1)};
    if (painted.empty()) continue;
    uint32_t* d = surface_.paint(painted);
    for (int64_t n = painted.height(); n > 0; --n, d += box.width()) solidRun(d, run);
  }
}

void SpanCompositor::solidRun(uint32_t* d, const CoverageRun& run) const {
  const uint32_t s = paint_.pixel;
  const int32_t n = run.length;
  const bool mix = mode_ == Mode::mixSolid;
  if (n < kShortSpan) {
    mix ? shortMix(d, run, s) : shortSolid(d, run, s);
  } else if (run.covers != nullptr) {
    mix ? mixSolid(d, n, s, run.covers) : overSolid(d, n, s, run.covers);
  } else if (!mix) {
    overSolid(d, n, s, uint32_t{run.cover});
  } else if (run.cover == 255) {
    fillSpan(d, n, s);
  } else {
    mixSolid(d, n, s, uint32_t{run.cover});
  }
}

void SpanCompositor::sourceRun(uint32_t* d, int32_t y, const CoverageRun& run) {
  if (mode_ == Mode::mixRows && run.covers == nullptr && run.cover == 255) {
    // Straight into the destination, without a buffer between.
    const uint32_t* const s = sourcePixels(run.x, y, run.length, d);
    if (s != d) std::memcpy(d, s, static_cast<size_t>(run.length) * sizeof(uint32_t));
    return;
  }
  for (int32_t done = 0; done < run.length; done += kChunk) {
    sourceChunk(d + done, y, piece(run, done, std::min(kChunk, run.length - done)));
  }
}

void SpanCompositor::sourceChunk(uint32_t* d, int32_t y, const CoverageRun& run) {
  const int32_t n = run.length;
  const bool solid = paint_.source == nullptr;
  const uint32_t* const s =
      solid ? rowBuffer_.data() : sourcePixels(run.x, y, n, rowBuffer_.data());
  if (mode_ == Mode::blend) {
    blendChunk(d, s, run);
  } else if (mode_ == Mode::mixRows) {
    run.covers != nullptr ? mixRow(d, n, s, run.covers) : mixRow(d, n, s, uint32_t{run.cover});
  } else {
    run.covers != nullptr ? overRow(d, n, s, run.covers) : overRow(d, n, s, uint32_t{run.cover});
  }
}

const uint32_t* SpanCompositor::sourcePixels(int32_t x, int32_t y, int32_t n,
                                             uint32_t* buffer) const {
  const uint32_t* const s = paint_.source->row(x, y, n, buffer);
  if (paint_.alpha == 255) return s;
  scaleRow(buffer, s, n, paint_.alpha);
  return buffer;
}

void SpanCompositor::blendChunk(uint32_t* d, const uint32_t* s, const CoverageRun& run) {
  const int32_t n = run.length;
  if (run.covers == nullptr && run.cover == 255) {
    blend_(d, s, n);
    return;
  }
  uint32_t* const blended = blendBuffer_.data();
  std::memcpy(blended, d, static_cast<size_t>(n) * sizeof(uint32_t));
  blend_(blended, s, n);
  if (run.covers != nullptr) {
    mixRow(d, n, blended, run.covers);
  } else {
    mixRow(d, n, blended, uint32_t{run.cover});
  }
}
