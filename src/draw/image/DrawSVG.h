#pragma once

#include <optional>

#include "draw/image/DrawImage2.h"
#include "platform/pictures/PictureSession.h"

/// An SVG document, drawn as a bitmap of the draw's current size.
class DrawSVG : public DrawImage2 {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool shouldEncodeImage() const override { return false; }
  PictureFacts pictureFacts() override { return {pictureFailure(), "SVG", originalSVGSize()}; }
  const char* pictureKind() const override { return "SVG picture"; }

  /// Null unless the data is an SVG text that can be drawn and is at least one unit wide and high.
  static std::shared_ptr<DrawSVG> drawWithSVGData(const std::shared_ptr<NSData>& data);

  /// Null when the archive held none.
  const std::shared_ptr<NSData>& svgData() const { return _svgData; }
  /// Whether the engine of this library draws it, for want of one of the system or because what
  /// draws it wants it so. Found out when it is first asked, and kept.
  bool useSVGNative() const;
  /// The picture's natural size; zero when it cannot be read.
  NSSize originalSVGSize() const;
  bool flipHorizontal() const { return _flipHorizontal; }
  bool flipVertical() const { return _flipVertical; }
  /// Mirrors the bitmap until it is drawn anew, and notes the direction.
  void flip(bool horizontal) override;

  // A new size makes a new bitmap; while it is dragged, the old one is stretched.
  void setBezierPathWithBounds(NSRect bounds) override;
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;
  void setResizingByDragging(bool dragging) override;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  std::shared_ptr<NSBitmapImageRep> makeImage(CGFloat scale,
                                              PictureFailure* failure) const override;
  std::shared_ptr<const BitmapSource> pictureSource() const override;
  void mapGeometry(const AxisMap& map) override;

 private:
  SVGEngine engine() const;
  void respondToBoundsChangeFromOldBounds(const NSRect& oldBounds);
  bool fitsCachedImage() const;

  bool _flipHorizontal = false;
  bool _flipVertical = false;
  mutable std::optional<bool> _useSVGNative;
  std::shared_ptr<NSData> _svgData;
};
