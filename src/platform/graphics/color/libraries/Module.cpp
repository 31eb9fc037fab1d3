// The module's face to the engine: Little CMS behind it.
#include <lcms2.h>

#include "platform/graphics/color/ColorLibrary.h"
#include "platform/machine/AddressSpace.h"

namespace {

struct CloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CloseProfile>;

// A handful of colours each: tables made for whole pictures would cost far more than they save.
constexpr cmsUInt32Number kSingleColors = cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE;

struct SampleFormat {
  cmsColorSpaceSignature space;
  cmsUInt32Number input;
  cmsUInt32Number output;
  cmsUInt32Number flags;
};

SampleFormat formatOf(SampleForm form) {
  switch (form) {
    case SampleForm::grayBytes:
      return {cmsSigGrayData, TYPE_GRAY_8, TYPE_RGBA_8, 0};
    case SampleForm::rgbaBytes:
      return {cmsSigRgbData, TYPE_RGBA_8, TYPE_RGBA_8, cmsFLAGS_COPY_ALPHA};
    case SampleForm::cmykBytes:
      return {cmsSigCmykData, TYPE_CMYK_8, TYPE_RGBA_8, 0};
    case SampleForm::grayNumbers:
      return {cmsSigGrayData, TYPE_GRAY_DBL, TYPE_RGB_DBL, kSingleColors};
    case SampleForm::rgbNumbers:
      return {cmsSigRgbData, TYPE_RGB_DBL, TYPE_RGB_DBL, kSingleColors};
    case SampleForm::cmykNumbers:
      break;
  }
  return {cmsSigCmykData, TYPE_CMYK_DBL, TYPE_RGB_DBL, kSingleColors};
}

class ProfileTransform final : public ColorTransform {
 public:
  explicit ProfileTransform(cmsHTRANSFORM handle) : handle_(handle) {}
  ProfileTransform(const ProfileTransform&) = delete;
  ProfileTransform& operator=(const ProfileTransform&) = delete;
  ~ProfileTransform() override { cmsDeleteTransform(handle_); }

  void convert(const void* from, void* to, size_t count) const override {
    // Every row of a picture fits: a canvas has fewer pixels.
    cmsDoTransform(handle_, from, to, static_cast<cmsUInt32Number>(count));
  }

 private:
  cmsHTRANSFORM handle_;
};

class LittleCMS final : public ColorLibrary {
 public:
  std::unique_ptr<ColorTransform> open(std::span<const uint8_t> icc,
                                       SampleForm form) const override {
    prepareForExceptions();
    const Profile source(
        cmsOpenProfileFromMem(icc.data(), static_cast<cmsUInt32Number>(icc.size())));
    const SampleFormat format = formatOf(form);
    if (source == nullptr || cmsGetColorSpace(source.get()) != format.space) return nullptr;
    const Profile target(cmsCreate_sRGBProfile());
    if (target == nullptr) return nullptr;
    const cmsHTRANSFORM handle = cmsCreateTransform(source.get(), format.input, target.get(),
                                                    format.output, INTENT_RELATIVE_COLORIMETRIC,
                                                    cmsFLAGS_BLACKPOINTCOMPENSATION | format.flags);
    return handle == nullptr ? nullptr : std::make_unique<ProfileTransform>(handle);
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const ColorLibrary* paintColorLibrary() {
  static const LittleCMS library;
  return &library;
}
