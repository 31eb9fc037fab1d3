#include "platform/graphics/codecs/ProfileConversion.h"

#include <cstdlib>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/foundation/Limits.h"

namespace {

SampleForm formOf(ColorModel model) {
  switch (model) {
    case ColorModel::gray:
      return SampleForm::grayBytes;
    case ColorModel::rgb:
      return SampleForm::rgbaBytes;
    case ColorModel::cmyk:
      break;
  }
  return SampleForm::cmykBytes;
}

/// Colours on a grid of 9 steps in each channel, a fourth byte of zero.
std::vector<uint8_t> probes() {
  constexpr int kSteps = 9;
  std::vector<uint8_t> pixels;
  for (int i = 0; i < kSteps * kSteps * kSteps; ++i) {
    for (const int step : {i / kSteps / kSteps, i / kSteps % kSteps, i % kSteps}) {
      pixels.push_back(static_cast<uint8_t>(step * 255 / (kSteps - 1)));
    }
    pixels.push_back(0);
  }
  return pixels;
}

}  // namespace

std::unique_ptr<ProfileConversion> ProfileConversion::create(std::span<const uint8_t> icc,
                                                             ColorModel model) {
  if (icc.empty() || icc.size() > limits::kMaxProfileBytes) return nullptr;
  auto transform = openColorTransform(icc, formOf(model));
  if (transform == nullptr) return nullptr;
  std::unique_ptr<ProfileConversion> result(new ProfileConversion(model, std::move(transform)));
  if (model == ColorModel::gray) result->tabulateGreys();
  return result->changesNothing() ? nullptr : std::move(result);
}

void ProfileConversion::tabulateGreys() {
  std::array<uint8_t, 256> levels;
  for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>(i);
  transform_->convert(levels.data(), greys_.data(), levels.size());
}

/// Most pictures carry a profile of the space that they are shown in.
bool ProfileConversion::changesNothing() const {
  if (model_ == ColorModel::cmyk) return false;
  const auto before = probes();
  auto after = before;
  convert(after.data(), after.size() / 4);
  for (size_t i = 0; i < before.size(); ++i) {
    const uint8_t expected =
        model_ == ColorModel::gray && i % 4 < 3 ? before[i / 4 * 4] : before[i];
    if (std::abs(after[i] - expected) > 1) return false;
  }
  return true;
}

void ProfileConversion::convert(uint8_t* pixels, size_t count) const {
  if (model_ == ColorModel::gray) {
    for (size_t i = 0; i < count; ++i) std::memcpy(pixels + i * 4, greys_[pixels[i * 4]].data(), 3);
    return;
  }
  transform_->convert(pixels, pixels, count);
  if (model_ == ColorModel::cmyk) {
    for (size_t i = 0; i < count; ++i) pixels[i * 4 + 3] = 255;
  }
}
