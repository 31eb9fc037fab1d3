#include "platform/graphics/pixels/paint/SpanCompositor.h"

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

SpanCompositor::~SpanCompositor() {
  surface_.announcePainted(touched_);
}

void SpanCompositor::touch(const PixelBox& box) {
  // Tests, as they hardly ever hold: storing the box anew for each row costs more than a short run.
  if (box.x0 < touched_.x0) touched_.x0 = box.x0;
  if (box.x1 > touched_.x1) touched_.x1 = box.x1;
  if (box.y0 < touched_.y0) touched_.y0 = box.y0;
  if (box.y1 > touched_.y1) touched_.y1 = box.y1;
}

void SpanCompositor::rows(int32_t y, int32_t end, std::span<const CoverageRun> runs) {
  const PixelBox& box = surface_.box();
  y = std::max(y, box.y0);
  end = std::min(end, box.y1);
  if (mode_ == Mode::nothing || y >= end) return;
  for (const CoverageRun& whole : runs) {
    const CoverageRun run = cutTo(whole, box.x0, box.x1);
    if (run.length <= 0) continue;
    touch({run.x, y, run.x + run.length, end});
    if (mode_ == Mode::mixSolid || mode_ == Mode::overSolid) {
      solidRun(y, end, run);
    } else {
      for (int32_t i = y; i < end; ++i) sourceRun(surface_.pixels(run.x, i), i, run);
    }
  }
}

void SpanCompositor::solidRun(int32_t y, int32_t end, const CoverageRun& run) {
  uint32_t* d = surface_.pixels(run.x, y);
  const bool fills = mode_ == Mode::mixSolid && run.covers == nullptr && run.cover == 255 &&
                     run.length >= kShortSpan;
  for (; y < end; ++y, d += surface_.stride()) {
    if (fills) {
      fillSpan(d, run.length, paint_.pixel);
    } else {
      solidSpan(d, run);
    }
  }
}

void SpanCompositor::solidSpan(uint32_t* d, const CoverageRun& run) const {
  const uint32_t s = paint_.pixel;
  const int32_t n = run.length;
  const bool mix = mode_ == Mode::mixSolid;
  if (n < kShortSpan) {
    mix ? shortMix(d, run, s) : shortSolid(d, run, s);
  } else if (run.covers != nullptr) {
    mix ? mixSolid(d, n, s, run.covers) : overSolid(d, n, s, run.covers);
  } else {
    mix ? mixSolid(d, n, s, uint32_t{run.cover}) : overSolid(d, n, s, uint32_t{run.cover});
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
  if (s != buffer) std::memcpy(buffer, s, static_cast<size_t>(n) * sizeof(uint32_t));
  scaleRow(buffer, n, paint_.alpha);
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
