#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "platform/graphics/resample/PlacedImage.h"
#include "platform/graphics/resample/Resampler.h"
#include "support/Bitmaps.h"

namespace {

// The filter once more, in double precision and in the most direct form: no fixed point, no
// separate passes, no averaging into cells.

double kernel(double x) {
  x = std::abs(x);
  if (x >= 2) return 0;
  return x < 1 ? 1.5 * x * x * x - 2.5 * x * x + 1 : -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2;
}

std::vector<double> referenceWeights(const AxisMapping& m, int64_t pixelCount, int64_t index) {
  const double ratio = m.sourceLength / m.destinationLength;
  const double offset = (static_cast<double>(index) + 0.5 - m.destination) * ratio;
  const double along = std::clamp(offset, 0.0, m.sourceLength);
  const double at = m.source + (m.mirrored ? m.sourceLength - along : along);
  std::vector<double> weights(static_cast<size_t>(pixelCount));
  double sum = 0;
  for (int64_t i = 0; i < pixelCount; ++i) {
    const auto left = static_cast<double>(i);
    if (left < std::floor(m.source) || left >= m.source + m.sourceLength) continue;
    const double w = kernel((left + 0.5 - at) / std::max(1.0, ratio));
    weights[static_cast<size_t>(i)] = w;
    sum += w;
  }
  for (double& w : weights) w /= sum;
  return weights;
}

std::shared_ptr<NSBitmapImageRep> reference(const NSBitmapImageRep& source,
                                            const ResampleMapping& m, const PixelBox& visible) {
  const AxisMapping across{m.source.origin.x, m.source.size.width, m.destination.origin.x,
                           m.destination.size.width, m.mirroredX};
  const AxisMapping down{m.source.origin.y, m.source.size.height, m.destination.origin.y,
                         m.destination.size.height, m.mirroredY};
  return makeBitmap(visible.width(), visible.height(), [&](int64_t x, int64_t y) {
    const auto wx = referenceWeights(across, source.pixelsWide(), visible.x0 + x);
    const auto wy = referenceWeights(down, source.pixelsHigh(), visible.y0 + y);
    double sums[4] = {};
    for (int64_t sy = 0; sy < source.pixelsHigh(); ++sy) {
      if (wy[static_cast<size_t>(sy)] == 0) continue;
      for (int64_t sx = 0; sx < source.pixelsWide(); ++sx) {
        const double w = wx[static_cast<size_t>(sx)] * wy[static_cast<size_t>(sy)];
        for (int c = 0; c < 4; ++c) sums[c] += w * source.row(sy)[sx * 4 + c];
      }
    }
    const double alpha = std::clamp(sums[3], 0.0, 255.0);
    const auto byte = [&](double v) {
      return static_cast<uint8_t>(std::floor(std::clamp(v, 0.0, alpha) + 0.5));
    };
    return Pixel{byte(sums[0]), byte(sums[1]), byte(sums[2]), byte(alpha)};
  });
}

std::shared_ptr<NSBitmapImageRep> resample(const NSBitmapImageRep& source, const ResampleMapping& m,
                                           const PixelBox& visible) {
  auto result = NSBitmapImageRep::create(visible.width(), visible.height());
  Resampler resampler(source, m, visible);
  const RowRange painted = resampler.paintedRows();
  for (int64_t y = painted.first; y < painted.end; ++y) {
    std::memcpy(result->writableRows(y - visible.y0, y - visible.y0 + 1), resampler.row(y),
                result->bytesPerRow());
  }
  return result;
}

ResampleMapping wholeMapping(const NSBitmapImageRep& source, double width, double height) {
  return {{{0, 0}, source.size()}, {{0, 0}, {width, height}}};
}

/// What the kernel makes of a bitmap between its pixels; those outside a part repeat its edge.
Pixel sampled(const NSBitmapImageRep& bitmap, const PixelBox& part, NSPoint p) {
  const double u = std::clamp<double>(p.x - 0.5, part.x0, part.x1 - 1);
  const double v = std::clamp<double>(p.y - 0.5, part.y0, part.y1 - 1);
  double sums[4] = {};
  for (int j = -1; j <= 2; ++j) {
    for (int i = -1; i <= 2; ++i) {
      const double x = std::floor(u) + i, y = std::floor(v) + j;
      const double weight = kernel(u - x) * kernel(v - y);
      const Pixel pixel =
          pixelAt(bitmap, std::clamp<int64_t>(static_cast<int64_t>(x), part.x0, part.x1 - 1),
                  std::clamp<int64_t>(static_cast<int64_t>(y), part.y0, part.y1 - 1));
      for (size_t c = 0; c < 4; ++c) sums[c] += weight * pixel[c];
    }
  }
  const double alpha = std::clamp(sums[3], 0.0, 255.0);
  Pixel result;
  for (size_t c = 0; c < 4; ++c) {
    result[c] = static_cast<uint8_t>(std::lround(std::clamp(sums[c], 0.0, alpha)));
  }
  return result;
}

Pixel pixelOf(uint32_t word) {
  Pixel pixel;
  std::memcpy(pixel.data(), &word, 4);
  return pixel;
}

}  // namespace

