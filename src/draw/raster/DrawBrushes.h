#pragma once

#include "draw/core/DrawBase.h"

class EncodedBitmap;

/// A freehand stroke, stored as a path whose line width is the brush width. A path that goes
/// nowhere (a move and a line to the same point) is a dot.
class DrawPen : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Sketch"; }

  /// Version of the stroke's record.
  static constexpr int32_t penVersion() { return 1; }
  /// The brush width.
  float width() const { return static_cast<float>(lineWidth()); }
  void setWidth(float width) { setLineWidth(static_cast<CGFloat>(width)); }

  void init() override;
  void _draw(CastShadow cast) override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  /// Gives a stroke of an older record the look it had: round caps and joins, thin strokes without
  /// antialiasing, and aliased dots as squares.
  virtual void tryUpgradeFromOldVersion(int32_t version);

 private:
  bool isDot() const;
  void drawDot() const;
};

/// A stroke that erases to transparency. Neither its colour nor its opacity can be set.
class DrawEraser : public DrawPen {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Eraser"; }
  bool copyWhenComposite() const override { return true; }
  bool drawStroke() const override { return true; }
  uint64_t opacity() const override { return 0; }
  void setOpacity(uint64_t) override {}
  /// Stores the clear colour.
  void setStrokeColor(std::shared_ptr<NSColor> color) override;
  void setUseGradualStroke(bool) override {}

  void init() override;
  bool initWithCoder(NSCoder& coder) override;

 protected:
  /// Old strokes erased whole pixels only.
  void tryUpgradeFromOldVersion(int32_t version) override;
};

/// A spray of one-pixel dots: a path of zero-length segments while it is small, a bitmap for good
/// once it has grown.
class DrawAirbrush : public DrawBase {
 public:
  static const NSClass kClass;
  /// Paths of this many elements are baked into a bitmap.
  static constexpr int64_t kBakedElements = 10000;

  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Airbrush"; }
  bool shouldAntialias() const override { return false; }

  float brushWidth() const { return fBrushWidth_; }
  void setBrushWidth(float width) { fBrushWidth_ = width; }
  /// The baked spray; null before baking. Only its alpha matters: the draw's colour is painted. A
  /// spray from an archive is decoded here and kept only as long as somebody looks at it.
  std::shared_ptr<NSBitmapImageRep> image() const;

  /// One burst: dots at whole pixels inside the disc of the brush around the point.
  std::shared_ptr<NSBezierPath> sprayPathAtPoint(NSPoint point) const;
  /// Bakes a path that has grown to kBakedElements: the bitmap takes the size of its bounds and the
  /// path becomes the rectangle of the bounds. Nothing happens where no such bitmap can be made.
  void replaceBezierPathWithImageIfPossible();

  void init() override;
  void _draw(CastShadow cast) override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  void drawBaked(const NSBitmapImageRep& image, CastShadow cast) const;

  float fBrushWidth_ = 30;
  std::shared_ptr<NSBitmapImageRep> image_;
  std::shared_ptr<const EncodedBitmap> encoded_;  ///< from an archive, while there is no image_
  std::shared_ptr<NSData> imageData_;             ///< its file where that is known
};
