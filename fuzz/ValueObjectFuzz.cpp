// Paths, gradients, shadows, transforms and colours: whatever an archive makes of them, or numbers
// from the input. They are asked, drawn with, written and read again.
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <span>
#include <vector>

#include "draw/core/StrokeOutline.h"
#include "draw/core/ZTArrowPathInfo.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/graphics/gradient/NSGradient.h"
#include "platform/graphics/path/NSAffineTransform.h"
#include "platform/graphics/path/NSBezierPath.h"

namespace {

constexpr int kSide = 32;

void check(bool holds) {
  if (!holds) std::abort();
}

/// Numbers from the input, for as long as it lasts; then 0.
class Input {
 public:
  explicit Input(std::span<const uint8_t> bytes) : bytes_(bytes) {}
  bool ended() const { return at_ >= bytes_.size(); }
  uint8_t byte() { return ended() ? 0 : bytes_[at_++]; }
  /// Mostly small numbers around the canvas, now and then any bits at all.
  double number() {
    const uint8_t kind = byte();
    if (kind < 0xf0) return static_cast<int8_t>(kind) + byte() / 256.0;
    uint64_t bits = 0;
    for (int i = 0; i < 64; i += 8) bits |= uint64_t{byte()} << i;
    return std::bit_cast<double>(bits);
  }
  NSPoint point() {
    const double x = number();
    return {x, number()};
  }

 private:
  std::span<const uint8_t> bytes_;
  size_t at_ = 0;
};

/// One of each kind.
struct Values {
  std::shared_ptr<NSBezierPath> path = std::make_shared<NSBezierPath>();
  std::shared_ptr<NSColor> color = NSColor::blackColor();
  std::shared_ptr<NSGradient> gradient;
  std::shared_ptr<NSShadow> shadow = std::make_shared<NSShadow>();
  std::shared_ptr<NSAffineTransform> transform = std::make_shared<NSAffineTransform>();