TEST(Resampler, MatchesDoublePrecisionReference) {
  struct Case {
    const char* name;
    int64_t width, height;
    ResampleMapping mapping;
    PixelBox visible;
  };
  const Case cases[] = {
      {"reduce 4:1", 64, 48, {{{0, 0}, {64, 48}}, {{0, 0}, {16, 12}}}, {0, 0, 16, 12}},
      {"reduce oddly", 61, 47, {{{0, 0}, {61, 47}}, {{0, 0}, {17, 30}}}, {0, 0, 17, 30}},
      {"reduce slightly", 40, 30, {{{0, 0}, {40, 30}}, {{0, 0}, {39, 29}}}, {0, 0, 39, 29}},
      {"enlarge", 9, 7, {{{0, 0}, {9, 7}}, {{0, 0}, {40, 31}}}, {0, 0, 40, 31}},
      {"wider and lower", 12, 40, {{{0, 0}, {12, 40}}, {{0, 0}, {50, 5}}}, {0, 0, 50, 5}},
      {"one pixel", 1, 1, {{{0, 0}, {1, 1}}, {{0, 0}, {5, 4}}}, {0, 0, 5, 4}},
      {"to one pixel", 50, 40, {{{0, 0}, {50, 40}}, {{0, 0}, {1, 1}}}, {0, 0, 1, 1}},
      {"part, fractional", 30, 30, {{{3.3, 4.6}, {20.5, 11.2}}, {{0, 0}, {9, 8}}}, {0, 0, 9, 8}},
      {"less than a pixel", 5, 5, {{{2.2, 1.1}, {0.5, 0.25}}, {{0, 0}, {4, 4}}}, {0, 0, 4, 4}},
      {"onto fractions", 20, 20, {{{0, 0}, {20, 20}}, {{2.4, -3.7}, {9.3, 30.1}}}, {2, -4, 12, 27}},
      {"mirrored", 31, 20, {{{0, 0}, {31, 20}}, {{0, 0}, {10, 45}}, true, true}, {0, 0, 10, 45}},
      {"beyond the bitmap", 8, 8, {{{-4, 2}, {16, 12}}, {{0, 0}, {16, 12}}}, {4, 0, 12, 6}},
  };
  unsigned seed = 1;
  for (const Case& c : cases) {
    const auto source = randomBitmap(c.width, c.height, seed++);
    const auto result = resample(*source, c.mapping, c.visible);
    EXPECT_LE(maxDifference(*result, *reference(*source, c.mapping, c.visible)), 1) << c.name;
  }
}

TEST(Resampler, RowsBesideTheUsedOnesOfMovedPicturesToo) {
  // Of the first row that shows anything a single pixel of the window is left, of little weight.
  const auto source = NSBitmapImageRep::create(6, 20);
  for (int64_t y = 8; y < 12; ++y) std::memset(source->writableRows(y, y + 1), 255, 24);
  const ResampleMapping moved{{{0, 0}, {6, 20}}, {{0, 0.3}, {6, 20}}};
  const PixelBox all{0, 0, 6, 21};
  EXPECT_LE(maxDifference(*resample(*source, moved, all), *reference(*source, moved, all)), 1);
}

