#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/collections/NSDictionary.h"

struct TextLayout;

// Names of attributes, as archives hold them.
inline constexpr const char* NSFontAttributeName = "NSFont";
inline constexpr const char* NSForegroundColorAttributeName = "NSColor";
inline constexpr const char* NSBackgroundColorAttributeName = "NSBackgroundColor";
inline constexpr const char* NSParagraphStyleAttributeName = "NSParagraphStyle";
inline constexpr const char* NSUnderlineStyleAttributeName = "NSUnderline";
inline constexpr const char* NSUnderlineColorAttributeName = "NSUnderlineColor";
inline constexpr const char* NSStrikethroughStyleAttributeName = "NSStrikethrough";
inline constexpr const char* NSStrikethroughColorAttributeName = "NSStrikethroughColor";
inline constexpr const char* NSStrokeWidthAttributeName = "NSStrokeWidth";
inline constexpr const char* NSStrokeColorAttributeName = "NSStrokeColor";
inline constexpr const char* NSKernAttributeName = "NSKern";
inline constexpr const char* NSLigatureAttributeName = "NSLigature";
inline constexpr const char* NSSuperscriptAttributeName = "NSSuperScript";
inline constexpr const char* NSBaselineOffsetAttributeName = "NSBaselineOffset";
inline constexpr const char* NSObliquenessAttributeName = "NSObliqueness";
inline constexpr const char* NSExpansionAttributeName = "NSExpansion";
inline constexpr const char* NSShadowAttributeName = "NSShadow";
inline constexpr const char* NSWritingDirectionAttributeName = "NSWritingDirection";
inline constexpr const char* NSAttachmentAttributeName = "NSAttachment";

/// A text whose stretches carry attributes. Positions and lengths count UTF-16 units; ranges that
/// are not inside the text throw NSException (NSRangeException).
class NSAttributedString : public NSObject {
 public:
  static const NSClass kClass;
  using Attributes = std::shared_ptr<const NSDictionary>;
  /// value (null where the attribute is not set), range, and whether to stop.
  using AttributeVisitor =
      std::function<void(const std::shared_ptr<NSObject>&, const NSRange&, bool*)>;

  NSAttributedString() = default;
  explicit NSAttributedString(std::string_view utf8, Attributes attributes = nullptr);
  explicit NSAttributedString(std::u16string units, Attributes attributes = nullptr);

  std::string string() const;
  const std::u16string& units() const { return units_; }
  size_t length() const { return units_.size(); }

  /// Attributes of the unit at an index below length(), null when it has none. The effective range
  /// is the run around it, not necessarily the longest.
  Attributes attributesAtIndex(size_t index, NSRange* effectiveRange = nullptr) const;
  /// One attribute there; null when it is not set.
  std::shared_ptr<NSObject> attribute(std::string_view name, size_t atIndex,
                                      NSRange* effectiveRange = nullptr) const;
  /// Visits the longest stretches of equal values inside the range, from its start to its end.
  void enumerateAttribute(std::string_view name, const NSRange& inRange,
                          const AttributeVisitor& visit) const;
  std::shared_ptr<NSAttributedString> attributedSubstringFromRange(const NSRange& range) const;

  /// The text set without a limit to its width and without the leading of fonts.
  /// A piece of a text takes the faces that it has in its surroundings.
  TextLayout unlimitedLayout(std::u16string_view surroundings = {}) const;
  /// Size of the text set without a limit to its width: the widest line with the blanks at its end,
  /// and the heights of all lines without the leading of fonts.
  NSSize size() const;
  /// Draws the text so set into the current graphics context, whose user space has y running down,
  /// with its top left corner at the point.
  void drawAtPoint(NSPoint point) const;

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  struct Run {
    size_t end;  ///< first unit behind the run
    Attributes attributes;
  };

  void setText(std::u16string units, Attributes attributes);
  size_t runAt(size_t index) const;
  void checkRange(const NSRange& range) const;
  /// Makes a run begin at the unit and answers its position; the number of runs for the end.
  size_t splitRunAt(size_t unit);
  /// Joins neighbours with the same attributes.
  void joinRuns();

  std::u16string units_;
  std::vector<Run> runs_;  ///< none is empty; the last one ends with the text
};

/// An attributed string that can be changed.
class NSMutableAttributedString : public NSAttributedString {
 public:
  static const NSClass kClass;
  using NSAttributedString::NSAttributedString;

  void setAttributedString(const NSAttributedString& other);
  /// Inserted text takes the attributes of the first replaced unit, else of the unit before, else
  /// of the unit behind.
  void replaceCharactersInRange(const NSRange& range, std::string_view withString);
  void replaceCharactersInRange(const NSRange& range, const NSAttributedString& withString);
  void deleteCharactersInRange(const NSRange& range);
  void appendAttributedString(const NSAttributedString& other);

  void addAttribute(std::string_view name, std::shared_ptr<NSObject> value, const NSRange& range);
  void addAttributes(const NSDictionary& attributes, const NSRange& range);
  void removeAttribute(std::string_view name, const NSRange& range);
  void setAttributes(Attributes attributes, const NSRange& range);

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;

 protected:
  /// Called after every change.
  virtual void edited() {}

 private:
  using EditAttributes = std::function<Attributes(const Attributes&)>;
  void editRuns(const NSRange& range, const EditAttributes& edit);
  void replace(const NSRange& range, std::u16string_view units, std::vector<Run> runs);
};
