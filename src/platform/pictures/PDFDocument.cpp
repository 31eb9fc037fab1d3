#include "platform/pictures/PDFDocument.h"

#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/pictures/PictureHelper.h"
#include "platform/pictures/StretchedPicture.h"

namespace {

/// Readers of the format look for its mark in the first kilobyte; what lacks it starts no helper.
bool looksLikePDF(std::span<const uint8_t> file) {
  constexpr std::string_view kMark = "%PDF-";
  const auto head = file.first(std::min<size_t>(file.size(), 1024));
  return std::search(head.begin(), head.end(), kMark.begin(), kMark.end()) != head.end();
}

}  // namespace

PDFDocument::PDFDocument(std::shared_ptr<NSData> data, std::shared_ptr<const HelperPicture> picture,
                         const NSSize& size)
    : data_(std::move(data)), picture_(std::move(picture)), firstPageSize_(size) {}

std::shared_ptr<PDFDocument> PDFDocument::initWithData(const std::shared_ptr<NSData>& data,
                                                       PictureFailure* failure) {
  PictureFailure reason = PictureFailure::unreadable;
  std::shared_ptr<PDFDocument> document;
  if (data != nullptr && looksLikePDF(data->bytes())) {
    auto picture = std::make_shared<const HelperPicture>(PictureKind::pdf, data);
    NSSize size;
    reason = PictureHelper::shared().measure(*picture, &size);
    if (reason == PictureFailure::none) {
      document.reset(new PDFDocument(data, std::move(picture), size));
    }
  }
  if (failure != nullptr) *failure = reason;
  return document;
}

std::shared_ptr<PDFPage> PDFDocument::firstPage() const {
  if (!(firstPageSize_.width > 0 && firstPageSize_.height > 0)) return nullptr;
  return std::shared_ptr<PDFPage>(new PDFPage(shared_from_this()));
}

std::shared_ptr<NSBitmapImageRep> PDFPage::bitmapWithSize(const NSSize& size,
                                                          PictureFailure* failure) const {
  const NSRect whole{NSZeroPoint, {std::trunc(size.width), std::trunc(size.height)}};
  return stretchedPicture(*document_->picture_, size, whole, 0, failure);
}
