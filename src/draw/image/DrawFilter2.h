#pragma once

#include "draw/image/DrawImage2.h"
#include "draw/image/ImageFilterMembers.h"

/// A bitmap shown through an image filter, which may be limited to a selection.
class DrawFilter2 : public DrawImage2, public ImageFilterMembers {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return filterName(); }

  using DrawImage2::image;
  using ImageFilterMembers::image;

  /// A draw with the bitmap's bounds as its path and the type's default settings. A selection
  /// (NSBezierPath or ImageMask, in pixels of the bitmap) becomes the scissor; anything else counts
  /// as none.
  static std::shared_ptr<DrawFilter2> initWithImage(std::shared_ptr<NSBitmapImageRep> image,
                                                    std::shared_ptr<NSObject> selection,
                                                    int64_t filterType);
  /// A draw in the place of an image draw, with its attributes and of what it shows.
  static std::shared_ptr<DrawFilter2> initWithDraw(DrawImage2& draw, int64_t filterType);
  /// Takes over type, settings and scissor of another filter draw.
  void setFilterMembers(const ImageFilterMembers& members);

  void setImage(std::shared_ptr<NSBitmapImageRep> image) override;
  /// The filtered bitmap; the plain one for a draw without settings. Null without a bitmap.
  std::shared_ptr<NSBitmapImageRep> imageForDrawing() override;
  /// Mirrors the filtered bitmap too when there is one, so that the draw is its mirror image even
  /// where the filter would do something else with a mirrored picture.
  void flip(bool horizontal) override;

  std::shared_ptr<NSDictionary> drawAttributes() const override;
  bool setDrawAttributes(const NSDictionary& attributes) override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  std::shared_ptr<const BitmapSource> pictureSource() const override;
};
