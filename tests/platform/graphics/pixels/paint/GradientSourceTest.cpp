#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

#include "platform/graphics/pixels/paint/GradientSource.h"
#include "support/ReferenceBlend.h"

namespace {

constexpr RGBAColor kRed{1, 0, 0, 1};
constexpr RGBAColor kBlue{0, 0, 1, 1};
const std::vector<GradientStop> kRedToBlue{{0, kRed}, {1, kBlue}};

uint32_t pixelOf(RowSource& source, int32_t x, int32_t y) {
  std::vector<uint32_t> buffer(1);
  return source.row(x, y, 1, buffer.data())[0];
}

TEST(GradientTable, InterpolatesBeforePremultiplying) {
  // Opaque red to transparent blue: half of each at half alpha in the middle.
  const GradientTable table(std::vector<GradientStop>{{0, kRed}, {1, {0, 0, 1, 0}}}, 1);
  EXPECT_EQ(table.pixels()[0], 0xff0000ffU);
  EXPECT_EQ(table.pixels()[1023], 0U);
  EXPECT_LE(distance(table.pixels()[512], {0.25, 0, 0.25, 0.5}), 1);
  EXPECT_FALSE(table.opaque());
}

TEST(GradientTable, EdgesOrderAndEqualLocations) {
  const GradientTable table(
      std::vector<GradientStop>{{0.75, kBlue}, {0.25, kRed}, {0.5, kRed}, {0.5, kBlue}}, 1);
  EXPECT_EQ(table.pixels()[0], 0xff0000ffU);
  EXPECT_EQ(table.pixels()[511], 0xff0000ffU);
  EXPECT_EQ(table.pixels()[512], 0xffff0000U);
  EXPECT_EQ(table.pixels()[1023], 0xffff0000U);
  EXPECT_TRUE(table.opaque());
  const GradientTable odd(std::vector<GradientStop>{{NAN, kRed}, {1e300, kBlue}, {-INFINITY, kRed}},
                          0.5);
  EXPECT_EQ(odd.pixels()[0], 0x80000080U);
  EXPECT_EQ(odd.pixels()[1023], 0x80800000U);
  EXPECT_EQ(GradientTable({}, 1).pixels()[500], 0U);
}

TEST(GradientTable, AgreesWithInterpolationAtEveryEntryOfManyStops) {
  std::mt19937 random(5);
  const auto unit = [&] { return static_cast<double>(random() % 10001) / 10000; };
  for (const size_t count : {size_t{1}, size_t{2}, size_t{7}, size_t{100000}}) {
    std::vector<GradientStop> stops(count);
    for (GradientStop& stop : stops) stop = {unit(), {unit(), unit(), unit(), unit()}};
    const GradientTable table(stops, 0.75);
    std::stable_sort(stops.begin(), stops.end(),
                     [](const auto& a, const auto& b) { return a.location < b.location; });
    for (int i = 0; i < GradientTable::kSize; ++i) {
      const RGBAColor c = interpolatedColor(stops, i / 1023.0);
      const double a = c.alpha * 0.75;
      ASSERT_LE(distance(table.pixels()[i], {c.red * a, c.green * a, c.blue * a, a}), 0.51)
          << count << ' ' << i;
    }
  }
}

// A hard edge at the start: before it the first of its stops counts, from it on the last; at the
// end it is the other way round.
TEST(GradientTable, SeveralStopsAtAnEnd) {
  const RGBAColor green{0, 1, 0, 1};
  const GradientTable table(
      std::vector<GradientStop>{
          {0, kRed}, {0, green}, {0, kBlue}, {1, kBlue}, {1, green}, {1, kRed}},
      1);
  const auto colors = [&](const RowSource& source, int32_t from, int32_t step) {
    std::vector<uint32_t> found;
    for (int32_t at = from; at < from + 4 * step; at += step) {
      found.push_back(pixelOf(const_cast<RowSource&>(source), at, at));
    }
    return found;
  };
  const std::vector<uint32_t> expected{0xff0000ffU, 0xffff0000U, 0xffff0000U, 0xff0000ffU};
  // At 50 units each, the pixels lie before the start, twice between the ends, and after the end.
  for (const LinearAxis& axis :
       {LinearAxis{{0, 0}, {100, 0}}, LinearAxis{{0, 0}, {0, 100}}, LinearAxis{{0, 0}, {100, 3}}}) {
    const auto source = linearGradientSource(table, axis, GradientExtent::both, {});
    EXPECT_EQ(colors(*source, -25, 50), expected) << axis.end.x << ' ' << axis.end.y;
  }
  for (const RadialAxis& axis : {RadialAxis{{0, 0}, 50, {0, 0}, 150},
                                 {{0, 0}, 50, {-9, 0}, 150},
                                 {{0, 0}, 50, {-99, 0}, 150}}) {
    const auto source = radialGradientSource(table, axis, GradientExtent::both, {});
    EXPECT_EQ(pixelOf(*source, 20, 20), expected[0]) << axis.endCenter.x;
    EXPECT_EQ(pixelOf(*source, -60, 0), expected[1]) << axis.endCenter.x;
  }
  const auto inward =
      radialGradientSource(table, {{0, 0}, 150, {0, 0}, 50}, GradientExtent::both, {});
  EXPECT_EQ(pixelOf(*inward, 200, 0), expected[0]);
}

/// The location of a point on the highest circle through it, by bisection over a dense scan.
double locationByScan(const RadialAxis& axis, NSPoint p, double low, double high) {
  const auto outside = [&](double t) {
    const double x = axis.startCenter.x + t * (axis.endCenter.x - axis.startCenter.x);
    const double y = axis.startCenter.y + t * (axis.endCenter.y - axis.startCenter.y);
    const double r = axis.startRadius + t * (axis.endRadius - axis.startRadius);
    return r < 0 ? 1.0 : std::hypot(p.x - x, p.y - y) - r;
  };
  constexpr int kSteps = 16000;
  for (int i = kSteps; i > 0; --i) {
    double a = low + (high - low) * (i - 1) / kSteps;
    double b = low + (high - low) * i / kSteps;
    if ((outside(a) > 0) == (outside(b) > 0)) continue;
    for (int step = 0; step < 50; ++step) {
      const double middle = (a + b) / 2;
      ((outside(middle) > 0) == (outside(a) > 0) ? a : b) = middle;
    }
    if (std::fabs(outside(a)) < 1e-6) return a;
  }
  return NAN;
}

TEST(RadialGradient, ShowsTheHighestCircleThroughEachPoint) {
  const RadialAxis cases[] = {
      {{20, 20}, 0, {20, 20}, 15},    // concentric
      {{20, 20}, 5, {20, 20}, 15},    // a ring
      {{20, 20}, 15, {20, 20}, 5},    // inwards
      {{20, 20}, 0, {26, 23}, 20},    // one circle in the other
      {{20, 20}, 1, {37, 20}, 18.4},  // nearly touching
      {{20, 20}, 12, {23, 20}, 2},    // shrinking
      {{12, 20}, 3, {30, 20}, 8},     // a cone
      {{12, 20}, 5, {30, 20}, 5},     // a tube
  };
  const GradientTable table(kRedToBlue, 1);
  for (const RadialAxis& axis : cases) {
    for (const GradientExtent extent : {GradientExtent::both, GradientExtent::none}) {
      const auto source = radialGradientSource(table, axis, extent, {});
      ASSERT_NE(source, nullptr);
      for (int32_t y = 0; y < 40; y += 5) {
        for (int32_t x = 0; x < 40; x += 3) {
          const NSPoint p{x + 0.5, y + 0.5};
          const double t = extent == GradientExtent::both ? locationByScan(axis, p, -160, 160)
                                                          : locationByScan(axis, p, 0, 1);
          const uint32_t pixel = pixelOf(*source, x, y);
          if (std::isnan(t)) {
            EXPECT_EQ(pixel, 0U) << x << ' ' << y;
          } else {
            const double blue = std::clamp(t, 0.0, 1.0);
            EXPECT_LE(distance(pixel, {1 - blue, 0, blue, 1}), 1) << x << ' ' << y << " t " << t;
          }
        }
      }
    }
  }
}

TEST(LinearGradient, FollowsTheAxisUnderAnyTransform) {
  std::mt19937 random(7);
  const auto some = [&] { return static_cast<double>(random() % 2001) / 100 - 10; };
  const GradientTable table(kRedToBlue, 1);
  for (int round = 0; round < 50; ++round) {
    const LinearAxis axis{{some(), some()}, {some(), some()}};
    const CGAffineTransform t{some(), some(), some(), some(), some(), some()};
    const auto source = linearGradientSource(table, axis, GradientExtent::both, t);
    if (source == nullptr) continue;
    std::vector<uint32_t> buffer(70);
    const uint32_t* const row = source->row(-5, round, 70, buffer.data());
    const double dx = axis.end.x - axis.start.x;
    const double dy = axis.end.y - axis.start.y;
    for (int32_t i = 0; i < 70; ++i) {
      const NSPoint p =
          CGPointApplyAffineTransform({i - 4.5, round + 0.5}, CGAffineTransformInvert(t));
      const double at =
          ((p.x - axis.start.x) * dx + (p.y - axis.start.y) * dy) / (dx * dx + dy * dy);
      const double blue = std::clamp(at, 0.0, 1.0);
      ASSERT_LE(distance(row[i], {1 - blue, 0, blue, 1}), 1) << round << ' ' << i;
    }
  }
}

TEST(LinearGradient, RowsThatAreAlikeComeInAnyPieces) {
  const GradientTable table(kRedToBlue, 1);
  const LinearAxis axis{{0, 0}, {100, 0}};
  const auto pieces = linearGradientSource(table, axis, GradientExtent::both, {});
  std::vector<uint32_t> buffer(200);
  for (const auto& [x, n] : {std::pair{0, 50}, {50, 30}, {10, 90}, {-20, 10}, {60, 60}, {0, 200}}) {
    const auto whole = linearGradientSource(table, axis, GradientExtent::both, {});
    const uint32_t* const row = pieces->row(x, 3, n, buffer.data());
    for (int32_t i = 0; i < n; ++i) ASSERT_EQ(row[i], pixelOf(*whole, x + i, 9)) << x << ' ' << i;
  }
}

TEST(LinearGradient, ShowsNothingBeyondEndsThatDoNotExtend) {
  const GradientTable table(kRedToBlue, 1);
  const LinearAxis axis{{2, 0}, {4, 0}};
  const uint32_t red = 0xff0000ff;
  const uint32_t blue = 0xffff0000;
  struct {
    GradientExtent extent;
    uint32_t before;
    uint32_t after;
  } const cases[] = {{GradientExtent::none, 0, 0},
                     {GradientExtent::beforeStart, red, 0},
                     {GradientExtent::afterEnd, 0, blue},
                     {GradientExtent::both, red, blue}};
  for (const auto& c : cases) {
    const auto source = linearGradientSource(table, axis, c.extent, {});
    EXPECT_EQ(pixelOf(*source, 1, 0), c.before);
    EXPECT_EQ(pixelOf(*source, 4, 0), c.after);
    EXPECT_EQ(source->opaque(), c.extent == GradientExtent::both);
  }
}

TEST(GradientSources, RefuseGeometryThatSaysNothing) {
  const GradientTable table(kRedToBlue, 1);
  const auto both = GradientExtent::both;
  EXPECT_EQ(linearGradientSource(table, {{1, 1}, {1, 1}}, both, {}), nullptr);
  EXPECT_EQ(linearGradientSource(table, {{0, 0}, {NAN, 1}}, both, {}), nullptr);
  EXPECT_EQ(linearGradientSource(table, {{0, 0}, {1e300, 1}}, both, {}), nullptr);
  EXPECT_EQ(linearGradientSource(table, {{0, 0}, {1, 1}}, both, {0, 0, 0, 0, 0, 0}), nullptr);
  EXPECT_EQ(radialGradientSource(table, {{1, 1}, 3, {1, 1}, 3}, both, {}), nullptr);
  EXPECT_EQ(radialGradientSource(table, {{1, 1}, -1, {1, 1}, 3}, both, {}), nullptr);
  EXPECT_EQ(radialGradientSource(table, {{1, 1}, 0, {1, INFINITY}, 3}, both, {}), nullptr);
  EXPECT_EQ(radialGradientSource(table, {{1, 1}, 0, {1, 1}, NAN}, both, {}), nullptr);
  EXPECT_EQ(radialGradientSource(table, {{1, 1}, 0, {1, 1}, 2}, both, {1, 2, 2, 4, 0, 0}), nullptr);
}

}  // namespace
