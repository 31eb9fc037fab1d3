// Archived paths, gradients, shadows and transforms, as other writers leave them.
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/graphics/path/NSAffineTransform.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "platform/graphics/pixels/paint/RGBAColor.h"
#include "support/Archives.h"

namespace {

using Stops = std::vector<std::pair<RGBAColor, CGFloat>>;

constexpr RGBAColor kRed{1, 0, 0, 1};
constexpr RGBAColor kGreen{0, 1, 0, 1};
constexpr RGBAColor kBlue{0, 0, 1, 1};

/// Elements as text: "M 1 2, L 3 4, Z".
std::string elementsOf(const NSBezierPath& path) {
  std::string text;
  for (int64_t i = 0; i < path.elementCount(); ++i) {
    NSPoint p[3];
    const auto kind = path.elementAtIndex(i, p);
    if (!text.empty()) text += ", ";
    text += "MLCZ"[kind];
    const int count = kind == NSCurveToBezierPathElement     ? 3
                      : kind == NSClosePathBezierPathElement ? 0
                                                             : 1;
    for (int k = 0; k < count; ++k) {
      char numbers[64];
      std::snprintf(numbers, sizeof numbers, " %g %g", p[k].x, p[k].y);
      text += numbers;
    }
  }
  return text;
}

std::vector<CGFloat> dashOf(const NSBezierPath& path) {
  return {path.lineDash().begin(), path.lineDash().end()};
}

Stops stopsOf(const NSGradient& gradient) {
  Stops stops;
  for (const auto& stop : gradient.stops()) {
    const NSColor& c = *stop.color;
    stops.push_back({{c.redComponent(), c.greenComponent(), c.blueComponent(), c.alphaComponent()},
                     stop.location});
  }
  return stops;
}

template <class Object>
std::shared_ptr<Object> throughArchive(const std::shared_ptr<Object>& object) {
  return std::dynamic_pointer_cast<Object>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(object)));
}

class PathArchive : public testing::Test {
 protected:
  void SetUp() override { registerGraphicsClasses(); }
  std::shared_ptr<NSBezierPath> path(const char* key) {
    auto path = coder_.decodeObjectOfClass<NSBezierPath>(key);
    return path != nullptr ? path : std::make_shared<NSBezierPath>();
  }
  NSKeyedUnarchiver coder_{madeArchive("good/paths")};
};

class GradientArchive : public PathArchive {
 protected:
  Stops stops(const char* key) {
    const auto gradient = gradients_.decodeObjectOfClass<NSGradient>(key);
    return gradient == nullptr ? Stops() : stopsOf(*gradient);
  }
  NSKeyedUnarchiver gradients_{madeArchive("good/gradients")};
};

}  // namespace

TEST_F(PathArchive, ElementsThatCanBeReadAreKept) {
  const std::string square = "M 1 2, L 5 2, L 5 6, L 1 6, Z";
  const struct {
    const char* key;
    std::string elements;
  } cases[] = {
      {"plain", ""},
      {"square", square + ", M 1 2"},
      {"bare close", square},
      {"everything", "M 0.1 -3, C 1 2 3 4 5 6"},
      // Two thirds of the way from (1, 2) and (7, 5) to (4, 2).
      {"quadratic", "M 1 2, C 3 2 5 3 7 5"},
      {"segments in an object", "M 1 2, L 3 4"},
      {"line first", "M 3 4, M 1 2, L 3 4"},
      {"curve first", "M 7 8, L 3 4"},
      {"unknown kind", "M 1 2, L 3 4"},
      {"short tail", "M 1 2, L 3 4"},
      {"curve cut", "M 1 2, L 3 4"},
      {"curve of other kinds", "M 1 2, L 3 4"},
  };
  for (const auto& c : cases) EXPECT_EQ(elementsOf(*path(c.key)), c.elements) << c.key;
}

TEST_F(PathArchive, SettingsUnderAnyWritersNames) {
  const struct {
    const char* key;
    LineCap cap;
    LineJoin join;
    WindingRule winding;
    std::vector<CGFloat> dash;
    CGFloat phase;
  } cases[] = {
      {"square", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {}, 0},
      {"everything", LineCap::round, LineJoin::bevel, WindingRule::evenOdd, {6, 3.5}, 1.25},
      {"defaults written", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {}, 0},
      {"other names", LineCap::square, LineJoin::round, WindingRule::nonZero, {}, 0},
      {"any names", LineCap::round, LineJoin::bevel, WindingRule::evenOdd, {4, 2.5}, 0},
      {"known names first", LineCap::round, LineJoin::miter, WindingRule::nonZero, {7, 8}, 0},
      {"dash in an array", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {3, 1.5, 1}, 2},
      {"dash data object", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {2, 1}, 0},
      {"dash cut", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {2, 1}, 0},
      {"phase alone", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {}, 0},
      {"styles out of range", LineCap::butt, LineJoin::miter, WindingRule::nonZero, {}, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.key);
    const auto p = path(c.key);
    EXPECT_FALSE(p->isEmpty());
    EXPECT_EQ(p->lineCapStyle(), c.cap);
    EXPECT_EQ(p->lineJoinStyle(), c.join);
    EXPECT_EQ(p->windingRule(), c.winding);
    EXPECT_EQ(dashOf(*p), c.dash);
    EXPECT_EQ(p->lineDashPhase(), c.phase);
  }
  EXPECT_EQ(path("everything")->lineWidth(), 2.5);
  EXPECT_EQ(path("everything")->miterLimit(), 4);
  EXPECT_EQ(path("everything")->flatness(), 0.25);
  EXPECT_EQ(path("defaults written")->flatness(), 0.6);
}

