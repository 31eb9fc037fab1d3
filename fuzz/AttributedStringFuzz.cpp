// Sets any attributed string: one decoded from an archive, or, when the bytes are no archive, one
// built from them, with sizes, indents and tabs that no editor would write. Checks that the lines
// follow each other and that nothing is placed at a position that is not a number; what was decoded
// must survive being written and read again.
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>

#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSNumber.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/color/NSColor.h"
#include "platform/graphics/context/CGContext.h"
#include "platform/graphics/context/NSShadow.h"
#include "platform/text/drawing/TextDecorations.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/fonts/FontRegistry.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/host/TextAttributes.h"
#include "platform/text/host/TextClasses.h"
#include "platform/text/layout/TextLayout.h"
#include "platform/text/layout/TextRanges.h"

namespace {

/// Longest text made by repeating a short one.
constexpr size_t kMaxRepeatedUnits = 3000;

class Bytes {
 public:
  Bytes(const uint8_t* data, size_t size) : data_(data), size_(size) {}
  bool empty() const { return size_ == 0; }
  uint8_t next() {
    if (size_ == 0) return 0;
    --size_;
    return *data_++;
  }
  char16_t unit() {
    const unsigned low = next();
    return static_cast<char16_t>(low | static_cast<unsigned>(next()) << 8);
  }
  /// Mostly everyday lengths, and some that are not.
  double length() {
    constexpr double kLengths[] = {0,     -5,   std::numeric_limits<double>::quiet_NaN(),
                                   1e9,   0.1,  12,
                                   1e300, -1e9, std::numeric_limits<double>::infinity()};
    const uint8_t choice = next();
    return choice < std::size(kLengths) ? kLengths[choice] : choice / 4.0;
  }