TEST(Resampler, AveragingBeforeStrongReductionIsInvisible) {
  // Both sizes leave a part of a cell at the far border.
  const auto source = makeBitmap(1001, 803, [](int64_t x, int64_t y) {
    const bool stripe = (x / 37 + y / 53) % 2 == 0 || x == 1000;
    return stripe ? Pixel{200, 40, 0, 255} : Pixel{0, 10, 90, static_cast<uint8_t>(100 + y % 100)};
  });
  const auto mapping = wholeMapping(*source, 5, 3);
  ASSERT_GT(ResampleAxis({0, 1001, 0, 5, false}, 1001).cellSize(), 1);
  const auto result = resample(*source, mapping, {0, 0, 5, 3});
  EXPECT_LE(maxDifference(*result, *reference(*source, mapping, {0, 0, 5, 3})), 1);
}

TEST(Resampler, ReducesExtremeShapesInLittleMemory) {
  const int64_t length = 3'000'000;
  const auto ramp = [&](int64_t i) {
    const auto v = static_cast<uint8_t>(i * 256 / length);
    return Pixel{v, v, v, 255};
  };
  const auto wide = makeBitmap(length, 1, [&](int64_t x, int64_t) { return ramp(x); });
  const auto high = makeBitmap(1, length, [&](int64_t, int64_t y) { return ramp(y); });
  const auto fromWide = resampledBitmap(*wide, 8, 1);
  const auto fromHigh = resampledBitmap(*high, 1, 8);
  for (int64_t i = 2; i < 6; ++i) {
    EXPECT_NEAR(pixelAt(*fromWide, i, 0)[0], static_cast<double>(16 + 32 * i), 1);
    EXPECT_EQ(pixelAt(*fromWide, i, 0), pixelAt(*fromHigh, 0, i));
  }
  const ResampleAxis axis({0, 250e6, 0, 1, false}, 250'000'000);
  EXPECT_LT(axis.maxWindow(), 600);
}

TEST(Resampler, UniformAreasStayExact) {
  const Pixel colours[] = {{255, 255, 255, 255}, {0, 0, 0, 255}, {37, 1, 90, 201}, {1, 0, 0, 1}};
  for (const Pixel& colour : colours) {
    const auto source = makeBitmap(301, 97, [&](int64_t, int64_t) { return colour; });
    for (const NSSize size : {NSSize{7, 3}, {300, 96}, {302, 200}, {77.7, 10.1}, {2, 2}}) {
      const PixelBox visible{0, 0, static_cast<int32_t>(std::ceil(size.width)),
                             static_cast<int32_t>(std::ceil(size.height))};
      const auto result =
          resample(*source, wholeMapping(*source, size.width, size.height), visible);
      const auto expected =
          makeBitmap(visible.width(), visible.height(), [&](int64_t, int64_t) { return colour; });
      EXPECT_EQ(maxDifference(*result, *expected), 0) << size.width;
    }
  }
}

TEST(Resampler, ColoursNeverExceedAlpha) {
  // Where hard edges of alpha and colour lie apart, the negative lobes would lift colours over it.
  const auto source = makeBitmap(40, 40, [](int64_t x, int64_t y) {
    if ((x / 5 + y / 7) % 2 == 0) return Pixel{0, 0, 0, 0};
    return x % 3 == 0 ? Pixel{250, 0, 120, 250} : Pixel{9, 60, 60, 60};
  });
  for (const int64_t side : {13, 39, 90}) {
    const auto result = resampledBitmap(*source, side, side);
    for (int64_t y = 0; y < side; ++y) {
      for (int64_t x = 0; x < side; ++x) {
        const Pixel p = pixelAt(*result, x, y);
        ASSERT_LE(std::max({p[0], p[1], p[2]}, std::less<>()), p[3]) << x << "," << y;
      }
    }
  }
}

