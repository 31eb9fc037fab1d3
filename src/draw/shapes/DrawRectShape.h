#pragma once

#include "draw/shapes/DrawRectangle.h"

/// Root of the preset shapes: draws whose outline is generated in a control rectangle, which is
/// archived beside the outline. Documents are drawn from the archived outline.
class DrawRectShape : public DrawRectangle {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
  std::string name() const override { return "Shape"; }

  NSRect controlBoundsBeforeRotation() const override { return rectControlBounds_; }
  void init() override;
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 protected:
  NSRect rectControlBounds_;
};

/// The classes of preset shapes.
enum class PresetShape : uint8_t {
  polygon,
  star,
  heart,
  waterDrip,
  location,
  bookmark,
  cloud,
  lightning,
  person,
  mail,
  desktop,
  fruit,
  butterfly,
  camera,
  eye,
  home,
  refresh,
  folder,
  picture,
  clock,
  signal,
  message,
  ellipseMessage,
};

template <PresetShape kShape>
class DrawPresetShape : public DrawRectShape {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};