 private:
  const uint8_t* data_;
  size_t size_;
};

std::shared_ptr<NSParagraphStyle> paragraphStyle(Bytes& bytes) {
  auto style = std::make_shared<NSMutableParagraphStyle>();
  style->setAlignment(static_cast<NSTextAlignment>(bytes.next() % 5));
  style->setLineBreakMode(static_cast<NSLineBreakMode>(bytes.next() % 6));
  style->setBaseWritingDirection(static_cast<NSWritingDirection>(bytes.next() % 3 - 1));
  style->setHeadIndent(bytes.length());
  style->setFirstLineHeadIndent(bytes.length());
  style->setTailIndent(bytes.length());
  style->setLineSpacing(bytes.length());
  style->setLineHeightMultiple(bytes.length());
  style->setMaximumLineHeight(bytes.length());
  style->setDefaultTabInterval(bytes.length());
  NSParagraphStyle::TabStops stops;
  for (int count = bytes.next() % 8; count > 0; --count) {
    const auto type = static_cast<NSTextTabType>(bytes.next() % 4);
    stops.push_back(std::make_shared<NSTextTab>(type, bytes.length()));
  }
  style->setTabStops(std::move(stops));
  return style;
}

std::shared_ptr<NSShadow> shadow(Bytes& bytes) {
  auto shadow = std::make_shared<NSShadow>();
  shadow->setShadowOffset({bytes.length(), bytes.length()});
  shadow->setShadowBlurRadius(bytes.length());
  return shadow;
}

NSAttributedString::Attributes attributes(Bytes& bytes) {
  constexpr const char* kFonts[] = {"Box-Regular", "BoxTall-Regular", "Helvetica-Bold", "x"};
  constexpr const char* kNumbers[] = {NSKernAttributeName,        NSLigatureAttributeName,
                                      NSSuperscriptAttributeName, NSBaselineOffsetAttributeName,
                                      NSObliquenessAttributeName, NSExpansionAttributeName,
                                      NSStrokeWidthAttributeName};
  auto result = std::make_shared<NSMutableDictionary>();
  const char* font = kFonts[bytes.next() % std::size(kFonts)];
  result->setObject(std::make_shared<NSFont>(font, bytes.length()), NSFontAttributeName);
  result->setObject(paragraphStyle(bytes), NSParagraphStyleAttributeName);
  for (const char* name : kNumbers) {
    if (bytes.next() % 4 == 0) {
      result->setObject(NSNumber::numberWithDouble(bytes.length()), name);
    }
  }
  result->setObject(NSNumber::numberWithInteger(bytes.unit()), NSUnderlineStyleAttributeName);
  if (bytes.next() % 4 == 0) result->setObject(shadow(bytes), NSShadowAttributeName);
  if (bytes.next() % 4 == 0) {
    result->setObject(NSColor::colorWithSRGBRed(1, 0.5, 0, bytes.next() / 255.0),
                      NSBackgroundColorAttributeName);
  }
  return result;
}

std::shared_ptr<NSAttributedString> builtText(Bytes bytes) {
  auto text = std::make_shared<NSTextStorage>();
  while (!bytes.empty()) {
    const auto style = attributes(bytes);
    std::u16string units;
    for (size_t count = bytes.next(); count > 0 && !bytes.empty(); --count) units += bytes.unit();
    const size_t repeats = bytes.next() % 4 == 0 ? bytes.unit() : 1;
    std::u16string repeated;
    for (size_t i = 0; i < repeats && text->length() + repeated.size() < kMaxRepeatedUnits; ++i) {
      repeated += units;
      if (units.empty()) break;
    }
    text->appendAttributedString(NSAttributedString(repeated, style));
  }
  return text;
}

std::shared_ptr<NSAttributedString> decodedText(const uint8_t* data, size_t size) {
  try {
    return std::dynamic_pointer_cast<NSAttributedString>(
        NSKeyedUnarchiver::unarchiveObjectWithData(NSData::dataWithBytes({data, size})));
  } catch (const NSException&) {
    return nullptr;
  }
}

void require(bool condition) {
  if (!condition) std::abort();
}

void checkLayout(const TextLayout& layout) {
  size_t end = 0;
  for (const PlacedLine& line : layout.lines) {
    require(line.start == end);
    end += line.length;
    require(std::isfinite(line.x) && std::isfinite(line.top) && std::isfinite(line.height));
    for (uint32_t r = line.firstRun; r < line.firstRun + line.runCount; ++r) {
      const PlacedRun& run = layout.runs.at(r);
      require(std::isfinite(run.x) && run.firstGlyph + run.glyphCount <= layout.glyphs.size());
    }
    for (const auto kind : {DecorationKind::underline, DecorationKind::strikethrough}) {
      for (const Decoration& decoration : lineDecorations(layout, line, kind)) {
        require(!decoration.rects.empty() && decoration.rects.size() < 100000);
      }
    }
  }
  require(end == layout.end && end <= layout.text->text.size());
}

/// Draws the layout upright and turned, and checks that pixels stay premultiplied.
void checkDrawing(const TextLayout& layout) {
  constexpr int64_t kSide = 48;
  const auto bitmap = NSBitmapImageRep::create(kSide, kSide);
  CGContext context(bitmap);
  context.concatenate({1, 0, 0, -1, 0, kSide});
  for (int turns = 0; turns < 2; ++turns) {
    drawTextBackground(layout, {0, layout.end}, {1.3, 2}, context);
    drawTextGlyphs(layout, {0, layout.end}, {1.3, 2}, context);
    context.concatenate(CGAffineTransformMakeRotation(0.5));
  }
  drawnBounds(layout);
  for (int64_t y = 0; y < kSide; ++y) {
    const uint8_t* row = bitmap->row(y);
    for (int64_t x = 0; x < kSide; ++x) {
      const uint8_t* p = row + 4 * x;
      require(p[0] <= p[3] && p[1] <= p[3] && p[2] <= p[3]);
    }
  }
}

void useTestFonts() {
  static const bool done = [] {
    registerTextClasses();
    registerGraphicsClasses();
    const std::string folder = PAINT_SOURCE_DIR "/tests/fixtures/fonts/";
    FontRegistry::useFontFiles({folder + "Box.ttf", folder + "BoxTall.ttf"});
    return true;
  }();
  static_cast<void>(done);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  useTestFonts();
  const bool archive = size >= 6 && std::memcmp(data, "bplist", 6) == 0;
  const auto text = archive ? decodedText(data, size) : builtText(Bytes(data, size));
  if (text == nullptr) return 0;
  const auto styled = makeStyledText(*text);
  const TextLayout layout = layoutText(styled, {{100, 2000}, 0});
  checkLayout(layout);
  checkDrawing(layout);
  checkLayout(layoutText(styled, {{1.7976931348623157e308, 1.7976931348623157e308}, 5}));
  composedCharacterRanges(text->units());
  const auto copy =
      std::dynamic_pointer_cast<NSAttributedString>(NSKeyedUnarchiver::unarchiveObjectWithData(
          NSKeyedArchiver::archivedDataWithRootObject(text)));
  require(copy != nullptr && copy->units() == text->units());
  return 0;
}
