#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "draw/core/AxisMap.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/PaintExport.h"
#include "platform/graphics/path/NSAffineTransform.h"
#include "platform/graphics/path/NSBezierPath.h"
#include "platform/pictures/PictureFailure.h"

class AttributeReader;
class AttributeWriter;
class NSBitmapImageRep;
class NSColor;
class NSData;
class NSDictionary;
class NSGradient;
class NSShadow;
class ZTArrowPathInfo;

/// Whether line widths follow when a draw is scaled.
enum class ResizeLineWidth : uint8_t { no, yes };
/// Whether a draw that has a drop shadow casts it.
enum class CastShadow : uint8_t { no, yes };

/// The embedded picture that a draw shows, if any.
struct PictureFacts {
  PictureFailure failure = PictureFailure::none;
  const char* format = "";  ///< "PNG", "SVG" and so on; empty where it is not known
  NSSize size{};  ///< its own: pixels of a bitmap, else units; zero where it cannot be read
};

/// Root of every draw (one drawing object on the canvas): its outline path, the attributes all
/// kinds of draws share, their archived record, and the rendering pipeline.
///
/// Subclasses change behaviour through the class hooks; only the capability queries ask what kind
/// of draw the receiver is.
class PAINT_API DrawBase : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  /// Version of the whole document format.
  static constexpr int64_t version() { return 22; }

  /// Gives a new draw its defaults; decoding does not call it. Answers the draw.
  virtual void init();

  // ---- Class hooks.
  /// The draw is a path shape.
  virtual bool classDrawBezierPath() const { return true; }
  virtual bool classDrawStroke() const { return classDrawBezierPath(); }
  /// The path is a closed shape whose inside is filled.
  virtual bool classDrawBezierPathFill() const { return false; }
  virtual bool classDrawFill() const { return classDrawBezierPathFill(); }
  /// The draw replaces the pixels under it instead of blending.
  virtual bool copyWhenComposite() const { return false; }
  virtual bool shouldApplyOpacityToStokeAndFill() const { return true; }
  virtual bool shouldAntialias() const { return bSmooth_; }
  virtual bool isSelectTool() const { return false; }
  virtual bool hasBorder() const { return !classDrawBezierPath(); }
  /// 0 none, 2 both ends, any other value the end only.
  virtual int64_t arrowStyle() const { return 0; }
  /// Display name of the kind of draw.
  virtual std::string name() const { return {}; }
  /// What people know the draw by: its layer's title, else its name; may be empty.
  std::string title() const { return strLayerTitle_ ? *strLayerTitle_ : name(); }

  /// Why the embedded picture that this draw shows cannot be drawn; none when it can, and for draws
  /// without one. Reads and draws the picture. Throws std::bad_alloc.
  virtual PictureFailure pictureFailure() { return PictureFailure::none; }
  /// The same, and what the picture is.
  virtual PictureFacts pictureFacts() { return {}; }
  /// What that picture is, in words; empty for draws that show none.
  virtual const char* pictureKind() const { return ""; }

  // ---- Attributes. Objects may be null; widths and distances are canvas units, angles degrees
  // counter-clockwise, gradient centres relative to the bounds (-1 to 1).
  const std::shared_ptr<NSBezierPath>& bezierPath() const { return bezierPath_; }
  void setBezierPath(std::shared_ptr<NSBezierPath> path) { bezierPath_ = std::move(path); }
  /// Percent, 0 to 100.
  virtual uint64_t opacity() const { return opacity_ > 100 ? 100 : opacity_; }
  virtual void setOpacity(uint64_t percent) {
    opacity_ = static_cast<uint8_t>(percent > 100 ? 100 : percent);
  }

  bool enableStroke() const { return bEnableStroke_; }
  virtual void setEnableStroke(bool on) { bEnableStroke_ = on; }
  bool useGradualStroke() const { return bStrokeWithGdt_; }
  virtual void setUseGradualStroke(bool on) { bStrokeWithGdt_ = on; }
  const std::shared_ptr<NSColor>& strokeColor() const { return colorStroke_; }
  virtual void setStrokeColor(std::shared_ptr<NSColor> c) { colorStroke_ = std::move(c); }
  const std::shared_ptr<NSGradient>& strokeGradient() const { return gradientStroke_; }
  virtual void setStrokeGradient(std::shared_ptr<NSGradient> g) { gradientStroke_ = std::move(g); }
  bool useRadialStrokeGradient() const { return bStrokeRadialGdt_; }
  void setUseRadialStrokeGradient(bool on) { bStrokeRadialGdt_ = on; }
  float strokeGradientDegree() const { return fStrokeGdtDegree_; }
  void setStrokeGradientDegree(float degrees) { fStrokeGdtDegree_ = degrees; }
  NSPoint strokeGradientCenter() const { return ptStrokeGdtCenter_; }
  void setStrokeGradientCenter(NSPoint center) { ptStrokeGdtCenter_ = center; }

  bool enableFill() const { return bEnableFill_; }
  virtual void setEnableFill(bool on) { bEnableFill_ = on; }
  bool useGradualFill() const { return bFillWithGdt_; }
  virtual void setUseGradualFill(bool on) { bFillWithGdt_ = on; }
  const std::shared_ptr<NSColor>& fillColor() const { return colorFill_; }
  virtual void setFillColor(std::shared_ptr<NSColor> c) { colorFill_ = std::move(c); }
  const std::shared_ptr<NSGradient>& fillGradient() const { return gradientFill_; }
  virtual void setFillGradient(std::shared_ptr<NSGradient> g) { gradientFill_ = std::move(g); }
  bool useRadialFillGradient() const { return bFillRadialGdt_; }
  void setUseRadialFillGradient(bool on) { bFillRadialGdt_ = on; }
  float fillGradientDegree() const { return fFillGdtDegree_; }
  void setFillGradientDegree(float degrees) { fFillGdtDegree_ = degrees; }
  NSPoint fillGradientCenter() const { return ptFillGdtCenter_; }
  void setFillGradientCenter(NSPoint center) { ptFillGdtCenter_ = center; }

  bool enableStrokeOutline() const { return _enableStrokeOutline; }
  void setEnableStrokeOutline(bool on) { _enableStrokeOutline = on; }
  float strokeOutlineWidth() const { return _strokeOutlineWidth; }
  void setStrokeOutlineWidth(float width) { _strokeOutlineWidth = width; }
  const std::shared_ptr<NSColor>& strokeOutlineColor() const { return _strokeOutlineColor; }
  void setStrokeOutlineColor(std::shared_ptr<NSColor> c) { _strokeOutlineColor = std::move(c); }

  bool enableShadow() const { return bEnableShadow_; }
  void setEnableShadow(bool on) { bEnableShadow_ = on; }
  const std::shared_ptr<NSShadow>& shadow() const { return shadow_; }
  void setShadow(std::shared_ptr<NSShadow> s) { shadow_ = std::move(s); }
  bool enableInnerShadow() const { return bEnableInnerShadow_; }
  void setEnableInnerShadow(bool on) { bEnableInnerShadow_ = on; }
  const std::shared_ptr<NSShadow>& innerShadow() const { return shadowInner_; }
  void setInnerShadow(std::shared_ptr<NSShadow> s) { shadowInner_ = std::move(s); }
  bool enableReflection() const { return bEnableReflection_; }
  void setEnableReflection(bool on) { bEnableReflection_ = on; }
  float reflection() const { return fReflection_; }
  void setReflection(float strength) { fReflection_ = strength; }
  float reflectionDis() const { return fReflectionDis_; }
  void setReflectionDis(float distance) { fReflectionDis_ = distance; }

  const std::optional<std::string>& layerTitle() const { return strLayerTitle_; }
  void setLayerTitle(std::optional<std::string> title) { strLayerTitle_ = std::move(title); }
  /// The group that holds the draw, not owned; null at top level.
  DrawBase* group() const { return group_; }
  void setGroup(DrawBase* group) { group_ = group; }
  float rotateDegree() const { return fRotateDegree_; }
  /// Kept in (-180, 180], rounded to three decimals.
  virtual void setRotateDegree(float degrees) { fRotateDegree_ = normalizedDegree(degrees); }
  bool visible() const { return bVisible_; }
  void setVisible(bool on) { bVisible_ = on; }
  bool locked() const { return bLocked_; }
  void setLocked(bool on) { bLocked_ = on; }
  bool smooth() const { return bSmooth_; }
  void setSmooth(bool on) { bSmooth_ = on; }

  // ---- Editing state, never archived.
  bool isCreatingWithEvent() const { return bCreatingWithEvent_; }
  void setCreatingWithEvent(bool on) { bCreatingWithEvent_ = on; }
  /// A turn in progress; a group turns its sub-draws while it lasts.
  bool isRotating() const { return bRotating_; }
  void setRotating(bool on) { bRotating_ = on; }
  bool isResizing() const { return bResizing_; }
  void setResizing(bool on) { bResizing_ = on; }
  bool isEditingStrokeGradient() const { return bEditingStrokeGradient_; }
  void setEditingStrokeGradient(bool on) { bEditingStrokeGradient_ = on; }
  bool isEditingFillGradient() const { return bEditingFillGradient_; }
  void setEditingFillGradient(bool on) { bEditingFillGradient_ = on; }
  bool isResizingByDragging() const { return bResizingByDragging_; }
  virtual void setResizingByDragging(bool on) { bResizingByDragging_ = on; }
  bool isAdjustingByDragging() const { return bAdjustingByDragging_; }
  void setAdjustingByDragging(bool on) { bAdjustingByDragging_ = on; }

  /// Width of the path's line; 0 without a path.
  CGFloat lineWidth() const { return bezierPath_ ? bezierPath_->lineWidth() : 0; }
  /// Keeps the dash pattern in units of the new width.
  void setLineWidth(CGFloat width);
  /// The dash pattern as numbers in units of the line width, separated by ":"; "" when solid.
  std::string lineDashStyle() const;
  void setLineDashStyle(std::string_view pattern);
  virtual bool hasStrokeOutline() const {
    return _enableStrokeOutline && _strokeOutlineColor != nullptr;
  }

  // ---- Geometry.
  /// Bounds of the unrotated path; the zero rectangle without one.
  NSRect pathBounds() const;
  virtual NSPoint rotateCenter() const;
  /// The rotation about the centre of pathBounds; the identity without a path or a rotation.
  NSAffineTransform transform() const;
  NSAffineTransform invertTransform() const;
  NSPoint pointAfterRotate(NSPoint p) const { return transform().transformPoint(p); }
  /// Centres of the radial gradients on the canvas, after rotation. The scale plays no part.
  NSPoint fillGradientCenterPointWithScale(CGFloat scale) const;
  NSPoint strokeGradientCenterPointWithScale(CGFloat scale) const;
  /// The rectangle the draw paints, without shadow and reflection.
  virtual NSRect drawRect() const;
  /// Everything the draw may touch, in whole units.
  virtual NSRect renderedRect() const;
  /// Replaces the path by the rotated one and the rotation by 0.
  void applyRotationToBezierPath();
  /// Moves the draw on the canvas.
  virtual void moveByX(CGFloat x, CGFloat y);
  /// Scales the draw about a point of the canvas. A draw that is turned keeps its turn and is
  /// scaled along its own axes: exactly for equal factors and for quarter turns.
  virtual void scaleByX(CGFloat x, CGFloat y, NSPoint withCenter, ResizeLineWidth resizeLineWidth);
  /// What restores the outline, for undoing: the archived path, null without one.
  virtual std::shared_ptr<NSObject> bezierPathData() const;
  /// Takes over what bezierPathData answered; other objects are ignored.
  virtual void setBezierPathWithData(const std::shared_ptr<NSObject>& data);

  // ---- Rendering into the current graphics context.
  /// Whether stroke and fill would paint anything.
  virtual bool drawStroke() const;
  virtual bool drawFill() const;
  /// The whole draw. The image is unused by most draws and may be null.
  virtual void drawInImage(NSBitmapImageRep* image);
  void draw() { drawInImage(nullptr); }
  /// The draw alone on a transparent bitmap as large as renderedRect; null when that is empty or
  /// larger than any bitmap.
  std::shared_ptr<NSBitmapImageRep> renderedImage();
  /// Fill, inner shadow and stroke of the rotated path, with the drop shadow unless this is a
  /// reflection.
  virtual void _draw(CastShadow cast);

  // ---- Attribute dictionaries, to copy attributes from draw to draw.
  virtual std::shared_ptr<NSDictionary> drawAttributes() const;
  virtual bool canSetDrawAttributes(const NSDictionary* attributes) const;
  /// Applies the keys that the receiver takes; answers whether anything could be applied.
  virtual bool setDrawAttributes(const NSDictionary& attributes);

  /// Takes over every archived field of the common record; the path is copied.
  void copyCommonAttributesFrom(const DrawBase& other);

  // ---- Capability queries; they gate the attribute dictionary and editing, never rendering.
  virtual bool visibleWithGroup() const;
  bool shouldDrawBorderWhenCreating() const;
  bool shouldDrawKnobWhenCreating() const;
  bool shouldFocusedWhenAdded() const;
  bool canBeSelectedByClick() const;
  bool canSetStrokeColor() const;
  bool canSetStrokeGradient() const;
  bool canToggleStrokeType() const;
  bool canToggleFill() const;
  bool canToggleFillType() const;
  bool canSetFillColor() const;
  bool canSetFillGradient() const;
  bool canSetLineWidth() const;
  bool canSetStrokeOutline() const;
  bool canSetDashStyle() const;
  bool canSetShadow() const;
  bool canSetInnerShadow() const;
  bool canToggleSmooth() const;
  bool canSetCapStyle() const;
  bool canSetArrowStyle() const { return canSetCapStyle(); }
  bool canSetReflection() const { return canSetShadow(); }
  virtual bool canBeRotated() const { return visibleWithGroup(); }
  virtual bool canBeRotatedFreely() const { return canBeRotated(); }
  virtual bool canBeResized() const;
  virtual bool canBeResizedFreely() const { return canBeResized(); }
  virtual bool canBeFliped() const { return visibleWithGroup(); }
  bool isPathClosed() const;
  bool canCreateBezierText() const;
  /// Whether editing may add curves to the outline.
  virtual bool canAddCurvedSegment() const { return classDrawBezierPath(); }
  virtual bool canAdjustOpacity() const;
  bool canCopyDrawAttributes() const;

  // ---- Archives.
  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;
  /// Keyed archive of a list of draws (the clipboard form); null for an empty list.
  static std::shared_ptr<NSData> encodedDataWithDraws(
      const std::vector<std::shared_ptr<DrawBase>>& draws);
  /// The draws of such an archive, or of the older form whose root is the list. Nothing, rather
  /// than an empty list, when the data holds none.
  static std::optional<std::vector<std::shared_ptr<DrawBase>>> drawsFromEncodedData(
      const std::shared_ptr<const NSData>& data);
  /// The archive of this draw alone. Takes the shared pointer that owns the draw.
  static std::shared_ptr<NSData> encodedData(const std::shared_ptr<DrawBase>& draw) {
    return encodedDataWithDraws({draw});
  }
  /// The first draw of such an archive, or null.
  static std::shared_ptr<DrawBase> drawFromEncodedData(const std::shared_ptr<const NSData>& data);

 protected:
  /// Strokes a path that is already rotated, with the draw's stroke paint. The heads may be null.
  void _drawStrokeWithPath(const NSBezierPath& path, const ZTArrowPathInfo* arrowPathInfo,
                           bool hasShadow) const;
  bool hasShadowInForce() const { return bEnableShadow_ && shadow_ != nullptr; }
  /// Sets the drop shadow in the current context, if there is one to be cast.
  void setShadowInForce(CastShadow cast) const;
  /// Maps the path and everything else that lies on the canvas, before rotation.
  virtual void mapGeometry(const AxisMap& map);
  /// Whether the receiver is a kind of any of the named classes.
  bool isKindOf(std::initializer_list<std::string_view> classNames) const;
  bool isExactly(std::initializer_list<std::string_view> classNames) const;

  std::shared_ptr<NSBezierPath> bezierPath_;
  uint8_t opacity_ = 100;
  bool bEnableStroke_ = false;
  bool bStrokeWithGdt_ = false;
  std::shared_ptr<NSColor> colorStroke_;
  std::shared_ptr<NSGradient> gradientStroke_;
  bool bStrokeRadialGdt_ = false;
  float fStrokeGdtDegree_ = 0;
  NSPoint ptStrokeGdtCenter_;
  bool bEnableFill_ = false;
  bool bFillWithGdt_ = false;
  std::shared_ptr<NSColor> colorFill_;
  std::shared_ptr<NSGradient> gradientFill_;
  bool bFillRadialGdt_ = false;
  float fFillGdtDegree_ = 0;
  NSPoint ptFillGdtCenter_;
  std::optional<std::string> strLayerTitle_;
  DrawBase* group_ = nullptr;
  float fRotateDegree_ = 0;
  bool bVisible_ = true;
  bool bLocked_ = false;
  bool bSmooth_ = true;
  bool bEnableShadow_ = false;
  std::shared_ptr<NSShadow> shadow_;
  bool bEnableInnerShadow_ = false;
  std::shared_ptr<NSShadow> shadowInner_;
  bool bEnableReflection_ = false;
  float fReflection_ = 0;
  float fReflectionDis_ = 0;
  bool bCreatingWithEvent_ = false;
  bool bRotating_ = false;
  bool bResizing_ = false;
  bool bEditingStrokeGradient_ = false;
  bool bEditingFillGradient_ = false;
  bool bResizingByDragging_ = false;
  bool bAdjustingByDragging_ = false;
  bool _enableStrokeOutline = false;
  float _strokeOutlineWidth = 0;
  std::shared_ptr<NSColor> _strokeOutlineColor;

 private:
  static float normalizedDegree(float degrees);
  void encodeStroke(NSCoder& coder) const;
  void encodeFill(NSCoder& coder) const;
  void encodeEffects(NSCoder& coder) const;
  void decodeStroke(NSCoder& coder);
  void decodeFill(NSCoder& coder);
  void decodeEffects(NSCoder& coder);
  void putStrokeAttributes(AttributeWriter& out) const;
  void putFillAttributes(AttributeWriter& out) const;
  void applyStrokeAttributes(AttributeReader& in);
  void applyFillAttributes(AttributeReader& in);
  bool hasClosedPath() const;

  void drawReflection();
  void paintFill(const NSBezierPath& path) const;
  /// Answers whether a fill was painted.
  bool drawFillOfPath(const NSBezierPath& path, bool hasShadow) const;
  void drawStrokeOfPath(const NSBezierPath& path, bool hasShadow, bool fillDrawn) const;
  void paintStrokeGradient(const NSBezierPath& path, const ZTArrowPathInfo* arrowPathInfo,
                           bool hasShadow) const;
  void paintTranslucentArrow(const NSBezierPath& path, const ZTArrowPathInfo& arrowPathInfo) const;
  void _drawStrokeWithArrowAndOutline(const NSBezierPath& path, bool hasShadow) const;
  void drawStrokeOutline(const NSBezierPath& line, const ZTArrowPathInfo* info, bool translucent,
                         bool insideLayer) const;
};

using DrawArray = std::vector<std::shared_ptr<DrawBase>>;
