#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/context/GradientDrawing.h"
#include "support/Bitmaps.h"
#include "support/ReferenceBlend.h"

namespace {

using Op = NSCompositingOperation;

constexpr int32_t kSide = 16;

uint32_t wordAt(const NSBitmapImageRep& bitmap, int64_t x, int64_t y) {
  uint32_t word = 0;
  std::memcpy(&word, bitmap.row(y) + 4 * x, 4);
  return word;
}

/// Coverage of device pixel (x, y), worked out from the geometry.
using Coverage = std::function<double(int32_t x, int32_t y)>;

double overlap(double low, double high, int32_t pixel) {
  return std::max(0.0, std::min<double>(high, pixel + 1) - std::max<double>(low, pixel));
}

/// A rectangle given in user space, y up.
Coverage rectCoverage(const NSRect& r) {
  return [r](int32_t x, int32_t y) {
    return overlap(NSMinX(r), NSMaxX(r), x) * overlap(kSide - NSMaxY(r), kSide - NSMinY(r), y);
  };
}

/// The triangle below the diagonal from the top left to the bottom right corner: half of each
/// pixel on the diagonal.
PathData lowerTriangle() {
  PathData path;
  path.move({0, 0});
  path.line({kSide, 0});
  path.line({0, kSide});
  path.close();
  return path;
}

double lowerTriangleCoverage(int32_t x, int32_t y) {
  return x < y ? 1 : x == y ? 0.5 : 0;
}

PathData frame() {
  PathData path = pathOfRect(NSMakeRect(2, 2, 12, 12));
  const PathData inner = pathOfRect(NSMakeRect(5.5, 5, 5, 5.25));
  path.verbs.insert(path.verbs.end(), inner.verbs.begin(), inner.verbs.end());
  path.points.insert(path.points.end(), inner.points.begin(), inner.points.end());
  return path;
}

double frameCoverage(int32_t x, int32_t y) {
  return rectCoverage(NSMakeRect(2, 2, 12, 12))(x, y) -
         rectCoverage(NSMakeRect(5.5, 5, 5, 5.25))(x, y);
}

constexpr NSRect kFractional{{2.5, 1.25}, {9.25, 11.5}};
constexpr RGBAColor kPaint{0.9, 0.3, 0.1, 0.8};

UnitPixel unitOf(const RGBAColor& c, double alpha) {
  const double a = c.alpha * alpha;
  return {c.red * a, c.green * a, c.blue * a, a};
}

/// Something painted: how, and the source and coverage that each pixel should then have seen.
struct PaintCase {
  std::string name;
  std::function<void(CGContext&)> paint;
  Coverage coverage;
  std::function<UnitPixel(int32_t x, int32_t y, double alpha)> source;
};

struct ClipCase {
  std::string name;
  std::function<void(CGContext&)> clip;
  Coverage coverage;
};

std::shared_ptr<NSBitmapImageRep> picture() {
  static const auto bitmap = randomBitmap(9, 7, 11);
  return bitmap;
}

UnitPixel solid(int32_t, int32_t, double alpha) {
  return unitOf(kPaint, alpha);
}

std::vector<PaintCase> paintCases() {
  const CGGradient gradient({{0, {1, 0, 0, 1}}, {1, {0, 0, 1, 0.5}}});
  const auto across = [](int32_t x, int32_t, double alpha) {
    const double t = (x + 0.5) / kSide;
    return unitOf({1 - t, 0, t, 1 - t / 2}, alpha);
  };
  return {
      {"whole rectangle", [](CGContext& c) { c.fill(NSMakeRect(0, 0, kSide, kSide)); },
       [](int32_t, int32_t) { return 1.0; }, solid},
      {"fractional rectangle", [](CGContext& c) { c.fill(kFractional); }, rectCoverage(kFractional),
       solid},
      {"triangle", [](CGContext& c) { c.fill(lowerTriangle(), WindingRule::nonZero); },
       lowerTriangleCoverage, solid},
      {"even-odd frame", [](CGContext& c) { c.fill(frame(), WindingRule::evenOdd); }, frameCoverage,
       solid},
      {"picture", [](CGContext& c) { c.draw(*picture(), NSMakeRect(3, 4, 9, 7)); },
       rectCoverage(NSMakeRect(3, 4, 9, 7)),
       [](int32_t x, int32_t y, double alpha) {
         UnitPixel p =
             unitPixel(x >= 3 && x < 12 && y >= 5 && y < 12 ? wordAt(*picture(), x - 3, y - 5) : 0);
         for (double& c : p) c *= alpha;
         return p;
       }},
      {"gradient in the triangle",
       [=](CGContext& c) {
         c.fill(lowerTriangle(), WindingRule::nonZero, gradient, LinearAxis{{0, 0}, {kSide, 0}});
       },
       lowerTriangleCoverage, across},
      {"gradient",
       [=](CGContext& c) {
         c.draw(gradient, LinearAxis{{0, 0}, {kSide, 0}}, GradientExtent::both);
       },
       [](int32_t, int32_t) { return 1.0; }, across},
      {"layer",
       [](CGContext& c) {
         CGTransparencyLayerScope layer(c);
         c.fill(kFractional);
         layer.end();
       },
       [](int32_t, int32_t) { return 1.0; },
       [](int32_t x, int32_t y, double alpha) {
         return unitOf(kPaint, alpha * rectCoverage(kFractional)(x, y));
       }},
  };
}

std::vector<ClipCase> clipCases() {
  const NSRect fractional = NSMakeRect(1.5, 0.75, 10, 12);
  return {
      {"no clip", [](CGContext&) {}, [](int32_t, int32_t) { return 1.0; }},
      {"whole pixels", [](CGContext& c) { c.clip(NSMakeRect(4, 3, 9, 10)); },
       rectCoverage(NSMakeRect(4, 3, 9, 10))},
      {"fractional clip", [=](CGContext& c) { c.clip(fractional); }, rectCoverage(fractional)},
      {"path clip", [](CGContext& c) { c.clip(lowerTriangle(), WindingRule::nonZero); },
       lowerTriangleCoverage},
      {"two clips",
       [=](CGContext& c) {
         c.clip(frame(), WindingRule::evenOdd);
         c.clip(NSMakeRect(0, 0, 9, kSide));
       },
       [](int32_t x, int32_t y) { return x < 9 ? frameCoverage(x, y) : 0; }},
      {"nothing", [](CGContext& c) { c.clip(PathData(), WindingRule::nonZero); },
       [](int32_t, int32_t) { return 0.0; }},
  };
}

TEST(CGContext, EveryOperationShapeClipAndAlphaFollowsTheFormula) {
  const auto before = randomBitmap(kSide, kSide, 4);
  for (const PaintCase& painted : paintCases()) {
    for (const ClipCase& clipped : clipCases()) {
      for (const double alpha : {1.0, 0.6}) {
        for (int operation = 0; operation <= 13; ++operation) {
          const auto bitmap = before->copy();
          CGContext context(bitmap);
          context.setFillColor(kPaint);
          clipped.clip(context);
          context.setAlpha(alpha);
          context.setOperation(static_cast<Op>(operation));
          painted.paint(context);
          for (int32_t y = 0; y < kSide; ++y) {
            for (int32_t x = 0; x < kSide; ++x) {
              const double cover = painted.coverage(x, y) * clipped.coverage(x, y);
              const uint32_t old = wordAt(*before, x, y);
              const uint32_t now = wordAt(*bitmap, x, y);
              if (cover == 0) {
                ASSERT_EQ(now, old) << painted.name << ", " << clipped.name << ", " << operation;
                continue;
              }
              const UnitPixel expected = referenceBlend(
                  static_cast<Op>(operation), painted.source(x, y, alpha), unitPixel(old), cover);
              // Source, coverage and clip are rounded to bytes before they are used.
              ASSERT_LE(distance(now, expected), 2.5)
                  << painted.name << ", " << clipped.name << ", operation " << operation
                  << ", alpha " << alpha << " at " << x << ' ' << y;
            }
          }
        }
      }
    }
  }
}

}  // namespace
