#include <cstdint>
#include <memory>
#include <string>

#include "SVGArcFilter.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "svg/CGSVGRenderer.h"
#include "svg/tree/SVGDocument.h"

// Reads a text and draws it onto a small bitmap. Reading gives a document up at an unsupported arc
// as at any other exception.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const auto renderer = std::make_shared<SVGNative::CGSVGRenderer>();
  const auto document = SVGNative::SVGDocument::CreateSVGDocument(
      std::string(reinterpret_cast<const char*>(data), size), renderer);
  if (document == nullptr) return 0;
  renderer->SetGraphicsContext(std::make_shared<CGContext>(NSBitmapImageRep::create(64, 64)));
  document->Render(64, 64);
  return 0;
}
