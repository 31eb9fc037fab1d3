#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

/// Float values per pixel, interleaved.
enum class Channels : size_t { kOne = 1, kFour = 4 };

/// Zeros to be written over, starting where a line of the processor's cache starts: vectors that
/// straddle two lines are loaded at half the speed.
class AlignedFloats {
 public:
  explicit AlignedFloats(size_t count);
  float* data() { return storage_.data() + offset_; }
  /// A count of floats that ends where a line does.
  static size_t padded(size_t count) { return (count + kLine - 1) / kLine * kLine; }

 private:
  static constexpr size_t kLine = 16;
  std::vector<float> storage_;
  size_t offset_;
};

/// The columns [begin, end) of a grid of pixels; may reach below zero.
struct ColumnRange {
  int64_t begin = 0;
  int64_t end = 0;
  size_t count() const { return static_cast<size_t>(end - begin); }
};

/// Rows of values, computed when they are asked for. Any row number is valid, but asking in
/// ascending order is what costs nothing extra.
class RowStream {
 public:
  RowStream(ColumnRange columns, Channels channels) : columns_(columns), channels_(channels) {}
  RowStream(const RowStream&) = delete;
  RowStream& operator=(const RowStream&) = delete;
  virtual ~RowStream() = default;

  size_t channels() const { return static_cast<size_t>(channels_); }
  size_t valueCount() const { return columns_.count() * channels(); }
  /// Writes valueCount() values.
  virtual void produce(int64_t row, float* out) = 0;

 protected:
  ColumnRange columns_;
  Channels channels_;
};

/// Rows that a function writes.
class FunctionStream : public RowStream {
 public:
  /// Called with the row, the first column, the number of columns and where to write.
  using Function = std::function<void(int64_t, int64_t, size_t, float*)>;
  FunctionStream(ColumnRange columns, Channels channels, Function function)
      : RowStream(columns, channels), function_(std::move(function)) {}
  void produce(int64_t row, float* out) override {
    function_(row, columns_.begin, columns_.count(), out);
  }

 private:
  Function function_;
};

/// The last rows of a stream, so that neighbours share them.
class RowWindow {
 public:
  /// Holds `rows` consecutive rows of the stream.
  RowWindow(std::unique_ptr<RowStream> input, size_t rows);

  RowStream& input() { return *input_; }
  /// Pointers to rows `first` to `first + count - 1`; count is at most what the window holds.
  /// Valid until the next call.
  const float* const* rows(int64_t first, size_t count);

 private:
  std::unique_ptr<RowStream> input_;
  size_t capacity_;
  size_t stride_;
  AlignedFloats values_;
  std::vector<int64_t> held_;
  std::vector<const float*> pointers_;
};
