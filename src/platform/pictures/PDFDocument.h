#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/pictures/PictureFailure.h"

class NSBitmapImageRep;
class NSData;
class PDFPage;
struct HelperPicture;

/// A PDF file, read and drawn by paint-picture-helper. May be used by several threads.
class PDFDocument : public std::enable_shared_from_this<PDFDocument> {
 public:
  /// Null when the data is no PDF file, is damaged beyond repair or asks for a password, and when
  /// the helper cannot tell. `failure` may be null; it then takes the reason.
  static std::shared_ptr<PDFDocument> initWithData(const std::shared_ptr<NSData>& data,
                                                   PictureFailure* failure = nullptr);

  /// Null for a document without pages, and when the page is damaged. The page keeps the document.
  std::shared_ptr<PDFPage> firstPage() const;

 private:
  friend class PDFPage;
  PDFDocument(std::shared_ptr<NSData> data, std::shared_ptr<const HelperPicture> picture,
              const NSSize& size);

  std::shared_ptr<NSData> data_;
  std::shared_ptr<const HelperPicture> picture_;
  NSSize firstPageSize_;
};

/// The first page of a PDF file.
class PDFPage {
 public:
  /// Size of the crop box as it is shown, that is after the page's rotation, in points; more than
  /// 0.
  NSSize size() const { return document_->firstPageSize_; }
  /// A file whose first page this is.
  const std::shared_ptr<NSData>& dataRepresentation() const { return document_->data_; }

  /// The crop box stretched over a transparent bitmap of whole pixels. Null for sides below 1 and
  /// for pictures larger than a canvas, and when the page cannot be drawn. `failure` may be null;
  /// it then takes the reason.
  std::shared_ptr<NSBitmapImageRep> bitmapWithSize(const NSSize& size,
                                                   PictureFailure* failure = nullptr) const;

 private:
  friend class PDFDocument;
  explicit PDFPage(std::shared_ptr<const PDFDocument> document) : document_(std::move(document)) {}

  std::shared_ptr<const PDFDocument> document_;
};
