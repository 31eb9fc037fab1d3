#pragma once

#include <memory>
#include <string>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/NSObject.h"

class NSDictionary;

/// Describes a font by attributes. The name and the size are the ones that archives are read for;
/// the others are kept.
class NSFontDescriptor : public NSObject {
 public:
  static const NSClass kClass;

  NSFontDescriptor() = default;
  static std::shared_ptr<NSFontDescriptor> fontDescriptorWithName(const std::string& name,
                                                                  CGFloat size);

  /// Empty when the descriptor has no name.
  std::string postscriptName() const;
  /// 0 when the descriptor has no size.
  CGFloat pointSize() const;

  const NSClass& classInfo() const override { return kClass; }
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  std::shared_ptr<NSDictionary> attributes_;
};
