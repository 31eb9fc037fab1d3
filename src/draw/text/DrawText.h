#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/context/OffscreenCanvas.h"
#include "platform/text/fonts/FontStyle.h"
#include "platform/text/layout/NSTextTab.h"

class NSAttributedString;
class NSFont;
class NSMutableParagraphStyle;
class NSParagraphStyle;
class NSTextStorage;
struct TextLayout;
struct ZTModifyTextAction;
enum class TextDirection : uint8_t;

/// What is made a bitmap of: the text, or only the outlines of its glyphs.
enum class TextImageOption : uint8_t { text = 1, outline = 2 };

/// The bitmap of a text that somebody wants.
struct WantedImage {
  OffscreenGrid grid;
  /// What of it anyone will look at, in the space of its textDrawRect; everything when not set.
  std::optional<NSRect> part;
};

/// A text made a bitmap. Rectangles and paths are in the space of the draw that made it: from the
/// origin of the path bounds for text boxes.
struct ConvertTextToImageResult {
  std::shared_ptr<NSBitmapImageRep> textImageRep;  ///< null when nothing has a place
  NSRect textDrawRect;                             ///< where the text belongs
  NSRect imageRect;  ///< where the bitmap belongs: all of it, or the part that was wanted
  // Of curved text only.
  double textsHeight = 0;
  double textsWidth = 0;
  std::shared_ptr<NSBezierPath> bezierBorderPath;
  std::shared_ptr<NSBezierPath> textDrawPath;
};

/// A text box: a rounded rectangle with a text inside. The text is made a bitmap when it is first
/// drawn, which is kept until text, size or smoothing change.
class DrawText : public DrawRoundRectangle {
 public:
  static const NSClass kClass;
  DrawText();
  ~DrawText() override;
  const NSClass& classInfo() const override { return kClass; }
  void init() override;
  std::string name() const override { return "Text"; }

  // ---- Text and look. Angles are degrees, centres relative to the bounds (-1 to 1).
  /// Never null.
  std::shared_ptr<const NSTextStorage> textStorage() const { return textStorage_; }
  virtual void setAttributedString(const NSAttributedString& text);
  bool useGradualText() const { return _useGradualText; }
  void setUseGradualText(bool on);
  const std::shared_ptr<NSGradient>& textGradient() const { return _textGradient; }
  void setTextGradient(std::shared_ptr<NSGradient> gradient) {
    _textGradient = std::move(gradient);
  }
  bool isRadialTextGradient() const { return _isRadialTextGradient; }
  void setIsRadialTextGradient(bool on) { _isRadialTextGradient = on; }
  float textGradientDegree() const { return _textGradientDegree; }
  void setTextGradientDegree(float degrees) { _textGradientDegree = degrees; }
  NSPoint textGradientCenter() const { return _textGradientCenter; }
  void setTextGradientCenter(NSPoint center) { _textGradientCenter = center; }

  /// The box follows the size of its text.
  virtual bool isAutoResize() const { return _autoResize; }
  /// On a change lays the text out again, and gives the box its size when switched on.
  virtual void setAutoResize(bool on);
  /// Gives the box the size of its text, at least autoMinSize; the upper left corner stays. Nothing
  /// unless autoResize is on.
  void autoResizeBounds();
  bool canBeResized() const override {
    return !isAutoResize() && DrawRoundRectangle::canBeResized();
  }
  bool shouldCenterTextsVertically() const;
  static CGFloat textContainerlineFragmentPadding() { return 0; }
  static NSSize autoMinSize();
  /// Size of the text set into a column of that width.
  static NSSize drawSizeForAttributedString(const NSAttributedString& text, CGFloat withWidth);

  /// Opacity of the text in old documents, 0 to 1; other values mean that it is not set.
  float legacyTextOpacity() const { return fTextOpacity_; }
  uint64_t opacity() const override;
  void setOpacity(uint64_t percent) override;
  bool shouldApplyOpacityToStokeAndFill() const override;
  /// Moves the legacy opacity to the draw where that looks the same.
  void normalizeOpacity();