TEST(Resampler, WholePixelMovesCopy) {
  // Colour above alpha tells a copy from the filter, which would clamp it.
  const auto source = makeBitmap(10, 8, [](int64_t x, int64_t y) {
    return Pixel{255, static_cast<uint8_t>(x * 20), static_cast<uint8_t>(y * 30), 7};
  });
  const ResampleMapping mapping{{{2, 1}, {6, 5}}, {{-1, 3}, {6, 5}}};
  const auto result = resample(*source, mapping, {0, 4, 5, 8});
  for (int64_t y = 0; y < 4; ++y) {
    for (int64_t x = 0; x < 5; ++x) {
      EXPECT_EQ(pixelAt(*result, x, y), pixelAt(*source, x + 3, y + 2));
    }
  }
}

TEST(Resampler, PartOfTheDestinationIsThatPartOfTheWhole) {
  const auto source = randomBitmap(200, 300, 5);
  for (const NSSize size : {NSSize{90.5, 70.25}, {500, 400}, {1.5, 2}}) {
    const ResampleMapping mapping = wholeMapping(*source, size.width, size.height);
    const PixelBox all{0, 0, static_cast<int32_t>(size.width), static_cast<int32_t>(size.height)};
    const PixelBox part{all.x1 / 3, all.y1 / 2, all.x1, all.y1};
    const auto whole = resample(*source, mapping, all);
    const auto result = resample(*source, mapping, part);
    for (int64_t y = 0; y < part.height(); ++y) {
      ASSERT_EQ(
          std::memcmp(result->row(y), whole->row(part.y0 + y) + part.x0 * 4, result->bytesPerRow()),
          0);
    }
  }
}

TEST(Resampler, PartsMayBeginOnAnyPixel) {
  // Where a pixel falls on the middle of a source pixel its filter is that one pixel, and the
  // filters of its neighbours reach farther on both sides.
  const auto source = randomBitmap(12, 9, 15);
  for (const bool mirrored : {false, true}) {
    ResampleMapping mapping = wholeMapping(*source, 36, 45);
    mapping.mirroredX = mirrored;
    const auto whole = resample(*source, mapping, {0, 0, 36, 45});
    for (int32_t x0 = 0; x0 < 36; ++x0) {
      for (int32_t x1 = x0 + 1; x1 <= 36; ++x1) {
        const auto part = resample(*source, mapping, {x0, 20, x1, 25});
        for (int64_t y = 0; y < 5; ++y) {
          ASSERT_EQ(std::memcmp(part->row(y), whole->row(20 + y) + x0 * 4, part->bytesPerRow()), 0)
              << x0 << " to " << x1;
        }
      }
    }
  }
}

TEST(Resampler, RowsMayBeAskedForInAnyOrder) {
  const auto source = randomBitmap(700, 900, 6);
  const auto mapping = wholeMapping(*source, 6, 7);
  const auto expected = resample(*source, mapping, {0, 0, 6, 7});
  Resampler resampler(*source, mapping, {0, 0, 6, 7});
  for (const int64_t y : {6, 0, 3, 2, 5, 1, 4}) {
    EXPECT_EQ(std::memcmp(resampler.row(y), expected->row(y), expected->bytesPerRow()), 0) << y;
  }
}

TEST(Resampler, PassesOverUnusedRows) {
  const auto full = makeBitmap(50, 400, [](int64_t x, int64_t y) {
    if (y < 130 || y >= 201) return Pixel{};
    return Pixel{static_cast<uint8_t>(x), static_cast<uint8_t>(y % 100), 3, 180};
  });
  const auto sparse = NSBitmapImageRep::create(50, 400);
  std::memcpy(sparse->writableRows(130, 201), full->row(130), 71 * full->bytesPerRow());
  for (const NSSize size : {NSSize{25, 100}, {60, 900}, {5, 4}, {50, 400}}) {
    const PixelBox all{0, 0, static_cast<int32_t>(size.width), static_cast<int32_t>(size.height)};
    const auto mapping = wholeMapping(*sparse, size.width, size.height);
    const auto result = resample(*sparse, mapping, all);
    EXPECT_EQ(maxDifference(*result, *resample(*full, mapping, all)), 0);
  }
  Resampler resampler(*sparse, wholeMapping(*sparse, 25, 100), {0, 0, 25, 100});
  EXPECT_GE(resampler.paintedRows().first, 130 / 4 - 3);
  EXPECT_LE(resampler.paintedRows().end, 201 / 4 + 4);
  const auto untouched = NSBitmapImageRep::create(50, 50);
  EXPECT_TRUE(
      Resampler(*untouched, wholeMapping(*untouched, 5, 5), {0, 0, 5, 5}).paintedRows().empty());
}

