#include "platform/graphics/pixels/coverage/CellTile.h"

#include <algorithm>
#include <bit>
#include <cmath>

using grid::kFullArea;
using grid::kOne;
using grid::kShift;

namespace {

/// A tile takes at least this much memory, so that small ones hardly ever grow. What is not touched
/// costs nothing.
constexpr size_t kLeastBytes = size_t{160} << 10;

/// A tile that has more memory than this gives it back when it gets smaller.
constexpr size_t kKeptBytes = size_t{1} << 24;

constexpr int64_t kFractionMask = kOne - 1;

/// Touches columns first to last.
inline void touch(uint64_t* words, int64_t first, int64_t last) {
  int64_t w = first >> 6;
  const int64_t end = last >> 6;
  uint64_t mask = ~uint64_t{0} << (first & 63);
  for (; w < end; ++w) {
    words[w] |= mask;
    mask = ~uint64_t{0};
  }
  words[w] |= mask & (~uint64_t{0} >> (63 - (last & 63)));
}

/// Cells per row: one more than pixels, for what spills over the right edge.
int64_t strideFor(int64_t width) {
  return width + 1;
}

int64_t wordsFor(int64_t width) {
  return (strideFor(width) + 63) >> 6;
}

struct NonZeroCover {
  uint8_t operator()(int64_t area) const { return grid::coverOfArea(area); }
};

struct EvenOddCover {
  uint8_t operator()(int64_t area) const {
    const int64_t folded = area & (2 * kFullArea - 1);
    return grid::coverOfArea(folded > kFullArea ? 2 * kFullArea - folded : folded);
  }
};

struct NonZeroTouched {
  uint8_t operator()(int64_t area) const { return area != 0 ? 255 : 0; }
};

struct EvenOddTouched {
  uint8_t operator()(int64_t area) const { return (area & (2 * kFullArea - 1)) != 0 ? 255 : 0; }
};

/// Adds edges to cells. Works on copies of the tile's pointers and sizes: the compiler cannot keep
/// members in registers across stores to cells.
class EdgeAdder {
 public:
  EdgeAdder(int64_t* cells, uint64_t* touched, int64_t width, int64_t height)
      : cells_(cells),
        touched_(touched),
        width_(width),
        height_(height),
        stride_(strideFor(width)),
        words_(wordsFor(width)) {}

  void add(GridPoint a, GridPoint b) {
    const int64_t y = a.y >> kShift;
    if (y == b.y >> kShift && y >= 0 && y < height_) {
      // Most edges of flattened curves: within one row.
      if (a.y != b.y) addPiece(cells_ + y * stride_, touched_ + y * words_, a.x, b.x, b.y - a.y);
    } else if (a.y < b.y) {
      addRows(a, b, 1);
    } else if (b.y < a.y) {
      addRows(b, a, -1);
    }
  }

  int64_t work() const { return work_; }

 private:
  /// Cuts an edge that runs downwards at the pixel rows.
  void addRows(GridPoint top, GridPoint bottom, int64_t sign) {
    int64_t y = std::max<int64_t>(top.y, 0);
    const int64_t end = std::min(bottom.y, height_ << kShift);
    if (y >= end || std::min(top.x, bottom.x) >= width_ << kShift) return;
    const double slope =
        static_cast<double>(bottom.x - top.x) / static_cast<double>(bottom.y - top.y);
    const auto xAt = [&](int64_t at) {
      return top.x + std::lrint(slope * static_cast<double>(at - top.y));
    };
    int64_t* cells = cells_ + (y >> kShift) * stride_;
    uint64_t* touched = touched_ + (y >> kShift) * words_;
    int64_t x = y == top.y ? top.x : xAt(y);
    work_ += (end - y) >> kShift;
    while (y < end) {
      const int64_t next = std::min((y | kFractionMask) + 1, bottom.y);
      const int64_t xNext = next == bottom.y ? bottom.x : xAt(next);
      addPiece(cells, touched, x, xNext, sign * (next - y));
      x = xNext;
      y = next;
      cells += stride_;
      touched += words_;
    }
  }

  /// Adds the part of an edge inside one pixel row: from column xa to xb while it descends by
  /// `cover` (negative for upward edges).
  void addPiece(int64_t* cells, uint64_t* touched, int64_t xa, int64_t xb, int64_t cover) {
    const int64_t low = std::min(xa, xb);
    const int64_t high = std::max(xa, xb);
    const int64_t cell = low >> kShift;
    const int64_t last = high >> kShift;
    if (cell < 0 || last >= width_ || last - cell > 1) {
      addSlanted(cells, touched, low, high, cover);
      return;
    }
    // Within a pixel or across two: without branches, which would be mispredicted half the time.
    const int64_t border = (cell + 1) << kShift;
    const double descent = static_cast<double>(cover) / static_cast<double>(high - low);
    const int64_t before = std::lrint(descent * static_cast<double>(border - low));
    const int64_t first = last > cell ? before : cover;
    const int64_t second = cover - first;
    const int64_t firstArea =
        first * ((low & kFractionMask) + std::min(high - border + kOne, kOne));
    const int64_t secondArea = second * (high & kFractionMask);
    cells[cell] += first * (2 * kOne) - firstArea;
    cells[cell + 1] += firstArea + second * (2 * kOne) - secondArea;
    cells[last + 1] += secondArea;
    touch(touched, cell, last + 1);
  }

