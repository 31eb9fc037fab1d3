#pragma once

#include "draw/shapes/DrawRectangle.h"

class DrawImage2;
class EncodedBitmap;
class NSBitmapImageRep;

/// Legacy bitmap draw; documents replace it by its convertedDraw when they are read.
class DrawImage : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPath() const override { return false; }
  bool shouldAntialias() const override { return true; }
  bool drawFill() const override { return true; }

  /// The bitmap, not to be changed; null when there is none or it cannot be decoded.
  std::shared_ptr<NSBitmapImageRep> image() const;
  virtual void setImage(std::shared_ptr<NSBitmapImageRep> image);
  /// What the draw shows; may be null.
  virtual std::shared_ptr<NSBitmapImageRep> imageForDrawing() { return image(); }
  /// Width by height of the bitmap; 1 without one or its height.
  CGFloat width2HeightRatioForShift() const override;

  /// A DrawImage2 (or, for filters, a DrawFilter2) with the same bitmap and common attributes; the
  /// picture's opacity becomes the draw's.
  virtual std::shared_ptr<DrawImage2> convertedDraw() const;

  void _draw(CastShadow cast) override;

  PictureFailure pictureFailure() override;
  PictureFacts pictureFacts() override;
  const char* pictureKind() const override { return "bitmap"; }

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  /// Gives a converted draw what all draws share, and this one's bitmap and opacity.
  void convertInto(DrawImage2& draw) const;

  /// Whether the draw keeps its bitmap, rather than what that is decoded from.
  bool keepsImage() const { return image_ != nullptr; }

 private:
  /// Opacity of the picture and that of the draw together, 0 to 100.
  float percent() const;

  std::shared_ptr<NSBitmapImageRep> image_;
  std::shared_ptr<const EncodedBitmap> encoded_;  ///< while no bitmap was set; may be null
  float fImageOpacity_ = 1;
  PictureFailure failure_ = PictureFailure::none;  ///< why the archive's bitmap is not shown
};

/// The replacement of a draw whose class is exactly one of the legacy classes; null for all others.
std::shared_ptr<DrawBase> convertedLegacyDraw(const std::shared_ptr<DrawBase>& draw);
