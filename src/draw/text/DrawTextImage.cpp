// From the text of a box to its bitmap, and to the size of the box.
#include <algorithm>
#include <cmath>

#include "draw/core/PaintManagerContext.h"
#include "draw/text/DrawText.h"
#include "draw/text/TextOutlineCache.h"
#include "draw/text/TextSmallKits.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/codecs/PictureCache.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/OffscreenCanvas.h"
#include "platform/text/TextCharacters.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/fonts/NSFontManager.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/layout/TextRanges.h"

namespace {

/// Text that follows its box was set without a limit to its width; a stand-in's letters may be
/// wider than the box by up to this part of it.
constexpr CGFloat kWidestStandIn = 0.5;
/// Longer texts are not measured for that: no label is as long.
constexpr size_t kLongestLabel = 10000;
/// Boxes of more pixels (4 MB) are not drawn to know where their text is.
constexpr CGFloat kMaxDrawnForPlace = 1e6;
/// Text images are kept up to this many pixels (64 MB); larger boxes are drawn in part each time.
constexpr CGFloat kMaxKeptPixels = 16e6;

NSRange wholeOf(const NSAttributedString& text) {
  return {0, text.length()};
}

bool hasStroke(const NSAttributedString& text) {
  bool found = false;
  text.enumerateAttribute(NSStrokeWidthAttributeName, wholeOf(text),
                          [&](const std::shared_ptr<NSObject>& value, const NSRange&, bool* stop) {
                            const auto* width = dynamic_cast<const NSNumber*>(value.get());
                            *stop = found = width != nullptr && width->integerValue() != 0;
                          });
  return found;
}

std::shared_ptr<NSTextStorage> colored(const NSAttributedString& text,
                                       const std::shared_ptr<NSColor>& color) {
  auto copy = std::make_shared<NSTextStorage>(text);
  copy->addAttribute(NSForegroundColorAttributeName, color, wholeOf(text));
  return copy;
}

}  // namespace

std::shared_ptr<NSTextStorage> DrawText::textForImage(TextImageOption option) const {
  if (option == TextImageOption::outline) {
    if (!hasStroke(*textStorage_)) return nullptr;
    return colored(*textStorage_, NSColor::clearColor());
  }
  return _useGradualText ? colored(*textStorage_, NSColor::blackColor()) : textStorage_;
}

/// Where a text is set: a container, from the left edge of the box.
struct DrawText::TextArea {
  CGFloat left = 0;
  NSSize size;
};

/// The side of the box that the text stays at when it needs more room: left, right or centre.
NSTextAlignment DrawText::sideOfGrowth(TextDirection direction) const {
  const NSTextAlignment alignment = textAlignment();
  const bool isNatural =
      alignment == NSTextAlignment::natural || alignment == NSTextAlignment::justified;
  if (!isNatural) return alignment;
  return direction == TextDirection::rightToLeft ? NSTextAlignment::right : NSTextAlignment::left;
}

DrawText::TextArea DrawText::areaFor(NSTextStorage& text, const NSSize& box) const {
  TextArea area{0, box};
  if (!isAutoResize() || text.length() > kLongestLabel) return area;
  TextLayoutScope unlimited(text, {NSTextContainer::kUnlimited, NSTextContainer::kUnlimited});
  const TextLayout& layout = unlimited.manager().layout();
  const NSSize natural = layout.used.size;
  const CGFloat extra = std::ceil(natural.width) - box.width;
  if (extra > 0 && extra <= kWidestStandIn * box.width) {
    area.size.width += extra;
    const NSTextAlignment side = sideOfGrowth(layout.direction);
    if (side == NSTextAlignment::right) area.left = -extra;
    if (side == NSTextAlignment::center) area.left = -std::floor(extra / 2);
  }
  const CGFloat height = std::ceil(natural.height);
  if (height <= (1 + kWidestStandIn) * box.height) {
    area.size.height = std::max(box.height, height);
  }
  return area;
}

/// Of an area in a box, from the box's lower left corner: with the ink of letters that reach beyond
/// the first and the last line. A text that goes on below its box is cut there.
NSRect DrawText::imageRectOf(const TextLayout& layout, const TextArea& area, const NSSize& box,
                             size_t length) {
  const InkOverflow ink = inkBeyondLines(layout);
  NSRect rect{{area.left, box.height - area.size.height}, area.size};
  rect.size.height += std::ceil(ink.above);
  const CGFloat bottom = layout.lines.empty() ? 0 : layout.lines.back().bottom();
  const CGFloat below = std::ceil(bottom + ink.below - area.size.height);
  if (layout.end == length && bottom <= area.size.height && below > 0) {
    rect.origin.y -= below;
    rect.size.height += below;
  }
  return rect;
}

