#include "platform/graphics/pixels/blur/GaussianBlur.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "platform/graphics/pixels/blur/MaskBlurKernels.h"

namespace {

constexpr int kMaxDirectReach = 16;

/// The kernel over cells of 1 << shift pixels: weights of the cell itself (which is taken as a
/// pair with itself), of the pair next to it, and so on, padded with zeros to whole tap groups.
struct CellKernel {
  int shift = 0;
  int reach = 0;  ///< cells
  std::vector<int16_t> weights;
};

/// The Gaussian at whole pixels, cut off beyond the reach.
class PixelKernel {
 public:
  PixelKernel(double blur, int reach) : sigma_(blur / 2), reach_(reach) {
    sum_ = at(0);
    for (int k = 1; k <= reach; ++k) sum_ += 2 * at(k);
  }
  double sum() const { return sum_; }

  /// The weight of a cell `size` pixels wide around `center`.
  double cell(int center, int size) const {
    if (size == 1) return at(center);
    // Means and interpolation widen the result by a variance of a third of the squared cell size.
    // Subtracting a sixth of the second difference takes that back.
    const double change = plainCell(center - size, size) - 2 * plainCell(center, size) +
                          plainCell(center + size, size);
    return plainCell(center, size) - change / 6;
  }

 private:
  /// The sum over the pixels of a cell; those that its edges cut count half.
  double plainCell(int center, int size) const {
    const int half = size / 2;
    double sum = (at(center - half) + at(center + half)) / 2;
    for (int k = center - half + 1; k < center + half; ++k) sum += at(k);
    return sum;
  }
  double at(int k) const {
    return std::abs(k) > reach_ ? 0 : std::exp(-double{1} * k * k / (2 * sigma_ * sigma_));
  }

  double sigma_;
  int reach_;
  double sum_ = 0;
};

/// Of cells as small as the kernel can be long.
int cellShift(int reach) {
  int shift = 0;
  while (reach >> shift > kMaxDirectReach) ++shift;
  return shift;
}

/// In cells of 1 << shift pixels.
int cellReach(int reach, int shift) {
  const int size = 1 << shift;
  return shift == 0 ? reach : (reach + size / 2) / size + 1;
}

CellKernel kernelFor(double blur) {
  const int reach = blurReach(blur);
  CellKernel kernel;
  kernel.shift = cellShift(reach);
  kernel.reach = cellReach(reach, kernel.shift);
  const int size = 1 << kernel.shift;
  const PixelKernel pixels(std::min<double>(blur, kMaxBlurReach), reach);
  int16_t others = 0;
  kernel.weights.push_back(0);
  for (int k = 1; k <= kernel.reach; ++k) {
    const double weight = pixels.cell(k * size, size) / pixels.sum();
    kernel.weights.push_back(static_cast<int16_t>(std::lround(weight * (1 << 15))));
    others = static_cast<int16_t>(others + kernel.weights.back());
  }
  kernel.weights[0] = static_cast<int16_t>((1 << 14) - others);
  while (kernel.weights.size() % kTapGroup != 0) kernel.weights.push_back(0);
  return kernel;
}

/// Blurs row after row of cells, from the top down.
class CellBlur {
 public:
  /// Answers will be asked for the cell columns [first, end).
  CellBlur(const AlphaMask& mask, CellKernel kernel, int32_t first, int32_t end);

  int32_t width() const { return width_; }

  /// The blurred samples of row `y` of cells; valid until the next call. Rows are asked for in
  /// increasing order.
  const int16_t* row(int32_t y);

 private:
  /// Cells that the blur reaches outside its columns on each side. Taps that only pad the groups
  /// may read there too.
  int32_t margin() const { return static_cast<int32_t>(kernel_.weights.size()); }
  void readCells(int32_t y);
  const int16_t* sideways(int32_t y);

