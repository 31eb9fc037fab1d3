#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "helper/PictureLibraries.h"

/// Reads a picture as paint-picture-helper does, and draws it onto a small bitmap.
inline void drawAsHelperDoes(PictureKind kind, const uint8_t* data, size_t size) {
  const PictureLibrary* const library = pictureLibrary(kind);
  std::unique_ptr<OpenedPicture> picture;
  if (library == nullptr || library->open({data, size}, &picture) != PictureResult::done) return;
  if (!(picture->size().width > 0 && picture->size().height > 0)) return;
  constexpr int64_t kWidth = 64;
  constexpr int64_t kHeight = 48;
  std::vector<uint8_t> pixels(kWidth * kHeight * 4);
  picture->draw(
      {kWidth, kHeight, pixels.data()},
      CGAffineTransformMakeScale(kWidth / picture->size().width, kHeight / picture->size().height));
}
