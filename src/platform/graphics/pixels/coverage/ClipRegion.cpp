#include "platform/graphics/pixels/coverage/ClipRegion.h"

#include <algorithm>

#include "platform/machine/TargetClones.h"

namespace {

/// a b / 255, rounded to nearest.
inline uint8_t multiply(uint32_t a, uint32_t b) {
  const uint32_t t = a * b + 128;
  return static_cast<uint8_t>((t + (t >> 8)) >> 8);
}

TARGET_CLONES void multiplyCovers(const uint8_t* a, const uint8_t* b, uint8_t* out, int n) {
  for (int i = 0; i < n; ++i) out[i] = multiply(a[i], b[i]);
}

TARGET_CLONES void multiplyCovers(const uint8_t* a, uint8_t b, uint8_t* out, int n) {
  for (int i = 0; i < n; ++i) out[i] = multiply(a[i], b);
}

int32_t endOf(const CoverageRun& run) {
  return run.x + run.length;
}

/// The part of `run` from column x0 to x1 - 1, which it covers.
CoverageRun part(const CoverageRun& run, int32_t x0, int32_t x1) {
  return {x0, x1 - x0, run.covers ? run.covers + (x0 - run.x) : nullptr, run.cover};
}

bool isOpaque(const CoverageRun& run) {
  return !run.covers && run.cover == 255;
}

/// A mask row as runs: stretches of equal coverage, and arrays between them.
class MaskRow {
 public:
  MaskRow(const uint8_t* covers, int32_t left, int32_t width)
      : covers_(covers), left_(left), width_(width) {}

  std::span<const CoverageRun> runs() {
    int32_t pending = 0;
    for (int32_t x = 0; x < width_;) {
      const int32_t end = equalUntil(x);
      const bool isLevel = end - x >= kShortestLevel || covers_[x] == 0;
      if (isLevel) {
        pushCovers(pending, x);
        if (covers_[x] != 0) runs_.push_back({left_ + x, end - x, nullptr, covers_[x]});
        pending = end;
      }
      x = end;
    }
    pushCovers(pending, width_);
    return runs_;
  }

 private:
  static constexpr int32_t kShortestLevel = 8;

  int32_t equalUntil(int32_t x) const {
    const uint8_t level = covers_[x];
    return static_cast<int32_t>(
        std::find_if(covers_ + x, covers_ + width_, [&](uint8_t c) { return c != level; }) -
        covers_);
  }
  void pushCovers(int32_t from, int32_t end) {
    if (from < end) runs_.push_back({left_ + from, end - from, covers_ + from, 0});
  }

  const uint8_t* covers_;
  int32_t left_;
  int32_t width_;
  std::vector<CoverageRun> runs_;
};

}  // namespace

ClipRegion::ClipRegion(std::shared_ptr<const CoverageRows> rows) : box_(rows->box()) {
  if (!box_.empty()) rows_ = std::move(rows);
}

ClipRegion ClipRegion::ofMask(const PixelBox& box, const uint8_t* covers, size_t bytesPerRow) {
  CoverageRowsBuilder builder;
  for (int32_t y = box.y0; y < box.y1 && box.x0 < box.x1; ++y) {
    builder.row(y, MaskRow(covers, box.x0, static_cast<int32_t>(box.width())).runs());
    covers += bytesPerRow;
  }
  return ClipRegion(builder.finish());
}

ClipRegion ClipRegion::intersected(const PixelBox& box) const {
  ClipRegion result;
  const PixelBox common = intersection(box_, box);
  if (common.empty()) return result;
  result.box_ = common;
  result.rows_ = rows_;
  return result;
}

ClipRegion ClipRegion::intersected(const ClipRegion& other) const {
  if (other.isBox()) return intersected(other.box_);
  if (isBox()) return other.intersected(box_);
  CoverageRowsBuilder builder;
  ClipSink both(*this, builder);
  other.intersected(box_).emit(both);
  return ClipRegion(builder.finish());
}

void ClipRegion::emit(CoverageSink& sink) const {
  if (isEmpty()) return;
  const CoverageRun whole{box_.x0, static_cast<int32_t>(box_.width()), nullptr, 255};
  ClipSink clipped(*this, sink);
  CoverageSink& target = isBox() ? sink : clipped;
  target.rows(box_.y0, box_.y1, {&whole, 1});
}

ClipSink::ClipSink(const ClipRegion& region, CoverageSink& next) : region_(region), next_(next) {
  covers_.resize(static_cast<size_t>(region.box_.width()));
}

void ClipSink::row(int32_t y, std::span<const CoverageRun> runs) {
  const PixelBox& box = region_.box_;
  if (y < box.y0 || y >= box.y1 || runs.empty()) return;
  const CoverageRun whole{box.x0, static_cast<int32_t>(box.width()), nullptr, 255};
  std::span<const CoverageRun> clip =
      region_.isBox() ? std::span(&whole, 1) : region_.rows_->row(y);
  const auto liesBefore = [&](const CoverageRun& c) { return endOf(c) <= runs.front().x; };
  auto inside = std::partition_point(clip.begin(), clip.end(), liesBefore);
  out_.clear();
  used_ = 0;
  for (auto run = runs.begin(); run != runs.end() && inside != clip.end();) {
    const int32_t x0 = std::max({run->x, inside->x, box.x0});
    const int32_t x1 = std::min({endOf(*run), endOf(*inside), box.x1});
    if (x1 - x0 == run->length && isOpaque(*inside)) {
      out_.push_back(*run);
    } else if (x0 < x1) {
      combine(part(*run, x0, x1), part(*inside, x0, x1));
    }
    if (endOf(*run) < endOf(*inside)) {
      ++run;
    } else {
      ++inside;
    }
  }
  if (!out_.empty()) next_.row(y, out_);
}

/// Adds the product of two runs over the same pixels.
void ClipSink::combine(const CoverageRun& a, const CoverageRun& b) {
  if (isOpaque(b)) {
    out_.push_back(a);
  } else if (isOpaque(a)) {
    out_.push_back(b);
  } else if (!a.covers && !b.covers) {
    const uint8_t cover = multiply(a.cover, b.cover);
    if (cover != 0) out_.push_back({a.x, a.length, nullptr, cover});
  } else {
    uint8_t* covers = covers_.data() + used_;
    used_ += static_cast<size_t>(a.length);
    if (a.covers && b.covers) {
      multiplyCovers(a.covers, b.covers, covers, a.length);
    } else {
      multiplyCovers(a.covers ? a.covers : b.covers, a.covers ? b.cover : a.cover, covers,
                     a.length);
    }
    out_.push_back({a.x, a.length, covers, 0});
  }
}
