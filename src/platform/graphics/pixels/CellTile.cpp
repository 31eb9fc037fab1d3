#include "platform/graphics/pixels/CellTile.h"

#include <algorithm>
#include <bit>
#include <cmath>

using grid::kFullArea;
using grid::kOne;
using grid::kShift;

namespace {

/// Shorter stretches of equal coverage between edges go into the neighbouring cover array: a
/// separate run costs the consumer more than that many pixels.
constexpr int64_t kShortestLevel = 8;

/// Cover arrays longer than this are searched for stretches without edges, which overlapping
/// parts of a shape leave.
constexpr int64_t kLongCovers = 32;

/// A tile that keeps more cells than this after use gives its memory back.
constexpr size_t kKeptCells = size_t{1} << 21;

constexpr int64_t kFractionMask = kOne - 1;

void touch(uint64_t* words, int64_t x) {
  words[x >> 6] |= uint64_t{1} << (x & 63);
}

/// Touches columns first to last.
void touch(uint64_t* words, int64_t first, int64_t last) {
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

}  // namespace

size_t CellTile::bytesFor(int64_t width, int64_t height) {
  return static_cast<size_t>((strideFor(width) + wordsFor(width)) * height) * sizeof(int64_t);
}

void CellTile::reset(int64_t width, int64_t height) {
  width_ = width;
  height_ = height;
  stride_ = strideFor(width);
  words_ = wordsFor(width);
  const size_t cells = static_cast<size_t>(stride_ * height);
  const size_t words = static_cast<size_t>(words_ * height);
  // Sweeping leaves zeros behind, so only growth needs to be cleared.
  if (cells_.size() > kKeptCells && cells < cells_.size() / 2) {
    std::vector<int64_t>().swap(cells_);
    std::vector<uint64_t>().swap(touched_);
  }
  if (cells_.size() < cells) cells_.resize(cells);
  if (touched_.size() < words) touched_.resize(words);
  if (covers_.size() < static_cast<size_t>(stride_)) covers_.resize(static_cast<size_t>(stride_));
}

/// Adds the part of an edge inside one pixel row: from column xa to xb while it descends by
/// `cover` (negative for upward edges).
inline void CellTile::addPiece(const Row& r, int64_t xa, int64_t xb, int64_t cover) {
  const int64_t cell = xa >> kShift;
  if (cell == xb >> kShift && cell >= 0 && cell < width_) {
    const int64_t area = cover * ((xa & kFractionMask) + (xb & kFractionMask));
    r.cells[cell] += cover * (2 * kOne) - area;
    r.cells[cell + 1] += area;
    touch(r.words, cell, cell + 1);
    return;
  }
  addSlanted(r, std::min(xa, xb), std::max(xa, xb), cover);
}

/// A piece that crosses columns, or lies outside: what is left of the tile covers it whole, what
/// is right of it does not matter.
void CellTile::addSlanted(const Row& r, int64_t low, int64_t high, int64_t cover) {
  if (low >= width_ << kShift) return;
  if (high <= 0) {
    r.cells[0] += cover * (2 * kOne);
    touch(r.words, 0);
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
  touch(r.words, cell, std::min(end + 1, width_));
  for (; cell < end; ++cell) {
    const int64_t next = std::lrint(descent * static_cast<double>(((cell + 1) << kShift) - low));
    const int64_t area = (next - done) * (kOne + fraction);
    r.cells[cell] += (next - done) * (2 * kOne) - area + spill;
    spill = area;
    fraction = 0;
    done = next;
  }
  if (last < width_) {
    const int64_t area = (cover - done) * (fraction + (high & kFractionMask));
    r.cells[cell] += (cover - done) * (2 * kOne) - area + spill;
    spill = area;
    ++cell;
  }
  r.cells[cell] += spill;
}

void CellTile::addEdge(int64_t x0, int64_t y0, int64_t x1, int64_t y1) {
  const int64_t y = y0 >> kShift;
  if (y == y1 >> kShift && y >= 0 && y < height_) {
    // Most edges of flattened curves: within one row.
    if (y0 != y1) addPiece(row(y), x0, x1, y1 - y0);
  } else if (y0 < y1) {
    addRows(x0, y0, x1, y1, 1);
  } else if (y1 < y0) {
    addRows(x1, y1, x0, y0, -1);
  }
}

/// Cuts an edge that runs downwards at the pixel rows.
void CellTile::addRows(int64_t x0, int64_t y0, int64_t x1, int64_t y1, int64_t sign) {
  int64_t y = std::max<int64_t>(y0, 0);
  const int64_t end = std::min(y1, height_ << kShift);
  if (y >= end || std::min(x0, x1) >= width_ << kShift) return;
  const double slope = static_cast<double>(x1 - x0) / static_cast<double>(y1 - y0);
  const auto xAt = [&](int64_t at) {
    return x0 + std::lrint(slope * static_cast<double>(at - y0));
  };
  int64_t x = y == y0 ? x0 : xAt(y);
  Row r = row(y >> kShift);
  while (y < end) {
    const int64_t next = std::min((y | kFractionMask) + 1, y1);
    const int64_t xNext = next == y1 ? x1 : xAt(next);
    addPiece(r, x, xNext, sign * (next - y));
    x = xNext;
    y = next;
    r.cells += stride_;
    r.words += words_;
  }
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
  left_ = left;
  for (int64_t y = 0; y < height_; ++y) {
    sweepRow(row(y), toCover);
    if (!runs_.empty()) sink.row(top + static_cast<int32_t>(y), runs_);
  }
}

template <class ToCover>
void CellTile::sweepRow(const Row& r, ToCover toCover) {
  runs_.clear();
  coversStart_ = -1;
  int64_t sum = 0;
  int64_t x = 0;
  uint8_t level = 0;
  for (int64_t w = 0; w < words_; ++w) {
    uint64_t bits = r.words[w];
    if (bits == 0) continue;
    r.words[w] = 0;
    do {
      const int start = std::countr_zero(bits);
      const int length = std::countr_one(bits >> start);
      bits = start + length < 64 ? bits & (~uint64_t{0} << (start + length)) : 0;
      const int64_t first = (w << 6) + start;
      addLevel(x, first, level);
      for (x = first; x < first + length; ++x) {
        sum += r.cells[x];
        r.cells[x] = 0;
        covers_[static_cast<size_t>(x)] = level = toCover(sum);
      }
    } while (bits != 0);
  }
  if (x < width_) addLevel(x, width_, level);
  closeCovers(width_);
}

/// The pixels from the last touched one to the next all have the coverage `level`.
void CellTile::addLevel(int64_t from, int64_t to, uint8_t level) {
  if (from < to) {
    int64_t start = from;
    if (coversStart_ >= 0) {
      while (start > coversStart_ && covers_[static_cast<size_t>(start - 1)] == level) --start;
    }
    if (level != 0 && to - start < kShortestLevel) {
      std::fill(covers_.begin() + from, covers_.begin() + to, level);
    } else {
      closeCovers(start);
      pushLevel(start, to, level);
    }
  }
  if (coversStart_ < 0) coversStart_ = to;
}

void CellTile::closeCovers(int64_t end) {
  if (coversStart_ < 0) return;
  int64_t from = coversStart_;
  coversStart_ = -1;
  if (end - from < kLongCovers) {
    pushCovers(from, end);
    return;
  }
  int64_t same = from;  // start of the current stretch of equal covers
  for (int64_t x = from + 1; x <= end; ++x) {
    const uint8_t level = covers_[static_cast<size_t>(same)];
    if (x < end && covers_[static_cast<size_t>(x)] == level) continue;
    if (x - same >= 2 * kShortestLevel) {
      pushCovers(from, same);
      pushLevel(same, x, level);
      from = x;
    }
    same = x;
  }
  pushCovers(from, end);
}

void CellTile::pushCovers(int64_t from, int64_t end) {
  const uint8_t* covers = covers_.data();
  while (from < end && covers[from] == 0) ++from;
  while (from < end && covers[end - 1] == 0) --end;
  if (from == end) return;
  runs_.push_back(
      {left_ + static_cast<int32_t>(from), static_cast<int32_t>(end - from), covers + from, 0});
}

void CellTile::pushLevel(int64_t from, int64_t end, uint8_t level) {
  if (level == 0) return;
  runs_.push_back(
      {left_ + static_cast<int32_t>(from), static_cast<int32_t>(end - from), nullptr, level});
}

void CellTile::discard() {
  std::fill(cells_.begin(), cells_.end(), 0);
  std::fill(touched_.begin(), touched_.end(), 0);
}