std::optional<ConvertTextToImageResult> DrawText::convertTextToImageWithOption(
    TextImageOption option, const WantedImage& wanted) const {
  if (textStorage_->length() == 0 || bezierPath_ == nullptr || bezierPath_->isEmpty()) return {};
  const NSRect bounds = pathBounds();
  const NSSize box{std::round(bounds.size.width), std::round(bounds.size.height)};
  if (!(box.width >= 1 && box.height >= 1)) return {};
  const auto text = textForImage(option);
  if (text == nullptr) return {};

  const TextArea area = areaFor(*text, box);
  TextLayoutScope layout(*text, {area.size.width, 2 * area.size.height});
  const NSRange glyphs = layout.glyphRange();
  if (glyphs.length == 0) return {};
  ConvertTextToImageResult result;
  result.textDrawRect = imageRectOf(layout.manager().layout(), area, box, text->length());
  const OffscreenCanvas canvas(result.textDrawRect, wanted.grid, wanted.part);
  canvas.context().setShouldAntialias(bSmooth_);
  canvas.context().concatenate({1, 0, 0, -1, area.left, box.height});
  layout.manager().drawBackgroundForGlyphRange(glyphs, NSZeroPoint);
  layout.manager().drawGlyphsForGlyphRange(glyphs, NSZeroPoint);
  result.textImageRep = canvas.bitmap();
  result.imageRect = canvas.rect();
  return result;
}

OffscreenGrid DrawText::imageGrid() const {
  return offscreenGridAt(pathBounds().origin);
}

// ---- The image as a cache.

bool DrawText::imageIsCurrent() const {
  return textImageRep() != nullptr && imageKey_.smooth == bSmooth_ &&
         imageKey_.bounds.size == pathBounds().size && imageKey_.grid == imageGrid();
}

CGFloat DrawText::imagePixels() const {
  const NSSize size = pathBounds().size;
  const CGFloat scale = imageGrid().scale;
  return size.width * size.height * scale * scale;
}

bool DrawText::isTooLargeToKeep() const {
  return imagePixels() > kMaxKeptPixels;
}

/// Where the text image belongs, without making a large one.
void DrawText::placeTextImage() const {
  if (imageIsCurrent()) return;
  if (imagePixels() <= kMaxDrawnForPlace) {
    makeSureHasValidTextImage();
    return;
  }
  dropImages();
  storeTextImage(convertTextToImageWithOption(TextImageOption::text, {imageGrid(), NSZeroRect})
                     .value_or(ConvertTextToImageResult{}));
}

void DrawText::invalidTextImage() const {
  dropImages();
}

void DrawText::dropImages() const {
  imgRepText_ = nullptr;
  cachedImage_.reset();
  TextOutlineCache::shared().removeObjectForKey(hash());
}

std::shared_ptr<NSBitmapImageRep> DrawText::validTextImage() const {
  if (!imageIsCurrent()) convertTextToImage();
  auto image = textImageRep();
  leaveToCache();
  return image;
}

/// So that the images of all text boxes are within the document's budget.
void DrawText::leaveToCache() const {
  PictureCache* const cache = PictureCache::current();
  if (cache == nullptr || imgRepText_ == nullptr) return;
  PictureKey key;
  key.kind = PictureKey::Kind::text;
  key.numbers = {static_cast<int64_t>(reinterpret_cast<uintptr_t>(this)), 0, 0};
  cachedImage_ = imgRepText_;
  cache->add(key, imgRepText_, pixelBytes(*imgRepText_), PictureCache::Keep::always);
  imgRepText_ = nullptr;
}

void DrawText::storeTextImage(const ConvertTextToImageResult& result) const {
  rectText_ = result.textDrawRect;
  imageRect_ = result.imageRect;
  imgRepText_ = result.textImageRep;
}

bool DrawText::convertTextToImage() const {
  dropImages();
  imageKey_ = {pathBounds(), bSmooth_, imageGrid()};
  const WantedImage whole{imageKey_.grid, {}};
  storeTextImage(convertTextToImageWithOption(TextImageOption::text, whole)
                     .value_or(ConvertTextToImageResult{}));
  return imgRepText_ != nullptr;
}