  /// While the text is edited the editor draws it.
  void setIsEditingText(bool on) { bEdittingText_ = on; }
  /// While the draw is created with the mouse nothing is drawn.
  bool isNewCreated() const { return _isNewCreated; }
  void setIsNewCreated(bool on) { _isNewCreated = on; }
  NSSize maxTextSize() const { return _maxTextSize; }
  void setMaxTextSize(NSSize size) { _maxTextSize = size; }

  // ---- The text image.
  /// Null until the text is drawn and after every change that shows.
  std::shared_ptr<NSBitmapImageRep> textImageRep() const {
    return imgRepText_ != nullptr ? imgRepText_ : cachedImage_.lock();
  }
  /// Where the text image belongs, from the origin of the path bounds; zero without one.
  NSRect textDrawRect() const { return rectText_; }
  virtual void invalidTextImage() const;
  bool makeSureHasValidTextImage() const { return validTextImage() != nullptr; }
  /// Makes the text image; answers whether there is one.
  bool convertTextToImage() const;
  /// Nothing for an empty text or path, and for the outline of a text without stroke widths.
  std::optional<ConvertTextToImageResult> convertTextToImageWithOption(
      TextImageOption option) const {
    return convertTextToImageWithOption(option, WantedImage{});
  }
  virtual std::optional<ConvertTextToImageResult> convertTextToImageWithOption(
      TextImageOption option, const WantedImage& wanted) const;
  /// The image of the outlines, kept in the text outline cache; null when the text has none.
  std::shared_ptr<NSBitmapImageRep> textOutlineImage() const {
    return textOutlineImage(WantedImage{});
  }

  // ---- Style of the whole text. Queries answer each distinct value once, in order; setters change
  // every run. Null as a colour removes the attribute.
  std::vector<std::shared_ptr<NSColor>> textColors() const;
  std::vector<std::shared_ptr<NSFont>> textFonts() const;
  /// Whether all of the text is underlined, struck through.
  bool underline() const;
  bool strikethrough() const;
  /// Of the text's start.
  virtual NSTextAlignment textAlignment() const;
  /// Factor of the natural line height at the text's start; 0: none.
  CGFloat textLineHeight() const;
  /// Percent of the font size at the text's start; 0: no outline.
  CGFloat textOutlineWidth() const;
  std::shared_ptr<NSColor> textOutlineColor() const;
  void setTextColor(const std::shared_ptr<NSColor>& color);
  void setTextFont(const std::shared_ptr<NSFont>& font);
  /// Runs within 0.1 points of the size keep theirs.
  void setTextFontSize(CGFloat size);
  void setTextFontFamily(std::string_view family);
  void setTextFontTrait(NSFontTraitMask trait);
  /// Takes the trait away when all runs have it, else gives it to all.
  void toggleTextFontTrait(NSFontTraitMask trait);
  void setTextUnderline(bool on);
  void setTextStrikethrough(bool on);
  virtual void setTextAligment(NSTextAlignment alignment);
  void setTextLineHeight(CGFloat multiple);
  void setTextOutlineWidth(CGFloat width);
  void setTextOutlineColor(const std::shared_ptr<NSColor>& color);
  void setTextOutlineWidth(CGFloat width, const std::shared_ptr<NSColor>& color);
  void applyModifyTextAction(const ZTModifyTextAction& action);

  // ---- DrawBase.
  void _draw(CastShadow cast) override;
  NSRect drawRect() const override;
  void setBezierPathWithBounds(NSRect bounds) override;
  std::shared_ptr<NSDictionary> drawAttributes() const override;
  bool setDrawAttributes(const NSDictionary& attributes) override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  void mapGeometry(const AxisMap& map) override;
  /// The text image follows the box while its text stays as it is broken, else it goes.
  void respondToBoundsChangeFromOldBounds(const NSRect& oldBounds);
  /// Lays the text out again; the box takes its size if it follows the text.
  void forceUpdateString();
  void forceUpdateStringAndkeepSize() { invalidTextImage(); }
  /// Called after every change of the text or its style.
  virtual void textChanged();

