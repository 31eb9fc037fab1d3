// PDF files, as far as the engine goes with them: the first page on a small bitmap.
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/pictures/PDFDocument.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto document = PDFDocument::initWithData(NSData::dataWithBytes({data, size}));
  const auto page = document == nullptr ? nullptr : document->firstPage();
  if (page != nullptr) page->bitmapWithSize({64, 48});
  return 0;
}