TEST(Resampler, SenselessMappingsPaintNothing) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const auto source = randomBitmap(4, 4, 7);
  const ResampleMapping cases[] = {
      {{{0, 0}, {0, 4}}, {{0, 0}, {4, 4}}},         {{{0, 0}, {4, 4}}, {{0, 0}, {4, 0}}},
      {{{0, 0}, {-4, 4}}, {{0, 0}, {4, 4}}},        {{{kNaN, 0}, {4, 4}}, {{0, 0}, {4, 4}}},
      {{{0, 0}, {4, kInfinity}}, {{0, 0}, {4, 4}}}, {{{0, 0}, {4, 4}}, {{0, kNaN}, {4, 4}}},
      {{{9, 0}, {4, 4}}, {{0, 0}, {4, 4}}},         {{{0, 0}, {4, 4}}, {{0, 0}, {1e-320, 4}}},
      {{{0, -9}, {4, 4}}, {{0, 0}, {4, 4}}},        {{{1e308, 0}, {1e308, 4}}, {{0, 0}, {4, 4}}},
  };
  for (const ResampleMapping& m : cases) {
    EXPECT_TRUE(Resampler(*source, m, {0, 0, 4, 4}).paintedRows().empty());
  }
  const auto mapping = wholeMapping(*source, 4, 4);
  EXPECT_TRUE(Resampler(*source, mapping, {0, 0, 0, 4}).paintedRows().empty());
  EXPECT_TRUE(Resampler(*source, mapping, {0, 0, 4, -1}).paintedRows().empty());
  EXPECT_EQ(resampledBitmap(*source, 20000, 20000), nullptr);
  EXPECT_EQ(resampledBitmap(*source, 0, 5)->pixelsHigh(), 5);
}