  void take(const std::shared_ptr<NSObject>& object) {
    const auto keep = [&object](auto& value) {
      if (auto typed = std::dynamic_pointer_cast<std::decay_t<decltype(*value)>>(object)) {
        value = typed;
      }
    };
    keep(path);
    keep(color);
    keep(gradient);
    keep(shadow);
    keep(transform);
  }
};

std::shared_ptr<NSColor> colorFrom(Input& in) {
  const double red = in.number();
  const double green = in.number();
  const double blue = in.number();
  return NSColor::colorWithCalibratedRed(red, green, blue, in.number());
}

void readElements(Input& in, NSBezierPath& path) {
  for (int count = in.byte(); count > 0; --count) {
    switch (in.byte() % 5) {
      case 0:
        path.moveToPoint(in.point());
        break;
      case 1: {
        const NSPoint end = in.point();
        const NSPoint control = in.point();
        path.curveToPoint(end, control, in.point());
        break;
      }
      case 2:
        path.closePath();
        break;
      default:
        path.lineToPoint(in.point());
    }
  }
}

Values valuesFrom(Input in) {
  Values values;
  NSBezierPath& path = *values.path;
  path.setLineWidth(in.number());
  path.setMiterLimit(in.number());
  const uint8_t style = in.byte();
  path.setLineCapStyle(static_cast<LineCap>(style % 3));
  path.setLineJoinStyle(static_cast<LineJoin>(style / 3 % 3));
  path.setWindingRule(static_cast<WindingRule>(style / 9 % 2));
  std::vector<CGFloat> dash(in.byte() % 5);
  for (CGFloat& length : dash) length = in.number();
  path.setLineDash(dash, in.number());
  values.color = colorFrom(in);
  values.shadow->setShadowOffset({in.number(), in.number()});
  values.shadow->setShadowBlurRadius(in.number());
  std::vector<NSGradient::Stop> stops(in.byte() % 6);
  for (NSGradient::Stop& stop : stops) stop = {colorFrom(in), in.number() / 64};
  values.gradient = NSGradient::initWithStops(std::move(stops));
  CGAffineTransform t;
  for (CGFloat* entry : {&t.a, &t.b, &t.c, &t.d, &t.tx, &t.ty}) *entry += in.number() / 16;
  values.transform = std::make_shared<NSAffineTransform>(t);
  readElements(in, path);
  return values;
}

Values valuesIn(std::span<const uint8_t> bytes) {
  Values values;
  try {
    NSKeyedUnarchiver coder(NSData::dataWithBytes(bytes));
    for (const std::string& key : coder.decodableKeys()) values.take(coder.decodeObjectForKey(key));
  } catch (const NSException&) {
  }
  return values;
}

void ask(const NSBezierPath& path, const NSAffineTransform& transform) {
  // Tight bounds lie within those of all points; only finite ones compare.
  const NSRect tight = path.bounds();
  const NSRect loose = path.controlPointBounds();
  const double slack = 1e-9 * (std::fabs(NSMaxX(loose)) + std::fabs(NSMinX(loose)) + 1);
  if (std::isfinite(slack) && !NSIsEmptyRect(tight)) {
    check(NSMinX(tight) >= NSMinX(loose) - slack && NSMaxX(tight) <= NSMaxX(loose) + slack);
  }
  path.containsPoint({1, 1});
  path.bezierPathByReversingPath()->bounds();
  strokeOutlinePath(path)->bounds();
  for (const int64_t style : {1, 2}) getArrowInfoWithStyle(path, style);
  const auto moved = path.copy();
  moved->transformUsingAffineTransform(transform);
  check(moved->elementCount() == path.elementCount());
}

void draw(const Values& values) {
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  const ZTFocusScope focus(bitmap);
  CGContext& context = *NSGraphicsContext::currentContext()->graphicsPort();
  values.color->set();
  values.path->fill();
  values.path->stroke();
  NSGraphicsContext::currentContext()->setShouldAntialias(false);
  values.path->stroke();
  if (values.gradient != nullptr) {
    values.gradient->drawInBezierPath(*values.path, values.path->miterLimit());
    values.gradient->drawInBezierPath(*values.path, {values.path->lineWidth(), 0.5});
  }
  const NSGraphicsStateScope state;
  context.concatenate(values.transform->transformStruct());
  values.shadow->set();
  {
    CGTransparencyLayerScope layer(context, values.path->bounds());
    values.path->stroke();
    layer.end();
  }
  NSGraphicsContext::currentContext()->setShouldAntialias(true);
  values.path->addClip();
  values.path->fill();
  if (values.gradient != nullptr) values.gradient->drawInRect({{-9, -9}, {50, 50}}, 30);
  for (int64_t i = 0; i < kSide * kSide; ++i) {
    const uint8_t* const p = bitmap->bitmapData() + 4 * i;
    check(p[0] <= p[3] && p[1] <= p[3] && p[2] <= p[3]);
  }
}

/// The bitmap after `paint` has drawn with black.
template <class Paint>
std::shared_ptr<NSBitmapImageRep> painted(Paint paint) {
  auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  const ZTFocusScope focus(bitmap);
  NSColor::blackColor()->set();
  paint();
  return bitmap;
}

bool sameAlpha(const NSBitmapImageRep& a, const NSBitmapImageRep& b, int tolerance) {
  for (int64_t i = 3; i < 4 * kSide * kSide; i += 4) {
    if (std::abs(a.bitmapData()[i] - b.bitmapData()[i]) > tolerance) return false;
  }
  return true;
}

/// Clipping to a path is filling it, whatever it is made of and however the clip comes about.
void clip(const NSBezierPath& path) {
  constexpr NSRect kAll{{-1, -1}, {kSide + 2, kSide + 2}};
  constexpr NSRect kPart{{3.25, -1}, {11, 20.5}};
  const auto filled = painted([&] { path.fill(); });
  check(sameAlpha(*filled, *painted([&] {
    path.addClip();
    NSRectFill(kAll);
  }),
                  0));
  const auto partFirst = painted([&] {
    NSRectClip(kPart);
    path.addClip();
    NSRectFill(kAll);
  });
  check(sameAlpha(*partFirst, *painted([&] {
    path.addClip();
    NSRectClip(kPart);
    NSRectFill(kAll);
  }),
                  1));
  check(sameAlpha(*partFirst, *painted([&] {
    NSRectClip(kPart);
    path.fill();
  }),
                  1));
}

template <class Object>
std::shared_ptr<Object> throughArchive(const std::shared_ptr<Object>& object) {
  if (object == nullptr) return nullptr;
  auto again = std::dynamic_pointer_cast<Object>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(object)));
  check(again != nullptr);
  return again;
}

void rewrite(const Values& values) {
  const auto path = throughArchive(values.path);
  check(path->elementCount() == values.path->elementCount());
  check(path->lineDash().size() == values.path->lineDash().size());
  throughArchive(values.color);
  throughArchive(values.shadow);
  throughArchive(values.transform);
  const auto gradient = throughArchive(values.gradient);
  if (gradient != nullptr) {
    check(gradient->numberOfColorStops() == values.gradient->numberOfColorStops());
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  registerGraphicsClasses();
  const std::span<const uint8_t> bytes(data, size);
  const bool archive = size > 8 && std::memcmp(data, "bplist", 6) == 0;
  const Values values = archive ? valuesIn(bytes) : valuesFrom(Input(bytes));
  ask(*values.path, *values.transform);
  draw(values);
  clip(*values.path);
  rewrite(values);
  return 0;
}
