#pragma once

#include <vector>

#include "platform/filters/color/ColorStage.h"
#include "platform/filters/image/ImageOperation.h"

/// Colour filters in a row, in one pass over the picture. Alpha stays; each filter sees straight
/// colour and rounds its result to 8 bits, premultiplied, as if it had been the only one.
class ColorOperation : public ImageOperation {
 public:
  /// No stages at all copy the picture.
  explicit ColorOperation(std::vector<ColorStage> stages) : stages_(std::move(stages)) {}
  /// This operation's stages and then `next`'s.
  std::shared_ptr<const ColorOperation> followedBy(const ColorOperation& next) const;
  int64_t reach() const override { return 0; }
  void render(const OperationSource& source, const OperationTarget& target,
              RowRange rows) const override;

 private:
  std::vector<ColorStage> stages_;
};
