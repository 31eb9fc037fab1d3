#pragma once

#include "draw/core/DrawBase.h"

class ImageMask;

/// What a bucket fill leaves in a document: the filled region and its colour. The region was found
/// when the user filled; drawing replaces its pixels and searches nothing.
class DrawFill : public DrawBase {
 public:
  /// What holds the region. Records may carry other numbers; such fills paint nothing.
  enum FillType : int64_t {
    kMaskFill = 0,  ///< the mask; the path is its rectangle
    kPathFill = 1,  ///< the inside of the path
    kLineFill = 2,  ///< lines of one pixel
  };

  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  /// A fill of the mask's region: of its rectangle when every pixel is in, else of the mask itself.
  /// Null without a mask.
  static std::shared_ptr<DrawFill> initWithImageMask(std::shared_ptr<ImageMask> mask);
  /// A fill of the inside of a closed path; of nothing when the path is open.
  static std::shared_ptr<DrawFill> initWithBezierPath(const NSBezierPath& path);

  std::string name() const override { return "Fill"; }
  int64_t fillType() const { return fillType_; }
  /// Null unless the region is held in one.
  const std::shared_ptr<ImageMask>& mask() const { return mask_; }

  bool classDrawBezierPath() const override { return false; }
  bool classDrawBezierPathFill() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const { return false; }
  bool drawFill() const override { return true; }

  /// The fill colour's alpha in percent, rounded down.
  uint64_t opacity() const override;
  /// Gives the fill colour that alpha.
  void setOpacity(uint64_t percent) override;

  // The mask follows the path: it starts where the path's bounds start. Turned, both lie on whole
  // pixels, as files have them.
  void setRotateDegree(float degrees) override;
  void setBezierPathWithData(const std::shared_ptr<NSObject>& data) override;
  /// Mirrors the draw in place.
  void flip(bool horizontal);

  /// The image is the bitmap of the current context, or null. With an image, masks that are neither
  /// turned nor resized replace pixels as they are.
  void drawInImage(NSBitmapImageRep* image) override;
  void _draw(CastShadow cast) override;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void mapGeometry(const AxisMap& map) override;

 private:
  bool isTurned() const;
  bool canWritePixels(const NSBitmapImageRep* image) const;
  void paintPath() const;
  void paintMask() const;
  void moveMaskToPath();
  void setPathStyle();
  void upgradeDecoded(bool typeIsKnown);
  void resetPathTo(const NSRect& rect);
  bool readsPathFromMask() const;
  void useRectangleOfFullMask();

  int64_t fillType_ = kMaskFill;
  std::shared_ptr<ImageMask> mask_;
};

/// An area cleared to transparency.
class DrawClear : public DrawBase {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Clear"; }

  bool classDrawStroke() const override { return false; }
  bool classDrawBezierPathFill() const override { return true; }
  bool copyWhenComposite() const override { return true; }
  bool hasBorder() const override { return true; }
  bool hasControlKnob() const { return false; }
  bool drawFill() const override { return true; }
  uint64_t opacity() const override { return 0; }
  void setOpacity(uint64_t) override {}
  /// Stores the clear colour.
  void setStrokeColor(std::shared_ptr<NSColor> color) override;

  void init() override;
};
