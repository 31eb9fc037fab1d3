// A whole document: decode it, compose it at several scales, record it, write it again.
#include "document/PaintManager.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/values/NSData.h"
#include "platform/text/fonts/FontRegistry.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  // What happens to be installed plays no part.
  static const bool fonts = [] {
    FontRegistry::useFontFiles({PAINT_SOURCE_DIR "/tests/fixtures/fonts/Box.ttf"});
    return true;
  }();
  static_cast<void>(fonts);
  const auto file = NSData::dataWithBytes({data, size});
  double resolution = 0;
  int64_t error = 0;
  PaintManager::detectPaintData(file);
  const auto document = PaintManager::paintMgrWithPaintData(file, &resolution, &error);
  if (document == nullptr) return 0;
  // What the draws do is of interest here, not how long a large canvas takes to fill.
  constexpr CGFloat kSide = 64;
  if (document->size().width > kSide || document->size().height > kSide) {
    document->setSize({kSide, kSide});
  }
  document->fullImage();
  document->composedImage(0.3);
  document->composedImage(NSMakeRect(7, 9, 20, 20), 2.5);
  document->recordedDrawing();
  try {
    document->paintDataWithResolution(resolution);
  } catch (const NSException&) {
    // Some objects that can be read cannot be archived.
  }
  return 0;
}