  const AlphaMask& mask_;
  CellKernel kernel_;
  int32_t first_;
  int32_t width_;
  int32_t firstRow_;  ///< rows of cells with anything in them
  int32_t endRow_;
  int32_t nextRow_;  ///< first one that is not in the ring yet
  size_t ringRows_;
  std::vector<int16_t> ring_;
  std::vector<int16_t> cells_;
  std::vector<int16_t> zeros_;
  std::vector<int16_t> sums_;
  std::vector<uint16_t> columnSums_;
  std::vector<const int16_t*> before_;  ///< taps along a row
  std::vector<const int16_t*> after_;
  std::vector<const int16_t*> above_;  ///< taps across rows
  std::vector<const int16_t*> below_;
};

CellBlur::CellBlur(const AlphaMask& mask, CellKernel kernel, int32_t first, int32_t end)
    : mask_(mask),
      kernel_(std::move(kernel)),
      first_(first),
      width_(end - first),
      firstRow_(mask.box().y0 >> kernel_.shift),
      endRow_(((mask.box().y1 - 1) >> kernel_.shift) + 1),
      nextRow_(firstRow_),
      ringRows_(2 * static_cast<size_t>(kernel_.reach) + 1) {
  const auto width = static_cast<size_t>(width_);
  const auto padded = width + 2 * static_cast<size_t>(margin());
  const size_t taps = kernel_.weights.size();
  ring_.resize(ringRows_ * width);
  cells_.resize(padded);
  zeros_.resize(width);
  sums_.resize(width);
  columnSums_.resize(kernel_.shift > 0 ? padded << kernel_.shift : 0);
  before_.resize(taps);
  after_.resize(taps);
  above_.resize(taps, zeros_.data());
  below_.resize(taps, zeros_.data());
}

/// The means of row `y` of cells, from `margin` cells before the first wanted one on.
void CellBlur::readCells(int32_t y) {
  const PixelBox& box = mask_.box();
  const int shift = kernel_.shift;
  const int32_t firstCell = first_ - margin();
  const auto cellCount = static_cast<int32_t>(cells_.size());
  const int32_t x0 = std::max(box.x0, firstCell * (1 << shift));
  const int32_t x1 = std::min(box.x1, (firstCell + cellCount) * (1 << shift));
  if (x0 >= x1) return;
  if (shift == 0) {
    widenBytes(cells_.data() + (x0 - firstCell), mask_.row(y) + (x0 - box.x0), x1 - x0);
    return;
  }
  std::fill(columnSums_.begin(), columnSums_.end(), uint16_t{0});
  const int32_t rowEnd = std::min(box.y1, (y + 1) << shift);
  for (int32_t row = std::max(box.y0, y << shift); row < rowEnd; ++row) {
    addBytes(columnSums_.data() + (x0 - firstCell * (1 << shift)), mask_.row(row) + (x0 - box.x0),
             x1 - x0);
  }
  averageCells(cells_.data(), columnSums_.data(), shift, cellCount);
}

/// Row `y` of cells blurred along the row.
const int16_t* CellBlur::sideways(int32_t y) {
  if (y < firstRow_ || y >= endRow_) return zeros_.data();
  const auto slot = [this](int32_t row) {
    return ring_.data() + static_cast<size_t>(row - firstRow_) % ringRows_ * zeros_.size();
  };
  for (; nextRow_ <= y; ++nextRow_) {
    readCells(nextRow_);
    const int16_t* const center = cells_.data() + margin();
    for (size_t k = 0; k < kernel_.weights.size(); ++k) {
      before_[k] = center - k;
      after_[k] = center + k;
    }
    weighTaps(slot(nextRow_), before_.data(), after_.data(), kernel_.weights.data(),
              static_cast<int>(kernel_.weights.size()), width_);
  }
  return slot(y);
}

const int16_t* CellBlur::row(int32_t y) {
  nextRow_ = std::max(nextRow_, y - kernel_.reach);
  // The lowest row first: it takes the place of a row above the reach.
  sideways(std::min(y + kernel_.reach, endRow_ - 1));
  for (int32_t k = 0; k <= kernel_.reach; ++k) {
    above_[static_cast<size_t>(k)] = sideways(y - k);
    below_[static_cast<size_t>(k)] = sideways(y + k);
  }
  weighTaps(sums_.data(), above_.data(), below_.data(), kernel_.weights.data(),
            static_cast<int>(kernel_.weights.size()), width_);
  return sums_.data();
}

/// The mask as it is.
class PlainRows final : public BlurredRows::Source {
 public:
  PlainRows(const AlphaMask& mask, const PixelBox& box)
      : mask_(mask), skipped_(box.x0 - mask.box().x0) {}
  BlurredRows::Row row(int32_t y) override { return {mask_.row(y) + skipped_, y + 1}; }

