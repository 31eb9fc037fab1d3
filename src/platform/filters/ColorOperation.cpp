#include "platform/filters/ColorOperation.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "platform/TargetClones.h"

namespace {

/// Pixels as separate channels of straight codes.
struct CodeBatch {
  size_t count = 0;
  uint8_t channels[4][kColorBatch];
};

void decodeCodes(const LinearLightTables& tables, const CodeBatch& codes, ColorBatch& batch) {
  batch.count = codes.count;
  float* const values[] = {batch.red, batch.green, batch.blue};
  for (int c = 0; c < 3; ++c) {
    for (size_t i = 0; i < codes.count; ++i) values[c][i] = tables.linear[codes.channels[c][i]];
  }
}

VECTOR_CLONES void indexCodes(const float* __restrict values, int32_t* __restrict indexes,
                              size_t count) {
  for (size_t i = 0; i < count; ++i) indexes[i] = codeIndex(values[i]);
}

void encodeCodes(const LinearLightTables& tables, const ColorBatch& batch, CodeBatch& codes) {
  const float* const values[] = {batch.red, batch.green, batch.blue};
  int32_t indexes[kColorBatch];
  for (int c = 0; c < 3; ++c) {
    indexCodes(values[c], indexes, codes.count);
    for (size_t i = 0; i < codes.count; ++i) codes.channels[c][i] = tables.code[indexes[i]];
  }
}

void applyToCodes(const CurveStage& stage, CodeBatch& codes) {
  for (int c = 0; c < 3; ++c) {
    for (size_t i = 0; i < codes.count; ++i) {
      codes.channels[c][i] = stage.codes[codes.channels[c][i]];
    }
  }
}

template <class Stage>
void applyToCodes(const Stage& stage, CodeBatch& codes) {
  const LinearLightTables& tables = linearLightTables();
  ColorBatch batch;
  decodeCodes(tables, codes, batch);
  applyStage(stage, batch);
  encodeCodes(tables, batch, codes);
}

/// What storing premultiplied codes and reading them again does; nothing to opaque pixels.
void roundTrip(CodeBatch& codes) {
  const LinearLightTables& tables = linearLightTables();
  for (size_t i = 0; i < codes.count; ++i) {
    const uint8_t alpha = codes.channels[3][i];
    if (alpha == 255) continue;
    for (int c = 0; c < 3; ++c) {
      uint8_t& code = codes.channels[c][i];
      code = straightCode(tables, premultipliedCode(code, alpha), alpha);
    }
  }
}

/// The stages applied to whole pixels, `count` of them at most kColorBatch.
void applyStages(const std::vector<ColorStage>& stages, uint32_t* pixels, size_t count) {
  const LinearLightTables& tables = linearLightTables();
  CodeBatch codes;
  codes.count = count;
  for (size_t i = 0; i < count; ++i) {
    uint8_t p[4];
    std::memcpy(p, &pixels[i], sizeof p);
    codes.channels[3][i] = p[3];
    for (int c = 0; c < 3; ++c) {
      codes.channels[c][i] = p[3] == 255 ? p[c] : straightCode(tables, p[c], p[3]);
    }
  }
  for (size_t s = 0; s < stages.size(); ++s) {
    if (s > 0) roundTrip(codes);
    std::visit([&](const auto& stage) { applyToCodes(stage, codes); }, stages[s]);
  }
  for (size_t i = 0; i < count; ++i) {
    uint8_t p[4];
    p[3] = codes.channels[3][i];
    for (int c = 0; c < 3; ++c) p[c] = premultipliedCode(codes.channels[c][i], p[3]);
    std::memcpy(&pixels[i], p, sizeof p);
  }
}

/// Results by pixel value: pictures repeat their colours far more often than they show new ones,
/// and looking one up costs less than any filter that mixes channels. The empty table is right
/// for transparent pixels, which stay transparent.
class ColorMemo {
 public:
  ColorMemo(const std::vector<ColorStage>& stages, size_t pixelCount)
      : stages_(stages),
        bits_(std::clamp(static_cast<int>(std::bit_width(pixelCount)), 6, kMostBits)),
        entries_(size_t{1} << bits_) {}

  void apply(const uint32_t* in, uint32_t* out, size_t count) {
    for (size_t begin = 0; begin < count; begin += kColorBatch) {
      applyBatch(in + begin, out + begin, std::min(kColorBatch, count - begin));
    }
  }

 private:
  /// Entries that fit a second-level cache with room for the pixels.
  static constexpr int kMostBits = 16;
  struct Entry {
    uint32_t in = 0;
    uint32_t out = 0;
  };

  Entry& entryOf(uint32_t pixel) { return entries_[(pixel * 0x9E3779B1U) >> (32 - bits_)]; }

