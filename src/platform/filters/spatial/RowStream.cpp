#include "platform/filters/spatial/RowStream.h"

#include <limits>

AlignedFloats::AlignedFloats(size_t count) : storage_(count + kLine - 1) {
  const size_t past = reinterpret_cast<uintptr_t>(storage_.data()) / sizeof(float) % kLine;
  offset_ = (kLine - past) % kLine;
}

RowWindow::RowWindow(std::unique_ptr<RowStream> input, size_t rows)
    : input_(std::move(input)),
      capacity_(rows),
      stride_(AlignedFloats::padded(input_->valueCount())),
      values_(stride_ * rows),
      held_(rows, std::numeric_limits<int64_t>::min()),
      pointers_(rows) {}

const float* const* RowWindow::rows(int64_t first, size_t count) {
  const auto capacity = static_cast<int64_t>(capacity_);
  for (size_t i = 0; i < count; ++i) {
    const int64_t row = first + static_cast<int64_t>(i);
    const auto slot = static_cast<size_t>((row % capacity + capacity) % capacity);
    float* values = values_.data() + slot * stride_;
    if (held_[slot] != row) {
      input_->produce(row, values);
      held_[slot] = row;
    }
    pointers_[i] = values;
  }
  return pointers_.data();
}