  /// A piece that crosses columns, or lies outside: what is left of the tile covers it whole, what
  /// is right of it does not matter.
  void addSlanted(int64_t* cells, uint64_t* touched, int64_t low, int64_t high, int64_t cover) {
    if (low >= width_ << kShift) return;
    if (high <= 0) {
      cells[0] += cover * (2 * kOne);
      touch(touched, 0, 0);
      return;
    }
    const double descent = static_cast<double>(cover) / static_cast<double>(high - low);
    int64_t cell = low >> kShift;
    int64_t fraction = low & kFractionMask;
    int64_t done = 0;
    int64_t spill = 0;
    if (cell < 0) {
      done = std::lrint(descent * static_cast<double>(-low));
      spill = done * (2 * kOne);
      cell = 0;
      fraction = 0;
    }
    const int64_t last = high >> kShift;
    const int64_t end = std::min(last, width_);
    touch(touched, cell, std::min(end + 1, width_));
    work_ += end - cell;
    for (; cell < end; ++cell) {
      const int64_t next = std::lrint(descent * static_cast<double>(((cell + 1) << kShift) - low));
      const int64_t area = (next - done) * (kOne + fraction);
      cells[cell] += (next - done) * (2 * kOne) - area + spill;
      spill = area;
      fraction = 0;
      done = next;
    }
    if (last < width_) {
      const int64_t area = (cover - done) * (fraction + (high & kFractionMask));
      cells[cell] += (cover - done) * (2 * kOne) - area + spill;
      spill = area;
      ++cell;
    }
    cells[cell] += spill;
  }

  int64_t* const cells_;
  uint64_t* const touched_;
  const int64_t width_;
  const int64_t height_;
  const int64_t stride_;
  const int64_t words_;
  int64_t work_ = 0;
};

/// Turns the touched cells of a row into covers and levels, and clears them.
template <class ToCover>
void sweepCells(int64_t* cells, uint64_t* touched, int64_t width, ToCover toCover, RowRuns& runs) {
  uint8_t* const covers = runs.covers();
  const int64_t words = wordsFor(width);
  int64_t sum = 0;
  int64_t x = 0;
  uint8_t level = 0;
  for (int64_t w = 0; w < words; ++w) {
    uint64_t bits = touched[w];
    if (bits == 0) continue;
    touched[w] = 0;
    do {
      const int start = std::countr_zero(bits);
      const int length = std::countr_one(bits >> start);
      bits = start + length < 64 ? bits & (~uint64_t{0} << (start + length)) : 0;
      const int64_t first = (w << 6) + start;
      if (x < first) runs.addLevel(x, first, level);
      runs.beginCovers(first);
      for (x = first; x < first + length; ++x) {
        sum += cells[x];
        cells[x] = 0;
        covers[x] = level = toCover(sum);
      }
    } while (bits != 0);
  }
  if (x < width) runs.addLevel(x, width, level);
}

}  // namespace

size_t CellTile::bytesFor(int64_t width, int64_t height) {
  return static_cast<size_t>((strideFor(width) + wordsFor(width)) * height) * sizeof(int64_t);
}

void CellTile::reset(int64_t width, int64_t height) {
  width_ = width;
  height_ = height;
  work_ = 0;
  const size_t bytes = bytesFor(width, height);
  if (bytes > memory_.size() || (memory_.size() > kKeptBytes && bytes < memory_.size() / 2)) {
    memory_ = ZeroedMemory();
    memory_ = ZeroedMemory(std::max(bytes, kLeastBytes));
  }
  // Sweeping leaves zeros behind, so the border between the two may move.
  void* const memory = memory_.data();
  cells_ = static_cast<int64_t*>(memory);
  touched_ = static_cast<uint64_t*>(memory) + strideFor(width) * height;
}

void CellTile::addPolyline(std::span<const GridPoint> points) {
  EdgeAdder adder(cells_, touched_, width_, height_);
  for (size_t i = 1; i < points.size(); ++i) adder.add(points[i - 1], points[i]);
  work_ += adder.work();
}

void CellTile::addEdge(GridPoint from, GridPoint to) {
  const GridPoint points[] = {from, to};
  addPolyline(points);
}

void CellTile::sweep(int32_t left, int32_t top, const CoverRule& rule, CoverageSink& sink) {
  const bool evenOdd = rule.winding == WindingRule::evenOdd;
  if (rule.antialias == Antialias::on) {
    evenOdd ? sweepRows(left, top, EvenOddCover{}, sink)
            : sweepRows(left, top, NonZeroCover{}, sink);
  } else {
    evenOdd ? sweepRows(left, top, EvenOddTouched{}, sink)
            : sweepRows(left, top, NonZeroTouched{}, sink);
  }
}

template <class ToCover>
void CellTile::sweepRows(int32_t left, int32_t top, ToCover toCover, CoverageSink& sink) {
  int64_t* cells = cells_;
  uint64_t* touched = touched_;
  runs_.prepare(left, width_);
  for (int64_t y = 0; y < height_; ++y) {
    runs_.begin();
    sweepCells(cells, touched, width_, toCover, runs_);
    const std::span<const CoverageRun> runs = runs_.finish(width_);
    if (!runs.empty()) sink.row(top + static_cast<int32_t>(y), runs);
    cells += strideFor(width_);
    touched += wordsFor(width_);
  }
}

void CellTile::discard() {
  memory_.clear(0, bytesFor(width_, height_));
}
