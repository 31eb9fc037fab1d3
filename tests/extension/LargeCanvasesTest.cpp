// Thumbnails of large canvases, which are not composed whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "extension/ThumbnailProvider.h"
#include "platform/foundation/values/NSURL.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "support/Documents.h"
#include "support/RandomDraws.h"

namespace {

using Bitmap = std::shared_ptr<NSBitmapImageRep>;

// ---- Thumbnails of large canvases against those of the whole canvas.

struct Difference {
  double mean = 0;      ///< levels
  double beyond16 = 0;  ///< part of the pixels
};

Difference difference(const NSBitmapImageRep& a, const NSBitmapImageRep& b) {
  double sum = 0, far = 0;
  const auto pixels = static_cast<double>(a.pixelsWide() * a.pixelsHigh());
  for (int64_t y = 0; y < a.pixelsHigh(); ++y) {
    for (int64_t x = 0; x < a.pixelsWide(); ++x) {
      int most = 0;
      for (int64_t c = 4 * x; c < 4 * x + 4; ++c) {
        const int d = std::abs(a.row(y)[c] - b.row(y)[c]);
        sum += d;
        most = std::max(most, d);
      }
      far += most > 16 ? 1 : 0;
    }
  }
  return {sum / (4 * pixels), far / pixels};
}

/// Nothing where the canvas is composed whole.
std::optional<Difference> thumbnailDifference(PaintManager& document, double side) {
  const NSSize canvas = document.size(), maximum{side, side};
  const NSSize size = ThumbnailProvider::contextSize(canvas, maximum);
  if (ThumbnailProvider::composingScale(canvas, maximum) == 1 || size.height < 1) return {};
  const auto image = ThumbnailProvider::composedImage(document, maximum);
  const auto thumbnail = ThumbnailProvider::replyForImage(image, canvas, maximum)->drawnBitmap();
  const auto whole = document.composedImage();
  Bitmap wanted;
  InitImageRep(size, &wanted);
  const ZTFocusScope focus(wanted);
  NSGraphicsContext::currentContext()->setImageInterpolation(NSImageInterpolation::high);
  drawInRect(*whole, {NSZeroPoint, size});
  return difference(*thumbnail, *wanted);
}

void enlarge(PaintManager& document, double megapixels) {
  const NSSize old = document.size();
  const double by = std::sqrt(megapixels * 1e6 / (old.width * old.height));
  document.resizeToSize({old.width * by, old.height * by}, ResampleLayer::yes, NSZeroPoint);
}

/// Names of examples that ship.
std::vector<std::string> examples() {
  std::vector<std::string> files;
  for (const auto& entry : std::filesystem::directory_iterator(PAINT_SOURCE_DIR "/examples")) {
    if (entry.path().extension() == ".paintdoc") files.push_back(entry.path());
  }
  return files;
}

std::shared_ptr<PaintManager> documentIn(const std::string& file) {
  return PaintManager::paintMgrWithPaintData(
      NSData::dataWithContentsOfURL(*NSURL::fileURLWithPath(file)), nullptr, nullptr);
}

void expectClose(PaintManager& document, double side, const std::string& what) {
  const auto d = thumbnailDifference(document, side);
  ASSERT_TRUE(d) << what;
  EXPECT_LE(d->mean, 0.3) << what;
  EXPECT_LE(d->beyond16, 0.001) << what;
}

}  // namespace

TEST(LargeCanvases, HaveTheThumbnailsOfTheWhole) {
  for (const std::string& file : examples()) {
    const auto document = documentIn(file);
    ASSERT_NE(document, nullptr) << file;
    enlarge(*document, 4.3);
    expectClose(*document, 128, file);
  }
  for (const char* name :
       {"brushes", "fills", "clears", "filters", "curved text", "text boxes", "stored sprays",
        "masked by smaller background", "nested groups", "lines", "pictures", "preset shapes",
        "all classes", "sheets/shadows", "sheets/reflections", "sheets/gradients"}) {
    const auto document = madeDocument(name);
    enlarge(*document, 4.3);
    expectClose(*document, 128, name);
  }
  for (unsigned seed = 1; seed <= 25; ++seed) {
    expectClose(*randomDocument(seed, 4.3), 128, "random " + std::to_string(seed));
  }
}

// bench/thumbnail_differences runs this one.
TEST(LargeCanvases, DISABLED_500RandomOnes) {
  int thumbnails = 0, beyond = 0;
  Difference sum;
  const auto add = [&](PaintManager& document, const std::string& what) {
    for (const double side : {128, 256, 512, 1024}) {
      const auto d = thumbnailDifference(document, side);
      if (!d) continue;
      ++thumbnails;
      sum.mean += d->mean;
      sum.beyond16 += d->beyond16;
      if (d->mean <= 0.3 && d->beyond16 <= 0.001) continue;
      ++beyond;
      std::cout << what << " at " << side << ": " << d->mean << " levels, " << 100 * d->beyond16
                << " % beyond 16" << std::endl;
    }
  };
  for (unsigned seed = 1; seed <= 500; ++seed) {
    add(*randomDocument(seed, 20 + seed * 37 % 181), "random " + std::to_string(seed));
  }
  for (const double megapixels : {20, 200}) {
    for (const std::string& file : examples()) {
      const auto document = documentIn(file);
      enlarge(*document, megapixels);
      add(*document, file);
    }
    for (const auto& entry :
         std::filesystem::recursive_directory_iterator(PAINT_BINARY_DIR "/fixtures/documents")) {
      const auto document =
          entry.is_regular_file() ? documentIn(entry.path()) : std::shared_ptr<PaintManager>();
      if (document == nullptr || !(document->size().width > 0 && document->size().height > 0)) {
        continue;
      }
      enlarge(*document, megapixels);
      if (document->composedImage(1) != nullptr) add(*document, entry.path().filename());
    }
  }
  std::cout << thumbnails << " thumbnails, on average " << sum.mean / thumbnails << " levels and "
            << 100 * sum.beyond16 / thumbnails << " % beyond 16; " << beyond
            << " beyond 0.3 levels or 0.1 %\n";
}