std::shared_ptr<NSBitmapImageRep> DrawText::textOutlineImage(const WantedImage& wanted) const {
  TextOutlineCache& cache = TextOutlineCache::shared();
  if (auto kept = cache.objectForKey(hash())) return kept;
  const auto made = convertTextToImageWithOption(TextImageOption::outline, wanted);
  if (!made || made->textImageRep == nullptr) return nullptr;
  if (!wanted.part) cache.setObject(made->textImageRep, hash());
  return made->textImageRep;
}

// ---- The size of the box.

NSSize DrawText::autoMinSize() {
  constexpr CGFloat kSide = 5;
  return {kSide * kMainScreenBackingScale, kSide * kMainScreenBackingScale};
}

NSSize DrawText::drawSizeForAttributedString(const NSAttributedString& text, CGFloat withWidth) {
  NSTextStorage copy(text);
  TextLayoutScope layout(copy, {withWidth, NSTextContainer::kUnlimited});
  if (layout.glyphRange().length == 0) return NSZeroSize;
  return layout.manager().usedRectForTextContainer(layout.container()).size;
}

namespace {

bool isBlank(std::u16string_view units) {
  return std::all_of(units.begin(), units.end(),
                     [](char16_t c) { return hangs(c) || endsParagraph(c) || c == 0xa0; });
}

bool hasSwashes(const NSFont& font) {
  std::string family = font.familyName();
  std::transform(family.begin(), family.end(), family.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const char* start : {"zapfino", "snell roundhand", "signpainter", "trattatello"}) {
    if (family.starts_with(start)) return true;
  }
  return false;
}

}  // namespace

/// How far the last letter reaches beyond its advance: swashes, and the slant of italics.
CGFloat DrawText::overhang() const {
  const NSAttributedString& text = *textStorage_;
  const std::vector<NSRange> characters = composedCharacterRanges(text.units());
  const auto last = std::find_if(characters.rbegin(), characters.rend(), [&](const NSRange& range) {
    return !isBlank(std::u16string_view(text.units()).substr(range.location, range.length));
  });
  if (last == characters.rend()) return 0;
  const auto set =
      std::dynamic_pointer_cast<NSFont>(text.attribute(NSFontAttributeName, last->location));
  const NSFont& font = set != nullptr ? *set : *NSFont::defaultFont();
  const NSSize alone = text.attributedSubstringFromRange(*last)->size();
  if (hasSwashes(font)) return std::ceil(0.7 * alone.height);
  const auto style = std::dynamic_pointer_cast<NSParagraphStyle>(
      text.attribute(NSParagraphStyleAttributeName, last->location));
  const bool right = style != nullptr && style->alignment() == NSTextAlignment::right;
  const bool italic =
      any(NSFontManager::sharedFontManager().traitsOfFont(font) & NSFontTraitMask::italic);
  return italic && !right ? std::ceil(alone.width) : 0;
}

void DrawText::autoResizeBounds() {
  if (!isAutoResize()) return;
  NSSize size = autoMinSize();
  if (textStorage_->length() > 0) {
    const NSSize text = drawSizeForAttributedString(*textStorage_, NSTextContainer::kUnlimited);
    size = {std::max(size.width, std::ceil(text.width)),
            std::max(size.height, std::ceil(text.height))};
    if (experimentalFeatures()) size.width += overhang();
  }
  const NSRect old = pathBounds();
  const CGFloat y = std::round(NSMinY(old) - (size.height - NSHeight(old)));
  setBezierPathWithBounds({{NSMinX(old), y}, size});
}

void DrawText::respondToBoundsChangeFromOldBounds(const NSRect& oldBounds) {
  const NSSize size = pathBounds().size;
  if (textImageRep() == nullptr || isAutoResize() || size == oldBounds.size) return;
  if (!(size.width <= _maxTextSize.width && size.height <= _maxTextSize.height)) {
    return invalidTextImage();
  }
  const CGFloat wider = size.width - oldBounds.size.width;
  const CGFloat dx = textAlignment() == NSTextAlignment::right    ? wider
                     : textAlignment() == NSTextAlignment::center ? wider / 2
                                                                  : 0;
  const CGFloat dy = size.height - oldBounds.size.height;
  rectText_ = NSOffsetRect(rectText_, dx, dy);
  imageRect_ = NSOffsetRect(imageRect_, dx, dy);
  imageKey_.bounds = pathBounds();
}
