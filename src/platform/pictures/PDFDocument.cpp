#include "platform/pictures/PDFDocument.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/machine/LoadableModule.h"
#include "platform/pictures/PDFLibrary.h"

namespace {

const PDFLibrary* pdfLibrary() {
  static const PDFLibrary* const library = [] {
    const auto entry =
        reinterpret_cast<PDFLibraryEntry>(loadModuleFunction("paintpdf", kPDFLibraryEntry));
    return entry == nullptr ? nullptr : entry();
  }();
  return library;
}

/// Readers of the format look for its mark in the first kilobyte; what lacks it loads no library.
bool looksLikePDF(std::span<const uint8_t> file) {
  constexpr std::string_view kMark = "%PDF-";
  const auto head = file.first(std::min<size_t>(file.size(), 1024));
  return std::search(head.begin(), head.end(), kMark.begin(), kMark.end()) != head.end();
}

}  // namespace

PDFDocument::PDFDocument(std::shared_ptr<NSData> data, std::unique_ptr<PDFFile> file)
    : data_(std::move(data)), file_(std::move(file)) {}

PDFDocument::~PDFDocument() = default;

std::shared_ptr<PDFDocument> PDFDocument::initWithData(std::shared_ptr<NSData> data) {
  if (data == nullptr || !looksLikePDF(data->bytes()) || pdfLibrary() == nullptr) return nullptr;
  auto file = pdfLibrary()->open(data->bytes());
  if (file == nullptr) return nullptr;
  return std::shared_ptr<PDFDocument>(new PDFDocument(std::move(data), std::move(file)));
}

std::shared_ptr<PDFPage> PDFDocument::firstPage() const {
  const NSSize size = file_->firstPageSize();
  if (!(size.width > 0 && size.height > 0)) return nullptr;
  return std::shared_ptr<PDFPage>(new PDFPage(shared_from_this()));
}

NSSize PDFPage::size() const {
  return document_->file_->firstPageSize();
}

std::shared_ptr<NSBitmapImageRep> PDFPage::bitmapWithSize(const NSSize& size) const {
  std::shared_ptr<NSBitmapImageRep> bitmap;
  if (!(size.width >= 1 && size.height >= 1) || !InitImageRep(size, &bitmap)) return nullptr;
  const int64_t width = bitmap->pixelsWide();
  const int64_t height = bitmap->pixelsHigh();
  const PDFPicture picture{width, height, bitmap->writableRows(0, height)};
  return document_->file_->drawFirstPage(picture) ? bitmap : nullptr;
}
