#pragma once

#include "draw/shapes/DrawRectangle.h"

class EncodedBitmap;
class NSBitmapImageRep;
class NSData;
class BitmapSource;

/// A bitmap stretched into the bounds of the draw's path, whatever its aspect ratio.
///
/// A bitmap that came encoded is decoded when somebody wants to see it, and kept only as long as
/// somebody does: a document with many pictures needs memory for one of them at a time.
class DrawImage2 : public DrawRoundRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPathFill() const override { return false; }
  bool classDrawFill() const override { return true; }
  bool shouldAntialias() const override { return true; }
  bool drawFill() const override { return true; }
  /// Whether archives hold the bitmap, rather than what it is made from.
  virtual bool shouldEncodeImage() const { return true; }

  /// A draw for the bytes of a picture file: SVG, PDF or a bitmap. Null when they are none.
  static std::shared_ptr<DrawImage2> drawWithData(const std::shared_ptr<NSData>& data);
  /// A draw with the bitmap's bounds as its path and no line. With a null bitmap the path is empty.
  static std::shared_ptr<DrawImage2> initWithImage(std::shared_ptr<NSBitmapImageRep> image);

  /// The bitmap, not to be changed; null when there is none or it cannot be decoded. What is drawn
  /// to be a bitmap is so at the scale of the current context.
  std::shared_ptr<NSBitmapImageRep> image() const;
  virtual void setImage(std::shared_ptr<NSBitmapImageRep> image);
  /// Sets a bitmap that is not decoded yet; may be null.
  void setEncodedImage(std::shared_ptr<const EncodedBitmap> image);
  /// What the draw shows; may be null.
  virtual std::shared_ptr<NSBitmapImageRep> imageForDrawing() { return image(); }
  /// Pixels of the bitmap; zero without one.
  NSSize originalSize() const;
  /// Mirrors the bitmap: left and right change places, or top and bottom.
  virtual void flip(bool horizontal);

  // A picture may have an opacity of its own, as a fraction, so that its line can stay opaque; then
  // it stands in the place of the draw's opacity.
  bool hasImageOpacity() const { return fImageOpacity_ >= 0 && fImageOpacity_ <= 1; }
  /// 0 to 1; kNoImageOpacity when the picture has none of its own.
  float imageOpacity() const { return fImageOpacity_; }
  static constexpr float kNoImageOpacity = 200;
  uint64_t opacity() const override;
  void setOpacity(uint64_t percent) override;
  bool shouldApplyOpacityToStokeAndFill() const override { return !hasImageOpacity(); }

  std::shared_ptr<NSDictionary> drawAttributes() const override;
  bool setDrawAttributes(const NSDictionary& attributes) override;

  void drawInImage(NSBitmapImageRep* image) override;
  void _draw(CastShadow cast) override;

  PictureFailure pictureFailure() override;
  PictureFacts pictureFacts() override;
  const char* pictureKind() const override { return "bitmap"; }
  /// Notes that an archive held a bitmap that could not be read.
  void setImageUnreadable() { failure_ = PictureFailure::unreadable; }

  bool initWithCoder(NSCoder& coder) override;
  /// A bitmap is written as PNG, without alpha channel as JPEG. Throws NSException when it can be
  /// written in no way.
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  /// Gives a new draw its defaults, and the bitmap's bounds as its path, without a line.
  void initWithBitmap(std::shared_ptr<NSBitmapImageRep> image);
  /// Decodes the bitmap, or draws it for a scale, when none was set, and does not keep it. Null
  /// when that fails, for the reason that `failure` takes, or when there is nothing to make it
  /// from.
  virtual std::shared_ptr<NSBitmapImageRep> makeImage(CGFloat scale, PictureFailure* failure) const;
  /// What the bitmap is made from, for records of drawings; null without one.
  virtual std::shared_ptr<const BitmapSource> pictureSource() const;
  /// The bitmap that is there without making one; may be null.
  std::shared_ptr<NSBitmapImageRep> cachedImage() const;
  /// Whether the draw keeps its bitmap, rather than what that is made from.
  bool keepsImage() const { return _image != nullptr; }

 private:
  void normalizeOpacity();
  void initImageWithCoder(NSCoder& coder);
  void encodeImage(NSCoder& coder) const;
  void drawImage(const NSBitmapImageRep& image, const NSRect& bounds) const;
  void drawStrokeAround(CastShadow cast);

  float fImageOpacity_ = kNoImageOpacity;
  // Archiving replaces the bitmap by one that the archive can hold; the picture stays the same.
  mutable std::shared_ptr<NSBitmapImageRep> _image;
  mutable bool _hasRerender = false;
  mutable std::weak_ptr<NSBitmapImageRep> madeImage_;
  mutable CGFloat madeScale_ = 1;                          ///< what madeImage_ was made for
  mutable PictureFailure failure_ = PictureFailure::none;  ///< why there is no bitmap
  std::shared_ptr<const EncodedBitmap> encoded_;           ///< while no bitmap was set; may be null
};
