#include "platform/filters/CIImage.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "platform/filters/color/ColorOperation.h"

const NSClass CIImage::kClass{"CIImage", &NSObject::kClass, nullptr};

using Box = CIImage::Box;

class CIImage::Recipe {
 public:
  virtual ~Recipe() = default;
  /// Pixels from which all of `wanted`, which is not empty and inside the image, can be read; no
  /// bitmap when they are too many for one.
  virtual OperationSource pixels(const Box& wanted) const = 0;
  /// A new bitmap of such a box; null when that is too large for one.
  virtual std::shared_ptr<NSBitmapImageRep> render(const Box& box) const;
  /// The colour operation that comes last, and what it is applied to.
  virtual const ColorOperation* lastColorOperation() const { return nullptr; }
  virtual std::shared_ptr<const Recipe> beforeLast() const { return nullptr; }
};

namespace {

using RecipePointer = std::shared_ptr<const CIImage::Recipe>;

Box commonBox(const Box& a, const Box& b) {
  return {std::max(a.x0, b.x0), std::max(a.y0, b.y0), std::min(a.x1, b.x1), std::min(a.y1, b.y1)};
}

bool contains(const Box& outer, const Box& inner) {
  return outer.x0 <= inner.x0 && outer.y0 <= inner.y0 && outer.x1 >= inner.x1 &&
         outer.y1 >= inner.y1;
}

Box grown(const Box& box, int64_t by) {
  return {box.x0 - by, box.y0 - by, box.x1 + by, box.y1 + by};
}

Box boxOf(const OperationSource& source) {
  return {source.left, source.top - source.bitmap->pixelsHigh(),
          source.left + source.bitmap->pixelsWide(), source.top};
}

std::shared_ptr<NSBitmapImageRep> makeBitmapOf(const Box& box) {
  return NSBitmapImageRep::create(box.x1 - box.x0, box.y1 - box.y0);
}

class BitmapRecipe : public CIImage::Recipe {
 public:
  explicit BitmapRecipe(std::shared_ptr<const NSBitmapImageRep> bitmap)
      : bitmap_(std::move(bitmap)) {}
  OperationSource pixels(const Box&) const override {
    return {bitmap_, 0, bitmap_->pixelsHigh(), Surround::kTransparent};
  }

 private:
  std::shared_ptr<const NSBitmapImageRep> bitmap_;
};

class ClampRecipe : public CIImage::Recipe {
 public:
  ClampRecipe(RecipePointer input, const Box& box) : input_(std::move(input)), box_(box) {}
  OperationSource pixels(const Box&) const override {
    OperationSource source = input_->pixels(box_);
    source.surround = Surround::kNearestPixel;
    return source;
  }

 private:
  RecipePointer input_;
  Box box_;
};

/// Copies pixels as they are.
class CopyOperation : public ImageOperation {
 public:
  int64_t reach() const override { return 0; }
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override {
    const NSBitmapImageRep& from = *source.bitmap;
    const bool extended = source.surround == Surround::kNearestPixel;
    for (int64_t y = rows.first; y < rows.end; ++y) {
      const int64_t row = y + source.top - target.top;
      const int64_t nearestRow = std::clamp<int64_t>(row, 0, from.pixelsHigh() - 1);
      if (row != nearestRow && !extended) continue;
      copyRow(from.row(nearestRow), from.pixelsWide(), target.left - source.left, extended,
              target.bitmap.writableRows(y, y + 1), target.bitmap.pixelsWide());
    }
  }

 private:
  /// `count` pixels of a row of `width`, beginning with column `first`, which may lie outside.
  static void copyRow(const uint8_t* row, int64_t width, int64_t first, bool extended, uint8_t* out,
                      int64_t count) {
    const int64_t begin = std::clamp<int64_t>(-first, 0, count);
    const int64_t end = std::clamp<int64_t>(width - first, begin, count);
    std::memcpy(out + 4 * begin, row + 4 * (first + begin), static_cast<size_t>(4 * (end - begin)));
    if (!extended) return;
    for (int64_t x = 0; x < begin; ++x) std::memcpy(out + 4 * x, row, 4);
    for (int64_t x = end; x < count; ++x) std::memcpy(out + 4 * x, row + 4 * (width - 1), 4);
  }
};

/// An operation's pixels inside the image's box.
class OperationRecipe : public CIImage::Recipe {
 public:
  OperationRecipe(RecipePointer input, const Box& inputBox, Surround inputSurround,
                  std::shared_ptr<const ImageOperation> operation)
      : input_(std::move(input)),
        inputBox_(inputBox),
        inputSurround_(inputSurround),
        operation_(std::move(operation)) {}

  OperationSource pixels(const Box& wanted) const override {
    return {render(wanted), wanted.x0, wanted.y1, Surround::kTransparent};
  }

  std::shared_ptr<NSBitmapImageRep> render(const Box& box) const override {
    Box needed = grown(box, operation_->reach());
    if (inputSurround_ == Surround::kTransparent) needed = commonBox(needed, inputBox_);
    auto result = makeBitmapOf(box);
    if (result == nullptr || needed.empty()) return result;
    const OperationSource source = input_->pixels(needed);
    if (source.bitmap == nullptr) return nullptr;
    runOperation(*operation_, source, {*result, box.x0, box.y1});
    return result;
  }

 private:
  RecipePointer input_;
  Box inputBox_;
  Surround inputSurround_;
  std::shared_ptr<const ImageOperation> operation_;
};

/// Part of an image, transparent beyond.
class CropRecipe : public CIImage::Recipe {
 public:
  CropRecipe(RecipePointer input, const Box& box) : input_(std::move(input)), box_(box) {}

