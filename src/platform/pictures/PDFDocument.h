#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"

class NSBitmapImageRep;
class NSData;
class PDFFile;
class PDFPage;

/// A PDF file. May be used by several threads.
class PDFDocument : public std::enable_shared_from_this<PDFDocument> {
 public:
  /// Null when the data is no PDF file, is damaged beyond repair or asks for a password.
  static std::shared_ptr<PDFDocument> initWithData(std::shared_ptr<NSData> data);
  ~PDFDocument();

  /// Null for a document without pages, and when the page is damaged. The page keeps the document.
  std::shared_ptr<PDFPage> firstPage() const;

 private:
  friend class PDFPage;
  PDFDocument(std::shared_ptr<NSData> data, std::unique_ptr<PDFFile> file);

  std::shared_ptr<NSData> data_;
  std::unique_ptr<PDFFile> file_;
};

/// The first page of a PDF file.
class PDFPage {
 public:
  /// Size of the crop box as it is shown, that is after the page's rotation, in points; more than
  /// 0.
  NSSize size() const;
  /// A file whose first page this is.
  const std::shared_ptr<NSData>& dataRepresentation() const { return document_->data_; }

  /// The crop box stretched over a transparent bitmap of whole pixels. Null for sides below 1 and
  /// for pictures larger than a canvas, and when the page cannot be drawn.
  std::shared_ptr<NSBitmapImageRep> bitmapWithSize(const NSSize& size) const;

 private:
  friend class PDFDocument;
  explicit PDFPage(std::shared_ptr<const PDFDocument> document) : document_(std::move(document)) {}

  std::shared_ptr<const PDFDocument> document_;
};
