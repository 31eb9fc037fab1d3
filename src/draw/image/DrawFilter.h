#pragma once

#include "draw/image/DrawImage.h"
#include "draw/image/ImageFilterMembers.h"

/// Legacy filter draw; documents replace it by its convertedDraw when they are read.
class DrawFilter : public DrawImage, public ImageFilterMembers {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return filterName(); }
  using DrawImage::image;
  using ImageFilterMembers::image;

  void setImage(std::shared_ptr<NSBitmapImageRep> image) override;
  std::shared_ptr<NSBitmapImageRep> imageForDrawing() override;
  /// A DrawFilter2 with the same bitmap, common attributes, filter, settings and scissor.
  std::shared_ptr<DrawImage2> convertedDraw() const override;

  std::shared_ptr<NSDictionary> drawAttributes() const override;
  bool setDrawAttributes(const NSDictionary& attributes) override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;
};
