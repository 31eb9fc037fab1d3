#include "draw/text/CurvedText.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "draw/core/ZTBezierPathExtension.h"
#include "platform/foundation/Limits.h"
#include "platform/graphics/context/CGContext.h"
#include "platform/text/TextCharacters.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/host/NSAttributedString.h"
#include "platform/text/layout/TextRanges.h"

namespace {

/// Text is set closer down to this part of its width.
constexpr double kClosest = 0.9;
/// Units that tell the language of a text.
constexpr size_t kSurroundings = 4096;
/// Lengths of paths are single precision.
constexpr double kLengthTolerance = 1e-3;

/// Direction of travel as an angle in radians, counter-clockwise from the right.
double angleOf(NSPoint direction) {
  constexpr double kPi = std::numbers::pi;
  if (direction.x == 0) return direction.y < 0 ? -kPi / 2 : direction.y > 0 ? kPi / 2 : 0;
  const double angle = std::atan(direction.y / direction.x);
  return direction.x < 0 ? angle + kPi : angle;
}

}  // namespace

struct CurvedText::Kind {
  TextLayout layout;
  NSRect drawn;  ///< all that it may touch

  const NSSize& size() const { return layout.used.size; }
};

struct CurvedText::Character {
  const Kind* kind = nullptr;
  double middle = 0;  ///< on the path
  /// The character's space (y down from its top left corner) to that of the path.
  CGAffineTransform toPath;

  const NSSize& size() const { return kind->size(); }
};

CurvedText::~CurvedText() = default;

CurvedText::CurvedText(const NSAttributedString& text, const NSBezierPath& path,
                       NSTextAlignment alignment) {
  PathMeasure line(path);
  const double length = static_cast<double>(line.length());
  if (!(length > 0) || !std::isfinite(length)) return;
  measure(text, length, alignment);
  fit(length, alignment);
  place(line);
}

/// Null when there are too many kinds.
const CurvedText::Kind* CurvedText::kindOf(const NSAttributedString& text, const NSRange& range) {
  const std::u16string_view units(text.units());
  const KindKey key{units.substr(range.location, range.length),
                    text.attributesAtIndex(range.location).get()};
  const auto known = kinds_.find(key);
  if (known != kinds_.end()) return &known->second;
  if (kinds_.size() == kMaxKinds) return nullptr;
  Kind kind{
      text.attributedSubstringFromRange(range)->unlimitedLayout(units.substr(0, kSurroundings)),
      {}};
  kind.drawn = drawnBounds(kind.layout);
  return &kinds_.emplace(key, std::move(kind)).first->second;
}

void CurvedText::measure(const NSAttributedString& text, double length, NSTextAlignment alignment) {
  const bool fromStart =
      alignment != NSTextAlignment::right && alignment != NSTextAlignment::center;
  const double enough = fromStart ? length / kClosest + kLengthTolerance : HUGE_VAL;
  const auto units = std::u16string_view(text.units()).substr(0, limits::kMaxLaidOutUnits);
  double width = 0;
  for (const NSRange& range : composedCharacterRanges(units)) {
    if (width > enough) break;
    if (endsParagraph(units[range.location])) continue;
    const Kind* kind = kindOf(text, range);
    if (kind == nullptr) break;
    width += kind->size().width;
    characters_.push_back({kind, 0, {}});
  }
}

void CurvedText::fit(double length, NSTextAlignment alignment) {
  double width = 0;
  for (const Character& c : characters_) width += c.size().width;
  double spacing = 1;
  if (width > length && width * kClosest <= length) spacing = length / width;
  if (alignment == NSTextAlignment::center && width * spacing > length + kLengthTolerance) {
    // What goes on either side is as wide as what has gone on the other.
    auto first = characters_.begin(), last = characters_.end();
    double left = 0, right = 0;
    while (first != last && width > length) {
      const double gone = left <= right ? (first++)->size().width : (--last)->size().width;
      (left <= right ? left : right) += gone;
      width -= gone;
    }
    characters_.erase(last, characters_.end());
    characters_.erase(characters_.begin(), first);
  }
  start_ = 0;
  if (alignment == NSTextAlignment::right) start_ = length - width * spacing;
  if (alignment == NSTextAlignment::center) start_ = (length - width * spacing) / 2;
  double offset = start_;
  for (Character& c : characters_) {
    offset += c.size().width * spacing;
    c.middle = offset - c.size().width * spacing / 2;
  }
  std::erase_if(characters_, [&](const Character& c) {
    return c.middle < -kLengthTolerance || c.middle > length + kLengthTolerance;
  });
  if (characters_.empty()) return;
  start_ = std::max(0.0, start_);
  end_ = std::min(length, offset);
}

void CurvedText::place(PathMeasure& path) {
  for (Character& c : characters_) {
    const PathPosition at = path.positionAt(c.middle);
    CGAffineTransform t =
        CGAffineTransformMakeTranslation(-c.size().width / 2, -c.size().height / 2);
    t = CGAffineTransformConcat(t, {1, 0, 0, -1, 0, 0});
    t = CGAffineTransformConcat(t, CGAffineTransformMakeRotation(angleOf(at.direction)));
    c.toPath = CGAffineTransformConcat(t, CGAffineTransformMakeTranslation(at.point.x, at.point.y));
    height_ = std::max(height_, c.size().height);
  }
}

NSRect CurvedText::drawnRect() const {
  NSRect all = NSZeroRect;
  for (const Character& c : characters_) {
    all = NSUnionRect(all, CGRectApplyAffineTransform(c.kind->drawn, c.toPath));
  }
  return all;
}

void CurvedText::draw(CGContext& context) const {
  for (const Character& c : characters_) {
    const CGContextStateScope state(context);
    context.concatenate(c.toPath);
    drawTextBackground(c.kind->layout, {0, c.kind->layout.end}, NSZeroPoint, context);
    drawTextGlyphs(c.kind->layout, {0, c.kind->layout.end}, NSZeroPoint, context);
  }
}