 private:
  const AlphaMask& mask_;
  int32_t skipped_;
};

/// Cells of one pixel.
class SinglePixelRows final : public BlurredRows::Source {
 public:
  SinglePixelRows(const AlphaMask& mask, CellKernel kernel, const PixelBox& box)
      : blur_(mask, std::move(kernel), box.x0, box.x1), bytes_(static_cast<size_t>(box.width())) {}
  BlurredRows::Row row(int32_t y) override {
    narrowSamples(bytes_.data(), blur_.row(y), blur_.width());
    return {bytes_.data(), y + 1};
  }

 private:
  CellBlur blur_;
  std::vector<uint8_t> bytes_;
};

/// The last cell whose centre is not right of the centre of pixel x.
int32_t cellBefore(int32_t x, int shift) {
  return (x - (1 << (shift - 1))) >> shift;
}

/// Larger cells, interpolated along each row of cells first, then between two of these.
class InterpolatedRows final : public BlurredRows::Source {
 public:
  InterpolatedRows(const AlphaMask& mask, CellKernel kernel, const PixelBox& box)
      : box_(box),
        shift_(kernel.shift),
        firstCell_(cellBefore(box.x0, kernel.shift)),
        cells_(cellBefore(box.x1 - 1, kernel.shift) + 1 - firstCell_),
        blur_(mask, std::move(kernel), firstCell_, firstCell_ + cells_ + 1),
        upper_(static_cast<size_t>(cells_) << shift_),
        lower_(upper_.size()),
        bytes_(static_cast<size_t>(box.width())) {
    cellRow_ = cellBefore(box.y0, shift_) - 1;
    readLower();
  }

  BlurredRows::Row row(int32_t y) override {
    for (const int32_t wanted = cellBefore(y, shift_); cellRow_ < wanted;) {
      ++cellRow_;
      upper_.swap(lower_);
      readLower();
    }
    const int32_t half = 1 << (shift_ - 1);
    const int32_t center = (cellRow_ * 2 + 1) * half;
    // Interpolation starts at the centre of the first cell.
    const int32_t skipped = box_.x0 - (firstCell_ * 2 + 1) * half;
    mixSamples(bytes_.data(), upper_.data() + skipped, lower_.data() + skipped,
               static_cast<int16_t>((2 * (y - center) + 1) << (14 - shift_)),
               static_cast<int32_t>(bytes_.size()));
    return {bytes_.data(), alike_ ? center + 2 * half : y + 1};
  }

 private:
  void readLower() {
    interpolateCells(lower_.data(), blur_.row(cellRow_ + 1), shift_, cells_);
    alike_ = upper_ == lower_;
  }

  PixelBox box_;
  int shift_;
  int32_t firstCell_;
  int32_t cells_;
  CellBlur blur_;
  int32_t cellRow_ = 0;  ///< the row of cells that `upper_` shows
  std::vector<int16_t> upper_;
  std::vector<int16_t> lower_;
  bool alike_ = false;  ///< nothing changes from `upper_` to `lower_`
  std::vector<uint8_t> bytes_;
};

std::unique_ptr<BlurredRows::Source> sourceFor(const AlphaMask& mask, double blur,
                                               const PixelBox& box) {
  if (box.empty()) return nullptr;
  if (blurReach(blur) == 0) return std::make_unique<PlainRows>(mask, box);
  CellKernel kernel = kernelFor(blur);
  if (kernel.shift == 0) return std::make_unique<SinglePixelRows>(mask, std::move(kernel), box);
  return std::make_unique<InterpolatedRows>(mask, std::move(kernel), box);
}

}  // namespace

int blurReach(double blur) {
  if (!(blur >= 0.5)) return 0;
  return static_cast<int>(std::lround(std::min<double>(blur, kMaxBlurReach)));
}

int blurSupport(double blur) {
  const int reach = blurReach(blur);
  const int shift = cellShift(reach);
  // A pixel lies between two cells, of which all pixels count.
  return shift == 0 ? reach : (cellReach(reach, shift) + 2) << shift;
}

BlurredRows::BlurredRows(const AlphaMask& mask, double blur, const PixelBox& wanted)
    : box_(intersection(movedAndGrown(mask.box(), 0, 0, blurReach(blur)), wanted)),
      source_(sourceFor(mask, blur, box_)) {}

BlurredRows::~BlurredRows() = default;

BlurredRows::Row BlurredRows::row(int32_t y) {
  const Row row = source_->row(y);
  return {row.bytes, std::min(row.end, box_.y1)};
}