  void applyBatch(const uint32_t* in, uint32_t* out, size_t count) {
    size_t missing = 0;
    for (size_t i = 0; i < count; ++i) {
      const Entry& entry = entryOf(in[i]);
      out[i] = entry.out;
      positions_[missing] = static_cast<uint32_t>(i);
      missing += entry.in != in[i] ? 1 : 0;
    }
    if (missing == 0) return;
    for (size_t m = 0; m < missing; ++m) pixels_[m] = in[positions_[m]];
    applyStages(stages_, pixels_, missing);
    for (size_t m = 0; m < missing; ++m) {
      const uint32_t position = positions_[m];
      out[position] = pixels_[m];
      entryOf(in[position]) = {in[position], pixels_[m]};
    }
  }

  const std::vector<ColorStage>& stages_;
  int bits_;
  std::vector<Entry> entries_;
  uint32_t positions_[kColorBatch + 1];
  uint32_t pixels_[kColorBatch];
};

/// Curves alone cost less than looking colours up.
class CurveRows {
 public:
  explicit CurveRows(const std::vector<ColorStage>& stages) : stages_(stages) {
    for (size_t i = 0; i < 256; ++i) {
      uint8_t code = static_cast<uint8_t>(i);
      for (const ColorStage& stage : stages) code = std::get<CurveStage>(stage).codes[code];
      all_[i] = code;
    }
  }

  void apply(const uint32_t* in, uint32_t* out, size_t count) const {
    for (size_t begin = 0; begin < count; begin += kColorBatch) {
      const size_t length = std::min(kColorBatch, count - begin);
      if (opaque(in + begin, length)) {
        applyOpaque(in + begin, out + begin, length);
      } else {
        std::memcpy(out + begin, in + begin, length * sizeof *out);
        applyStages(stages_, out + begin, length);
      }
    }
  }

 private:
  static bool opaque(const uint32_t* pixels, size_t count) {
    uint32_t all = 0xFFFFFFFF;
    for (size_t i = 0; i < count; ++i) all &= pixels[i];
    uint8_t bytes[4];
    std::memcpy(bytes, &all, sizeof bytes);
    return bytes[3] == 255;
  }

  void applyOpaque(const uint32_t* in, uint32_t* out, size_t count) const {
    const auto* from = reinterpret_cast<const uint8_t*>(in);
    auto* to = reinterpret_cast<uint8_t*>(out);
    for (size_t i = 0; i < count; ++i, from += 4, to += 4) {
      to[0] = all_[from[0]];
      to[1] = all_[from[1]];
      to[2] = all_[from[2]];
      to[3] = 255;
    }
  }

  const std::vector<ColorStage>& stages_;
  std::array<uint8_t, 256> all_;
};

/// The common part of the picture and the target, row by row. Colour filters have no business
/// with what surrounds a picture: an extended one is extended again from their result.
template <class Rows>
void renderRows(Rows& filter, const OperationSource& source, const OperationTarget& target,
                RowRange rows) {
  const int64_t dx = target.left - source.left;
  const int64_t dy = source.top - target.top;
  const int64_t begin = std::max<int64_t>(0, -dx);
  const int64_t end = std::min(target.bitmap.pixelsWide(), source.bitmap->pixelsWide() - dx);
  if (begin >= end) return;
  for (int64_t y = rows.first; y < rows.end; ++y) {
    const int64_t from = y + dy;
    if (from < 0 || from >= source.bitmap->pixelsHigh()) continue;
    const auto* in = reinterpret_cast<const uint32_t*>(source.bitmap->row(from)) + begin + dx;
    auto* out = reinterpret_cast<uint32_t*>(target.bitmap.writableRows(y, y + 1)) + begin;
    filter.apply(in, out, static_cast<size_t>(end - begin));
  }
}

}  // namespace

std::shared_ptr<const ColorOperation> ColorOperation::followedBy(const ColorOperation& next) const {
  std::vector<ColorStage> stages = stages_;
  stages.insert(stages.end(), next.stages_.begin(), next.stages_.end());
  return std::make_shared<ColorOperation>(std::move(stages));
}

void ColorOperation::render(const OperationSource& source, const OperationTarget& target,
                            RowRange rows) const {
  const bool curves = std::all_of(stages_.begin(), stages_.end(), [](const ColorStage& stage) {
    return std::holds_alternative<CurveStage>(stage);
  });
  if (curves) {
    CurveRows filter(stages_);
    renderRows(filter, source, target, rows);
  } else {
    const int64_t pixels = (rows.end - rows.first) * target.bitmap.pixelsWide();
    ColorMemo filter(stages_, static_cast<size_t>(pixels));
    renderRows(filter, source, target, rows);
  }
}
