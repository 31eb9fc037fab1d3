#include "platform/graphics/codecs/ProfileConversion.h"

#include <lcms2.h>

#include <cstdlib>
#include <cstring>
#include <vector>

#include "platform/foundation/Limits.h"
#include "platform/machine/AddressSpace.h"

namespace {

struct CloseEmbeddedProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CloseEmbeddedProfile>;

struct SampleFormat {
  cmsColorSpaceSignature space;
  cmsUInt32Number input;
};

SampleFormat formatOf(ColorModel model) {
  switch (model) {
    case ColorModel::gray:
      return {cmsSigGrayData, TYPE_GRAY_8};
    case ColorModel::rgb:
      return {cmsSigRgbData, TYPE_RGBA_8};
    case ColorModel::cmyk:
      break;
  }
  return {cmsSigCmykData, TYPE_CMYK_8};
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
  // The library does not tell malformed profiles from want of memory.
  requireAddressSpace(kLibraryTables + icc.size());
  const Profile source(cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size())));
  const SampleFormat format = formatOf(model);
  if (source == nullptr || cmsGetColorSpace(source.get()) != format.space) return nullptr;
  const Profile target(cmsCreate_sRGBProfile());
  if (target == nullptr) return nullptr;
  const cmsUInt32Number keepAlpha = model == ColorModel::rgb ? cmsFLAGS_COPY_ALPHA : 0;
  void* const transform =
      cmsCreateTransform(source.get(), format.input, target.get(), TYPE_RGBA_8,
                         INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_BLACKPOINTCOMPENSATION | keepAlpha);
  if (transform == nullptr) return nullptr;
  std::unique_ptr<ProfileConversion> result(new ProfileConversion(model, transform));
  if (model == ColorModel::gray) result->tabulateGreys();
  return result->changesNothing() ? nullptr : std::move(result);
}

ProfileConversion::~ProfileConversion() {
  cmsDeleteTransform(transform_);
}

void ProfileConversion::tabulateGreys() {
  std::array<uint8_t, 256> levels;
  for (size_t i = 0; i < levels.size(); ++i) levels[i] = static_cast<uint8_t>(i);
  cmsDoTransform(transform_, levels.data(), greys_.data(),
                 static_cast<cmsUInt32Number>(levels.size()));
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
  // Every row of a picture fits: a canvas has fewer pixels.
  cmsDoTransform(transform_, pixels, pixels, static_cast<cmsUInt32Number>(count));
  if (model_ == ColorModel::cmyk) {
    for (size_t i = 0; i < count; ++i) pixels[i * 4 + 3] = 255;
  }
}
