#pragma once

#include "draw/shapes/DrawRectangle.h"

class NSBitmapImageRep;

/// A bitmap stretched into the bounds of the draw's path.
class DrawImage2 : public DrawRoundRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPathFill() const override { return false; }
  bool classDrawFill() const override { return true; }

  /// A draw with the bitmap's bounds as its path and no line.
  static std::shared_ptr<DrawImage2> initWithImage(std::shared_ptr<NSBitmapImageRep> image);
  /// The bitmap; may be null.
  virtual std::shared_ptr<NSBitmapImageRep> image() { return _image; }
  virtual void setImage(std::shared_ptr<NSBitmapImageRep> image) { _image = std::move(image); }
  /// What the draw shows; may be null.
  virtual std::shared_ptr<NSBitmapImageRep> imageForDrawing() { return image(); }

 protected:
  /// Gives a new draw its defaults, and the bitmap's bounds as its path, without a line.
  void initWithBitmap(std::shared_ptr<NSBitmapImageRep> image);

  std::shared_ptr<NSBitmapImageRep> _image;
};

/// The first page of a PDF document.
class DrawPDF : public DrawImage2 {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};

/// An SVG document.
class DrawSVG : public DrawImage2 {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};
