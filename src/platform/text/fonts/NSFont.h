#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class NSFontDescriptor;
struct ResolvedFont;

/// A font of the documents' platform at a size: what archives name. Its identity is the PostScript
/// name, whatever face stands in for it here. Immutable; safe on any thread.
class NSFont : public NSObject {
 public:
  static const NSClass kClass;

  /// Helvetica at 12 points, what text without a font is set in.
  NSFont();
  NSFont(std::string fontName, CGFloat pointSize);
  ~NSFont() override;

  /// Null when neither the platform nor this system has a font of that PostScript name.
  static std::shared_ptr<NSFont> fontWithName(std::string_view name, CGFloat size);
  /// As above, by the descriptor's name; its size too when `size` is 0.
  static std::shared_ptr<NSFont> fontWithDescriptor(const NSFontDescriptor& descriptor,
                                                    CGFloat size);
  /// The font of text without one.
  static const std::shared_ptr<const NSFont>& defaultFont();

  const std::string& fontName() const { return name_; }
  /// Above 0 and at most 1e9: larger sizes are cut to that, other ones mean 12.
  CGFloat pointSize() const { return size_; }
  std::string familyName() const;
  std::shared_ptr<NSFontDescriptor> fontDescriptor() const;
  bool isFixedPitch() const;
  /// Glyph space to text space without the size; the identity for nearly every font.
  const CGAffineTransform& matrix() const { return matrix_; }

  // Points at this size. The descender is negative.
  CGFloat ascender() const;
  CGFloat descender() const;
  CGFloat leading() const;
  CGFloat xHeight() const;
  CGFloat capHeight() const;
  CGFloat underlineThickness() const;

  /// The face that draws it and how; found at the first call, which may index the fonts.
  const std::shared_ptr<const ResolvedFont>& resolved() const;

  const NSClass& classInfo() const override { return kClass; }
  bool isEqual(const NSObject& other) const override;
  size_t hash() const override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  /// Of the font to look for: a system font of a name that is not known is any system font.
  std::string_view drawnName() const;
  CGFloat unitsToPoints(int32_t units) const;

  std::string name_;
  CGFloat size_;
  int32_t flags_;
  CGAffineTransform matrix_;
  mutable std::once_flag resolveOnce_;
  mutable std::shared_ptr<const ResolvedFont> resolved_;
};
