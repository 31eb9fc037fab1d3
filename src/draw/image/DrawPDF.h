#pragma once

#include <optional>

#include "draw/image/DrawImage2.h"

class PDFDocument;
class PDFPage;

/// The first page of a PDF document, drawn as a bitmap of the draw's current size.
class DrawPDF : public DrawImage2 {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool shouldEncodeImage() const override { return false; }
  PictureFacts pictureFacts() override { return {pictureFailure(), "PDF", originalPDFSize()}; }
  const char* pictureKind() const override { return "PDF page"; }

  /// Null when the data is no PDF document that can be read, or one without pages.
  static std::shared_ptr<DrawPDF> drawWithPDFData(const std::shared_ptr<NSData>& data);
  static std::shared_ptr<DrawPDF> drawWithPDFDocument(const std::shared_ptr<PDFDocument>& document);
  static std::shared_ptr<DrawPDF> drawWithPDFPage(std::shared_ptr<PDFPage> page);

  /// Null when the archive held none that can be read. The document is opened at the first call.
  const std::shared_ptr<PDFPage>& pdfPage() const;
  /// Size of the page as it is shown, in points; zero without a page.
  NSSize originalPDFSize() const;
  bool flipHorizontal() const { return _flipHorizontal; }
  bool flipVertical() const { return _flipVertical; }
  /// Mirrors the bitmap until it is drawn anew, and notes the direction.
  void flip(bool horizontal) override;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  std::shared_ptr<NSBitmapImageRep> makeImage(CGFloat scale,
                                              PictureFailure* failure) const override;
  std::shared_ptr<const BitmapSource> pictureSource() const override;

 private:
  bool _flipHorizontal = false;
  bool _flipVertical = false;
  std::shared_ptr<NSData> pdfData_;  ///< what the page will be read from
  mutable std::optional<std::shared_ptr<PDFPage>> _pdfPage;
  mutable PictureFailure pageFailure_ = PictureFailure::none;  ///< why there is no page
};