  OperationSource pixels(const Box& wanted) const override {
    OperationSource source = input_->pixels(wanted);
    if (source.bitmap == nullptr) return {};
    if (contains(box_, boxOf(source)) && source.surround == Surround::kTransparent) return source;
    return {render(wanted), wanted.x0, wanted.y1, Surround::kTransparent};
  }
  std::shared_ptr<NSBitmapImageRep> render(const Box& box) const override {
    return input_->render(box);
  }

 private:
  RecipePointer input_;
  Box box_;
};

/// A colour operation changes an image's pixels where they are, and the edges of an endless one
/// with them.
class ColorRecipe : public CIImage::Recipe {
 public:
  ColorRecipe(RecipePointer input, std::shared_ptr<const ColorOperation> operation)
      : input_(std::move(input)), operation_(std::move(operation)) {}

  OperationSource pixels(const Box& wanted) const override {
    const OperationSource source = input_->pixels(wanted);
    if (source.bitmap == nullptr) return {};
    Box box = boxOf(source);
    if (source.surround == Surround::kTransparent) box = commonBox(box, wanted);
    return {apply(source, box), box.x0, box.y1, source.surround};
  }
  std::shared_ptr<NSBitmapImageRep> render(const Box& box) const override {
    const OperationSource source = input_->pixels(box);
    if (source.bitmap == nullptr) return nullptr;
    // Beyond the edges of an endless picture there is more than the operation's own pixels.
    const bool beyond = source.surround == Surround::kNearestPixel && !contains(boxOf(source), box);
    return beyond ? Recipe::render(box) : apply(source, box);
  }
  const ColorOperation* lastColorOperation() const override { return operation_.get(); }
  RecipePointer beforeLast() const override { return input_; }

 private:
  std::shared_ptr<NSBitmapImageRep> apply(const OperationSource& source, const Box& box) const {
    auto result = makeBitmapOf(box);
    if (result != nullptr) runOperation(*operation_, source, {*result, box.x0, box.y1});
    return result;
  }

  RecipePointer input_;
  std::shared_ptr<const ColorOperation> operation_;
};

/// A coordinate that every bitmap lies far inside of.
constexpr double kFarthest = 1e15;

int64_t wholePixel(double x) {
  return static_cast<int64_t>(std::clamp(x, -kFarthest, kFarthest));
}

}  // namespace

std::shared_ptr<NSBitmapImageRep> CIImage::Recipe::render(const Box& box) const {
  const OperationSource source = pixels(box);
  auto result = makeBitmapOf(box);
  if (source.bitmap == nullptr || result == nullptr) return nullptr;
  runOperation(CopyOperation(), source, {*result, box.x0, box.y1});
  return result;
}

std::shared_ptr<const CIImage> CIImage::initWithBitmapImageRep(
    std::shared_ptr<const NSBitmapImageRep> bitmap) {
  if (bitmap == nullptr) return nullptr;
  const Box box{0, 0, bitmap->pixelsWide(), bitmap->pixelsHigh()};
  if (box.empty()) return nullptr;
  return std::make_shared<CIImage>(std::make_shared<BitmapRecipe>(std::move(bitmap)), box,
                                   Surround::kTransparent);
}

NSRect CIImage::extent() const {
  if (surround_ == Surround::kNearestPixel) return kInfiniteExtent;
  return NSMakeRect(static_cast<double>(box_.x0), static_cast<double>(box_.y0),
                    static_cast<double>(box_.x1 - box_.x0), static_cast<double>(box_.y1 - box_.y0));
}

std::shared_ptr<const CIImage> CIImage::imageByCroppingToRect(const NSRect& rect) const {
  if (NSIsEmptyRect(rect)) return nullptr;
  const Box asked{wholePixel(std::floor(NSMinX(rect))), wholePixel(std::floor(NSMinY(rect))),
                  wholePixel(std::ceil(NSMaxX(rect))), wholePixel(std::ceil(NSMaxY(rect)))};
  const bool endless = surround_ == Surround::kNearestPixel;
  const Box box = endless ? asked : commonBox(asked, box_);
  if (box.empty()) return nullptr;
  return std::make_shared<CIImage>(std::make_shared<CropRecipe>(recipe_, box), box,
                                   Surround::kTransparent);
}

std::shared_ptr<const CIImage> CIImage::imageByClampingToExtent() const {
  if (surround_ == Surround::kNearestPixel) return self();
  return std::make_shared<CIImage>(std::make_shared<ClampRecipe>(recipe_, box_), box_,
                                   Surround::kNearestPixel);
}

std::shared_ptr<const CIImage> CIImage::imageByApplying(
    std::shared_ptr<const ImageOperation> operation) const {
  const Box box = surround_ == Surround::kTransparent ? grown(box_, operation->growth()) : box_;
  return std::make_shared<CIImage>(
      std::make_shared<OperationRecipe>(recipe_, box_, surround_, std::move(operation)), box,
      surround_);
}

std::shared_ptr<const CIImage> CIImage::imageByApplying(
    std::shared_ptr<const ColorOperation> operation) const {
  RecipePointer input = recipe_;
  if (const ColorOperation* last = recipe_->lastColorOperation()) {
    operation = last->followedBy(*operation);
    input = recipe_->beforeLast();
  }
  return std::make_shared<CIImage>(std::make_shared<ColorRecipe>(input, std::move(operation)), box_,
                                   surround_);
}

std::shared_ptr<NSBitmapImageRep> CIImage::bitmap() const {
  if (surround_ == Surround::kNearestPixel) return nullptr;
  return recipe_->render(box_);
}
