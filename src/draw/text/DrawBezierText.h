#pragma once

#include <memory>
#include <string>

#include "draw/text/DrawText.h"

class CurvedText;

/// Text along the outline of another draw, its guide. The guide carries position, size and
/// rotation; the draw's own path is the rectangle around guide and text.
class DrawBezierText : public DrawText {
 public:
  static const NSClass kClass;
  DrawBezierText();
  ~DrawBezierText() override;
  const NSClass& classInfo() const override { return kClass; }
  void init() override;
  std::string name() const override { return "Curved Text"; }

  /// Layout version of new draws: texts of closed shapes run clockwise on their outside, set by
  /// their alignment. Version 0 takes the guide's outline as it was drawn, mirrored.
  static constexpr int64_t kVersion = 1;
  int64_t version() const { return _version; }

  /// Null for none. Takes over a guide that nothing else uses.
  void setBezierDraw(std::shared_ptr<DrawBase> guide);
  const std::shared_ptr<DrawBase>& bezierDraw() const { return bezierDraw_; }
  double textsHeight() const { return _textsHeight; }
  /// Length of the path that the text covers.
  double textsWidth() const { return _textsWidth; }
  /// Outline of the band that the text occupies, and the part of the text path in its middle; null
  /// without text.
  const std::shared_ptr<NSBezierPath>& bezierBorderPath() const { return _bezierBorderPath; }
  const std::shared_ptr<NSBezierPath>& textDrawPath() const { return _textDrawPath; }

  /// The path along which the text runs, on the canvas; empty without a guide.
  std::shared_ptr<NSBezierPath> bezierPathForDrawTexts() const;
  std::optional<ConvertTextToImageResult> convertTextToImageWithOption(
      TextImageOption option, const WantedImage& wanted) const override;
  using DrawText::convertTextToImageWithOption;
  /// Makes the draw's own path the rectangle around the guide and the band of its text.
  void updateBounds();
  /// Moves and stretches the guide as it takes to bring the draw from its bounds to these.
  void applyNewBoundsToBezierDraw(const NSRect& bounds);

  bool isAutoResize() const override { return false; }
  void setAutoResize(bool) override {}

  // ---- DrawBase: geometry is the guide's.
  void setRotateDegree(float degrees) override;
  void moveByX(CGFloat x, CGFloat y) override;
  void scaleByX(CGFloat x, CGFloat y, NSPoint withCenter, ResizeLineWidth resizeLineWidth) override;
  std::shared_ptr<NSObject> bezierPathData() const override;
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;
  void invalidTextImage() const override;
  void _draw(CastShadow cast) override;
  NSRect drawRect() const override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void textChanged() override;
  void storeTextImage(const ConvertTextToImageResult& result) const override;

 private:
  /// The text along its path; null when nothing has a place.
  std::shared_ptr<const CurvedText> setAlongGuide(TextImageOption option) const;
  ConvertTextToImageResult geometryOf(const CurvedText& set) const;
  void storeGeometry(const ConvertTextToImageResult& result) const;
  void takeRotationTo(DrawBase* guide);
  std::shared_ptr<NSBezierPath> pathOfVersion0() const;
  std::shared_ptr<NSBezierPath> bezierPathForDrawTextsV2() const;
  bool guideIsDrawn() const;

  std::shared_ptr<DrawBase> bezierDraw_;
  int64_t _version = 0;
  mutable double _textsHeight = 0;
  mutable double _textsWidth = 0;
  mutable std::shared_ptr<NSBezierPath> _bezierBorderPath;
  mutable std::shared_ptr<NSBezierPath> _textDrawPath;
  /// What updateBounds has set, until the text image is made of it.
  mutable std::shared_ptr<const CurvedText> set_;
};
