#include "draw/image/DrawPDF.h"

#include <utility>

#include "draw/image/BitmapSources.h"
#include "draw/image/RasterizedPicture.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/pictures/PDFDocument.h"

const NSClass DrawPDF::kClass{"DrawPDF", &DrawImage2::kClass, NSAllocate<DrawPDF>};

namespace {

constexpr const char* kPDFData = "PDFData";

std::shared_ptr<PDFPage> firstPageOf(const std::shared_ptr<PDFDocument>& document) {
  return document == nullptr ? nullptr : document->firstPage();
}

}  // namespace

std::shared_ptr<DrawPDF> DrawPDF::drawWithPDFData(const std::shared_ptr<NSData>& data) {
  return drawWithPDFDocument(PDFDocument::initWithData(data));
}

std::shared_ptr<DrawPDF> DrawPDF::drawWithPDFDocument(
    const std::shared_ptr<PDFDocument>& document) {
  return drawWithPDFPage(firstPageOf(document));
}

std::shared_ptr<DrawPDF> DrawPDF::drawWithPDFPage(std::shared_ptr<PDFPage> page) {
  if (page == nullptr) return nullptr;
  auto draw = std::make_shared<DrawPDF>();
  draw->init();
  draw->_pdfPage = std::move(page);
  draw->bezierPath()->setLineWidth(0);
  draw->setBezierPathWithBounds({NSZeroPoint, draw->originalPDFSize()});
  return draw;
}

const std::shared_ptr<PDFPage>& DrawPDF::pdfPage() const {
  // A page that only could not be asked for now is asked for again.
  const bool isSettled =
      _pdfPage && (*_pdfPage != nullptr || pageFailure_ == PictureFailure::unreadable);
  if (!isSettled) _pdfPage = firstPageOf(PDFDocument::initWithData(pdfData_, &pageFailure_));
  return *_pdfPage;
}

NSSize DrawPDF::originalPDFSize() const {
  return pdfPage() == nullptr ? NSZeroSize : pdfPage()->size();
}

std::shared_ptr<NSBitmapImageRep> DrawPDF::makeImage(CGFloat scale, PictureFailure* failure) const {
  const NSSize size = rasterSize(pathBounds(), scale);
  const auto draw = [&]() -> std::shared_ptr<NSBitmapImageRep> {
    if (const auto& page = pdfPage()) return page->bitmapWithSize(size, failure);
    if (pdfData_ != nullptr && pdfData_->length() > 0) *failure = pageFailure_;
    return nullptr;
  };
  return pdfData_ == nullptr ? draw()
                             : rememberedRaster(PictureKey::Kind::pdf, pdfData_, size, 0, draw);
}

std::shared_ptr<const BitmapSource> DrawPDF::pictureSource() const {
  if (keepsImage() || pdfPage() == nullptr) return DrawImage2::pictureSource();
  return std::make_shared<PDFPicture>(pdfPage(), pathBounds());
}

void DrawPDF::flip(bool horizontal) {
  DrawImage2::flip(horizontal);
  bool& flag = horizontal ? _flipHorizontal : _flipVertical;
  flag = !flag;
}

bool DrawPDF::initWithCoder(NSCoder& coder) {
  if (!DrawImage2::initWithCoder(coder)) return false;
  _flipHorizontal = coder.decodeBoolForKey(kFlipHorizontal);
  _flipVertical = coder.decodeBoolForKey(kFlipVertical);
  pdfData_ = coder.decodeDataForKey(kPDFData);
  return true;
}

void DrawPDF::encodeWithCoder(NSCoder& coder) const {
  DrawImage2::encodeWithCoder(coder);
  if (const auto& page = pdfPage()) {
    coder.encodeObject(page->dataRepresentation(), kPDFData);
  } else if (pageFailure_ != PictureFailure::unreadable && pdfData_ != nullptr) {
    // Nobody could tell whether it has a page.
    coder.encodeObject(pdfData_, kPDFData);
  }
  if (_flipHorizontal) coder.encodeBool(true, kFlipHorizontal);
  if (_flipVertical) coder.encodeBool(true, kFlipVertical);
}