TEST_F(PathArchive, WritesWhatItReads) {
  for (const char* key : {"plain", "square", "bare close", "everything", "any names"}) {
    const auto before = path(key);
    const auto after = throughArchive(before);
    ASSERT_NE(after, nullptr) << key;
    EXPECT_EQ(elementsOf(*after), elementsOf(*before)) << key;
    EXPECT_EQ(dashOf(*after), dashOf(*before)) << key;
    EXPECT_EQ(after->lineCapStyle(), before->lineCapStyle()) << key;
    EXPECT_EQ(after->windingRule(), before->windingRule()) << key;
  }
  // The independent reader's listing: only what differs from the defaults, and floats in the dash.
  const auto everything = NSKeyedArchiver::archivedDataWithRootObject(path("everything"));
  const std::string listing = describeArchive(everything->bytes());
  for (const char* part : {"NSCapStyle", "NSJoinStyle", "NSWindingRule", "NSDashPatterns"}) {
    EXPECT_NE(listing.find(part), std::string::npos) << part << " in " << listing;
  }
  const auto plain = NSKeyedArchiver::archivedDataWithRootObject(path("plain"));
  EXPECT_EQ(describeArchive(plain->bytes()).find("NSLineWidth"), std::string::npos);
}

TEST_F(PathArchive, Shadows) {
  const auto shadow = [&](const char* key) {
    auto found = coder_.decodeObjectOfClass<NSShadow>(key);
    return found != nullptr ? found : std::make_shared<NSShadow>();
  };
  EXPECT_EQ(shadow("shadow")->shadowOffset(), (NSSize{3, -4}));
  EXPECT_EQ(shadow("shadow")->shadowBlurRadius(), 5);
  EXPECT_EQ(shadow("shadow")->shadowColor()->greenComponent(), 1);
  EXPECT_EQ(shadow("shadow alone")->shadowOffset(), NSZeroSize);
  EXPECT_NEAR(shadow("shadow alone")->shadowColor()->alphaComponent(), 1.0 / 3, 1e-12);
  EXPECT_EQ(shadow("shadow by size")->shadowOffset(), (NSSize{6, -7}));
  EXPECT_EQ(shadow("shadow of nonsense")->shadowOffset(), NSZeroSize);
  EXPECT_EQ(shadow("shadow of nonsense")->shadowBlurRadius(), 0);
}

TEST_F(PathArchive, TransformsByTheLengthOfTheirRecord) {
  const struct {
    const char* key;
    CGAffineTransform t;
  } cases[] = {{"transform", {1, 2, 3, 4, 5, 6}},
               {"diagonal", {2, 0, 0, 3, 5, 6}},
               {"translation", {1, 0, 0, 1, 7, 8}},
               {"scale", {7, 0, 0, 8, 0, 0}},
               {"identity", {}},
               {"transform cut", {}}};
  for (const auto& c : cases) {
    const auto transform = coder_.decodeObjectOfClass<NSAffineTransform>(c.key);
    ASSERT_NE(transform, nullptr) << c.key;
    EXPECT_EQ(transform->transformStruct(), c.t) << c.key;
    EXPECT_EQ(throughArchive(transform)->transformStruct(), c.t) << c.key;
  }
}

TEST_F(GradientArchive, TheSameGradientInEveryForm) {
  const Stops expected{{kRed, 0.25}, {kBlue, 0.75}};
  int count = 0;
  for (const std::string& key : gradients_.decodableKeys()) {
    if (!key.starts_with("same ")) continue;
    EXPECT_EQ(stops(key.c_str()), expected) << key;
    ++count;
  }
  EXPECT_EQ(count, 31);
}

TEST_F(GradientArchive, WhatIsLeftOutIsEvenlySpaced) {
  EXPECT_EQ(stops("evenly"), (Stops{{kRed, 0}, {kBlue, 0.5}, {kGreen, 1}}));
  const Stops ends{{kRed, 0}, {kBlue, 1}};
  for (const char* key :
       {"components only", "locations too many", "outside", "colors and others"}) {
    EXPECT_EQ(stops(key), ends) << key;
  }
  EXPECT_EQ(stops("one"), (Stops{{kGreen, 0.5}}));
  EXPECT_EQ(stops("nothing"), Stops());
  EXPECT_EQ(stops("no colors"), Stops());
}

TEST_F(GradientArchive, WritesTheDocumentedNames) {
  const auto gradient = gradients_.decodeObjectOfClass<NSGradient>("same any names");
  ASSERT_NE(gradient, nullptr);
  EXPECT_EQ(stopsOf(*throughArchive(gradient)), stops("same documented"));
  const auto archive = NSKeyedArchiver::archivedDataWithRootObject(gradient);
  const std::string listing = describeArchive(archive->bytes());
  for (const char* key : {"NSColors", "NSLocations", "NSColorSpace"}) {
    EXPECT_NE(listing.find(key), std::string::npos) << key << " in " << listing;
  }
}