  /// The text as the bitmap shows it: the outlines alone, or a mask for the gradient, or as it is.
  /// Null when the option asks for outlines and the text has none.
  std::shared_ptr<NSTextStorage> textForImage(TextImageOption option) const;
  /// Takes over what convertTextToImageWithOption made.
  virtual void storeTextImage(const ConvertTextToImageResult& result) const;
  /// Of bitmaps that are drawn from the origin of the path bounds on.
  OffscreenGrid imageGrid() const;
  /// Draws everything but the box.
  void drawTextPart(CastShadow cast);
  /// The text, to be changed.
  NSTextStorage& editableText();

 private:
  /// What the text image depends on besides the text.
  struct ImageKey {
    NSRect bounds;
    bool smooth = false;
    OffscreenGrid grid;
  };
  struct TextArea;
  struct TextTarget;
  using EditFont = std::function<std::shared_ptr<NSFont>(const std::shared_ptr<NSFont>&)>;

  bool hasLegacyOpacity() const { return fTextOpacity_ >= 0 && fTextOpacity_ <= 1; }
  bool imageIsCurrent() const;
  /// The text image, made when there is none.
  std::shared_ptr<NSBitmapImageRep> validTextImage() const;
  /// Leaves the image to the document's cache of pictures.
  void leaveToCache() const;
  void dropImages() const;
  CGFloat imagePixels() const;
  bool isTooLargeToKeep() const;
  void placeTextImage() const;
  TextArea areaFor(NSTextStorage& text, const NSSize& box) const;
  NSTextAlignment sideOfGrowth(TextDirection direction) const;
  static NSRect imageRectOf(const TextLayout& layout, const TextArea& area, const NSSize& box,
                            size_t length);
  void drawText(const TextTarget& target, CastShadow cast) const;
  bool hasGradient() const { return _useGradualText && _textGradient != nullptr; }
  void drawGradientText(const TextTarget& target) const;
  void drawInnerShadow(const TextTarget& target) const;
  void drawShadowMask(const TextTarget& target) const;
  NSPoint relativeGradientCenter(const NSRect& target) const;
  NSRect visiblePart() const;
  std::shared_ptr<NSBitmapImageRep> textOutlineImage(const WantedImage& wanted) const;
  CGFloat overhang() const;
  void decodeTextGradient(NSCoder& coder);
  void takeTextGradientFromFill();
  void editFonts(const EditFont& edit);
  void editParagraphs(const std::function<void(NSMutableParagraphStyle&)>& edit);
  void setTextAttribute(std::string_view name, const std::shared_ptr<NSObject>& value);
  std::shared_ptr<NSObject> firstAttribute(std::string_view name) const;
  bool allOfTextHas(std::string_view name) const;
  std::shared_ptr<const NSParagraphStyle> firstParagraphStyle() const;

  mutable NSRect rectText_;
  mutable NSRect imageRect_;
  std::shared_ptr<NSTextStorage> textStorage_;
  mutable std::shared_ptr<NSBitmapImageRep> imgRepText_;
  /// The image while the document's cache of pictures keeps it, instead of the draw.
  mutable std::weak_ptr<NSBitmapImageRep> cachedImage_;
  bool _useGradualText = false;
  bool bEdittingText_ = false;
  float fTextOpacity_;
  bool _isNewCreated = false;
  bool _autoResize = false;
  bool _isRadialTextGradient = false;
  float _textGradientDegree = 0;
  std::shared_ptr<NSGradient> _textGradient;
  NSPoint _textGradientCenter;
  NSSize _maxTextSize;

  mutable ImageKey imageKey_;
};
