#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGNameMap.h"
#include "svg/parse/SVGViewport.h"
#include "svg/tree/SVGElementMemory.h"

/// The tree that is made of a text. It holds what each element says itself; what an element
/// inherits depends on the way that leads to it (references lead to the same element from several
/// places) and is worked out while drawing.
namespace SVGNative {

enum class Visibility : uint8_t { visible, hidden };

/// "none" is a paint that an element can say and inherit.
using OptionalPaint = std::optional<Paint>;

/// What an element says of the properties that its content inherits.
struct InheritedProperties {
  std::optional<Color> color;
  std::optional<OptionalPaint> fill;
  std::optional<OptionalPaint> stroke;
  std::optional<std::shared_ptr<const std::vector<float>>> dashArray;
  std::optional<float> dashOffset;
  std::optional<float> fillOpacity;
  std::optional<float> strokeOpacity;
  std::optional<float> lineWidth;
  std::optional<float> miterLimit;
  std::optional<LineCap> lineCap;
  std::optional<LineJoin> lineJoin;
  std::optional<WindingRule> fillRule;
  std::optional<Visibility> visibility;
};

/// The value of every inherited property at an element; SVG's initial values as constructed.
struct ComputedStyle {
  Color color = kOpaqueBlack;
  Visibility visibility = Visibility::visible;
  FillStyleImpl fill;
  StrokeStyleImpl stroke;
  void apply(const InheritedProperties& properties);
};

struct Group;
struct Graphic;
struct Image;
struct Reference;

class ElementVisitor {
 public:
  virtual ~ElementVisitor() = default;
  virtual void Visit(const Group& group) = 0;
  virtual void Visit(const Graphic& graphic) = 0;
  virtual void Visit(const Image& image) = 0;
  virtual void Visit(const Reference& reference) = 0;
};

struct Element {
  virtual ~Element() = default;
  virtual void Accept(ElementVisitor& visitor) const = 0;

  GraphicStyleImpl style;
  ElementMemory::Pointer<InheritedProperties> properties;  ///< null when it says nothing
  bool displayed = true;                                   ///< false hides the content too
};

struct Group : Element {
  void Accept(ElementVisitor& visitor) const override { visitor.Visit(*this); }
  std::vector<std::shared_ptr<const Element>> children;  ///< in document order
  std::unique_ptr<const Viewport> viewport;              ///< of "svg" and "symbol"
};

struct Graphic : Element {
  void Accept(ElementVisitor& visitor) const override { visitor.Visit(*this); }
  std::shared_ptr<const Path> path;
  size_t pathBytes = 0;  ///< length of the text that the path was made of: what drawing costs
};

struct Image : Element {
  void Accept(ElementVisitor& visitor) const override { visitor.Visit(*this); }
  std::shared_ptr<const ImageData> image;
  Rect clipArea;
  Rect fillArea;
};

using ElementMap = NameMap<std::shared_ptr<const Element>>;

/// A "use". Its place is part of the style's transform.
struct Reference : Element {
  void Accept(ElementVisitor& visitor) const override { visitor.Visit(*this); }
  std::string target;          ///< an id, which need not exist
  std::optional<float> width;  ///< of the viewport, when the target has one
  std::optional<float> height;
  std::shared_ptr<const Group> content;  ///< drawn instead of the target, where not null
};

}  // namespace SVGNative
