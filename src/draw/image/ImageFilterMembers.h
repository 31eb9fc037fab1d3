#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/graphics/bitmap/NSBitmapImageRep.h"

class NSArray;
class NSCoder;
class NSDictionary;
class NSMutableDictionary;

/// What both classes of filter draws have besides a bitmap: a filter type, its settings, and a
/// selection that the filter is limited to.
///
/// Types: 0 invert colours, 1 blur, 2 sharpen, 3 adjust colours, 4 crystallize, 5 edges,
/// 6 edge work, 7 pixellate, 8 pointillize, 9 black and white. All others do nothing.
class ImageFilterMembers {
 public:
  // ---- The catalogue.
  /// Name of the platform's filter, empty for black and white; nothing for an unknown type.
  static std::optional<std::string_view> CIFilterNameWithType(int64_t type);
  /// Display name; "Effect" for an unknown type.
  static std::string nameOfFilterWithType(int64_t type);
  /// A dictionary for each setting of the type: "SetttingName" (the filter's input key),
  /// "SetttingDisplayName", and those of "SetttingMaxValue", "SetttingMidValue",
  /// "SetttingMinValue" and "SetttingDefaultValue" that the setting has.
  static std::shared_ptr<NSArray> availableSettingsForFilter(int64_t type);
  /// Default value by input key; null for a type without settings.
  static std::shared_ptr<NSMutableDictionary> defaultSettingsForFilter(int64_t type);
  /// Whether the picture is extended at its edges before it is filtered. Only such types heed a
  /// scissor.
  static bool extendImageWhenApplyFilter(int64_t type);

  /// The bitmap filtered, and limited to the scissor (NSBezierPath or ImageMask, in pixels of the
  /// bitmap, y upwards) where the type heeds one: transparent outside. Settings and scissor may be
  /// null. Null for no bitmap, or an unknown type.
  static std::shared_ptr<NSBitmapImageRep> image(const std::shared_ptr<NSBitmapImageRep>& image,
                                                 int64_t withFilter, const NSDictionary* settings,
                                                 const NSObject* scissor);

  /// What a draw of the size `shown` shows: the same, but where the draw is as the whole bitmap is,
  /// not as the part inside a mask, that part lies on a transparent bitmap of the whole size.
  static std::shared_ptr<NSBitmapImageRep> effect(const std::shared_ptr<NSBitmapImageRep>& plain,
                                                  int64_t type, const NSDictionary* settings,
                                                  const NSObject* scissor, const NSSize& shown);

  // ---- Properties.
  int64_t filterType() const { return dFilterType_; }
  std::string filterName() const { return nameOfFilterWithType(dFilterType_); }
  std::shared_ptr<NSArray> availableSettings() const {
    return availableSettingsForFilter(dFilterType_);
  }
  /// Number by input key; null for a draw that shows its bitmap unfiltered.
  const std::shared_ptr<NSMutableDictionary>& filterSettings() const { return dicFilterSettings_; }
  /// Takes a copy; null for none.
  void setFilterSettings(const NSDictionary* settings);
  /// Whether the settings say anything else than the draw's own.
  bool isNewSettings(const NSDictionary* settings) const;
  /// The selection that the filter is limited to; null for the whole picture.
  const std::shared_ptr<NSObject>& imageScissor() const { return imageScissor_; }

 protected:
  /// The members of a new draw: the type's default settings, and the selection as scissor when it
  /// can be one.
  void initFilter(int64_t type, std::shared_ptr<NSObject> selection);

  enum class KeepEffect : uint8_t { always, whileUsed };
  /// What a draw with that bitmap shows in the size `shown`. A filtered bitmap is computed once and
  /// kept, until it is dropped or only as long as somebody uses it.
  std::shared_ptr<NSBitmapImageRep> effectOf(const std::shared_ptr<NSBitmapImageRep>& plain,
                                             const NSSize& shown, KeepEffect keep);
  /// The filtered bitmap if it is kept; null for a draw without settings.
  std::shared_ptr<NSBitmapImageRep> cachedEffect() const;
  void dropEffect();

  void decodeFilter(NSCoder& coder);
  void encodeFilter(NSCoder& coder) const;
  void putFilterAttributes(NSMutableDictionary& attributes) const;
  /// Answers whether there was anything to apply.
  bool applyFilterAttributes(const NSDictionary& attributes);

  int64_t dFilterType_ = 0;
  std::shared_ptr<NSObject> imageScissor_;
  std::shared_ptr<NSMutableDictionary> dicFilterSettings_;
  std::shared_ptr<NSBitmapImageRep> imageEffect_;
  std::weak_ptr<NSBitmapImageRep> usedEffect_;
};