TEST(Resampler, HugeMagnificationShowsEdgePixels) {
  const auto source = makeBitmap(2, 1, [](int64_t x, int64_t) {
    return x == 0 ? Pixel{10, 20, 30, 255} : Pixel{90, 80, 70, 255};
  });
  const ResampleMapping mapping{{{0, 0}, {2, 1}}, {{-1e9, -1e9}, {2e9, 2e9}}};
  const auto result = resample(*source, mapping, {-1'000'000'000, 5, -999'999'998, 6});
  // Extrapolation at the very edge is bounded by the kernel's 1/8 overshoot.
  for (int c = 0; c < 3; ++c) EXPECT_NEAR(pixelAt(*result, 0, 0)[c], pixelAt(*source, 0, 0)[c], 10);
}

TEST(ResampleKernels, MatchScalarForms) {
  std::mt19937 random(11);
  for (int round = 0; round < 50; ++round) {
    const size_t count = 1 + random() % 5000;
    const size_t rowCount = 4 * (1 + random() % 6);
    std::vector<std::vector<uint8_t>> rows(rowCount, std::vector<uint8_t>(count));
    std::vector<const uint8_t*> pointers;
    std::vector<int16_t> weights(rowCount);
    for (auto& row : rows) {
      for (auto& v : row) v = static_cast<uint8_t>(random());
      pointers.push_back(row.data());
    }
    for (auto& w : weights) w = static_cast<int16_t>(random() % 4000 - 1000);
    std::vector<float> columns(count, -1);
    weighRows(pointers.data(), weights.data(), rowCount, columns.data(), count);
    for (size_t i = 0; i < count; ++i) {
      int sum = 0;
      for (size_t r = 0; r < rowCount; ++r) sum += weights[r] * rows[r][i];
      ASSERT_EQ(columns[i], static_cast<float>(sum)) << i;
    }
  }
}

TEST(ResampleKernels, CellsAreRoundedMeans) {
  std::mt19937 random(12);
  for (const size_t cellSize : {1, 2, 3, 7, 100}) {
    const size_t width = 101;
    std::vector<uint8_t> rows(3 * width * 4);
    for (auto& v : rows) v = static_cast<uint8_t>(random());
    const size_t cells = (width + cellSize - 1) / cellSize;
    std::vector<uint32_t> totals(cells * 4);
    std::vector<uint8_t> means(cells * 4);
    for (size_t y = 0; y < 3; ++y) {
      sumCells(rows.data() + y * width * 4, width, cellSize, totals.data());
    }
    averageCells(totals.data(), width, cellSize, 3, means.data());
    for (size_t i = 0; i < means.size(); ++i) {
      const size_t begin = i / 4 * cellSize;
      const size_t end = std::min(begin + cellSize, width);
      size_t sum = 0;
      for (size_t y = 0; y < 3; ++y) {
        for (size_t x = begin; x < end; ++x) sum += rows[(y * width + x) * 4 + i % 4];
      }
      const size_t n = (end - begin) * 3;
      ASSERT_EQ(means[i], (2 * sum + n) / (2 * n)) << cellSize << ": " << i;
    }
  }
}

TEST(PlacedImage, TurnedAndSkewedPicturesAreSampledByTheSameKernel) {
  const auto bitmap = randomBitmap(40, 30, 5);
  const PixelBox visible{-20, -20, 80, 80};
  const CGAffineTransform cases[] = {{0.9925, 0.1219, -0.1219, 0.9925, 3.3, 2.7},
                                     {1.9, 1.1, -1.1, 1.9, 3, 2},
                                     {-1, 0.5, 0.25, 1, 40, 2}};
  for (const auto& toDevice : cases) {
    const CGAffineTransform fromDevice = CGAffineTransformInvert(toDevice);
    for (const PixelBox& part : {PixelBox{0, 0, 40, 30}, PixelBox{5, 4, 7, 29}}) {
      const NSRect shown{{static_cast<double>(part.x0), static_cast<double>(part.y0)},
                         {static_cast<double>(part.width()), static_cast<double>(part.height())}};
      const auto placed = placeImage(*bitmap, {shown, toDevice}, ImageQuality::filtered, visible);
      std::vector<uint32_t> row(100), piece(7);
      for (int32_t y = -20; y < 80; ++y) {
        placed.source->row(-20, y, 100, row.data());
        for (int32_t i = 0; i < 100; ++i) {
          const NSPoint p = CGPointApplyAffineTransform({i - 19.5, y + 0.5}, fromDevice);
          const Pixel expected = sampled(*bitmap, part, p);
          for (size_t c = 0; c < 4; ++c) {
            // A position is known to 1/512 pixel, and neighbours differ by up to 255 levels.
            ASSERT_NEAR(pixelOf(row[static_cast<size_t>(i)])[c], expected[c], 3) << i << ' ' << y;
          }
        }
        placed.source->row(11, y, 7, piece.data());
        ASSERT_TRUE(std::equal(piece.begin(), piece.end(), row.begin() + 31)) << y;
      }
    }
  }
}

TEST(PlacedImage, WhatIsTurnedOntoPixelsIsCopied) {
  const auto bitmap = randomBitmap(20, 10, 6);
  const auto placed = placeImage(*bitmap, {NSMakeRect(0, 0, 20, 10), {0, 1, -1, 0, 10, 0}},
                                 ImageQuality::filtered, {0, 0, 10, 20});
  std::vector<uint32_t> row(10);
  for (int32_t y = 0; y < 20; ++y) {
    placed.source->row(0, y, 10, row.data());
    for (int32_t x = 0; x < 10; ++x) {
      EXPECT_EQ(pixelOf(row[static_cast<size_t>(x)]), pixelAt(*bitmap, y, 9 - x));
    }
  }
}
