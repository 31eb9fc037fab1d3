#pragma once

#include <memory>
#include <utility>

#include "draw/image/ImageFilterMembers.h"
#include "draw/image/RasterizedPicture.h"
#include "platform/graphics/bitmap/BitmapSource.h"
#include "platform/pictures/PDFDocument.h"
#include "svg/ZTSVGTool.h"

// What the pictures of documents are made from.

/// A picture file, decoded when it is asked for.
class EncodedPicture final : public BitmapSource {
 public:
  explicit EncodedPicture(std::shared_ptr<const EncodedBitmap> encoded)
      : encoded_(std::move(encoded)) {}
  const EncodedBitmap& encoded() const { return *encoded_; }
  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat) const override { return encoded_->bitmap(); }

 private:
  std::shared_ptr<const EncodedBitmap> encoded_;
};

/// A page, stretched over the whole pixels of a rectangle on the canvas.
class PDFPicture final : public BitmapSource {
 public:
  PDFPicture(std::shared_ptr<PDFPage> page, const NSRect& bounds)
      : page_(std::move(page)), bounds_(bounds) {}
  const PDFPage& page() const { return *page_; }
  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat scale) const override {
    return page_->bitmapWithSize(rasterSize(bounds_, scale));
  }

 private:
  std::shared_ptr<PDFPage> page_;
  NSRect bounds_;
};

/// The same for an SVG text.
class SVGPicture final : public BitmapSource {
 public:
  SVGPicture(std::shared_ptr<const NSData> data, SVGEngine engine, const NSRect& bounds)
      : data_(std::move(data)), engine_(engine), bounds_(bounds) {}
  const NSData& data() const { return *data_; }
  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat scale) const override {
    return ZTSVGTool::imageWithSVGData(data_.get(), rasterSize(bounds_, scale), false, engine_);
  }

 private:
  std::shared_ptr<const NSData> data_;
  SVGEngine engine_;
  NSRect bounds_;
};

/// Another picture through an image filter.
class FilteredPicture final : public BitmapSource {
 public:
  /// Settings and scissor may be null. `shown` is the draw's size.
  FilteredPicture(std::shared_ptr<const BitmapSource> plain, int64_t type,
                  std::shared_ptr<const NSDictionary> settings,
                  std::shared_ptr<const NSObject> scissor, const NSSize& shown)
      : plain_(std::move(plain)),
        type_(type),
        settings_(std::move(settings)),
        scissor_(std::move(scissor)),
        shown_(shown) {}
  const BitmapSource& plain() const { return *plain_; }
  int64_t type() const { return type_; }
  std::shared_ptr<NSBitmapImageRep> bitmap(CGFloat scale) const override {
    return ImageFilterMembers::effect(plain_->bitmap(scale), type_, settings_.get(), scissor_.get(),
                                      shown_);
  }

 private:
  std::shared_ptr<const BitmapSource> plain_;
  int64_t type_;
  std::shared_ptr<const NSDictionary> settings_;
  std::shared_ptr<const NSObject> scissor_;
  NSSize shown_;
};
