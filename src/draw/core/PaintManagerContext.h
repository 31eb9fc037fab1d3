#pragma once

#include <cstdint>
#include <memory>

#include "platform/foundation/NSObject.h"

class NSCoder;

/// What decoding a document tells every draw: the version that saved it and the backing scale of
/// the screen it was saved on. Draws must work without one.
class PaintManagerContext : public NSObject {
 public:
  static const NSClass kClass;

  /// Version of this engine's format, and the backing scale of the main screen.
  PaintManagerContext();
  const NSClass& classInfo() const override { return kClass; }

  int64_t savedVersion() const { return savedVersion_; }
  void setSavedVersion(int64_t version) { savedVersion_ = version; }
  double savedBackingScale() const { return savedBackingScale_; }
  void setSavedBackingScale(double scale) { savedBackingScale_ = scale; }

 private:
  int64_t savedVersion_;
  double savedBackingScale_;
};

/// Backing scale of the main screen. There is no screen here: one pixel per canvas unit.
inline constexpr double kMainScreenBackingScale = 1.0;

/// The context attached to a coder, or null.
std::shared_ptr<PaintManagerContext> paintMangerContext(const NSCoder& coder);
void setPaintMangerContext(NSCoder& coder, std::shared_ptr<PaintManagerContext> context);
