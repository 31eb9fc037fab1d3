#pragma once

#include "draw/core/DrawBase.h"
#include "platform/foundation/PaintExport.h"

/// A draw that holds sub-draws, bottom first, and renders them as one object; also the form of a
/// layer. Groups nest. Every sub-draw refers back to its group.
class PAINT_API DrawGroup : public DrawBase {
 public:
  static const NSClass kClass;
  static constexpr size_t kNotFound = static_cast<size_t>(-1);

  DrawGroup() = default;
  ~DrawGroup() override;
  DrawGroup(const DrawGroup&) = delete;
  DrawGroup& operator=(const DrawGroup&) = delete;

  static std::shared_ptr<DrawGroup> initWithDraws(DrawArray draws);
  static bool treatAsOneObject() { return true; }
  const NSClass& classInfo() const override { return kClass; }
  bool classDrawBezierPath() const override { return false; }

  const DrawArray& draws() const { return aryDraws_; }
  /// Draws that are in another group leave it, here and in the functions below.
  /// The group itself and what holds it are left out of the list.
  void setDraws(DrawArray draws);
  /// Refuses null, a draw that is in the group already, the group itself and what holds it, and an
  /// index beyond the count.
  bool insertDraw(const std::shared_ptr<DrawBase>& draw, uint64_t index);
  bool removeDraw(const DrawBase* draw);
  void removeAllDraws();
  /// kNotFound when the draw is not a direct sub-draw.
  size_t indexOfDraw(const DrawBase* draw) const;
  /// Refuses what insertDraw refuses, and a draw to replace that is not in the group.
  bool replaceDraw(const DrawBase* draw, std::shared_ptr<DrawBase> withDraw);

  /// Some sub-draw is visible and not fully transparent.
  bool hasVisibleDraw() const;
  /// Opacity of the first sub-draw whose opacity can be set; 100 when there is none.
  uint64_t opacity() const override;

  void moveByX(CGFloat x, CGFloat y) override;
  void scaleByX(CGFloat x, CGFloat y, NSPoint withCenter, ResizeLineWidth resizeLineWidth) override;

  /// The union of what the visible sub-draws cover.
  NSRect drawRect() const override;
  NSRect renderedRect() const override;

  void drawInImage(NSBitmapImageRep* image) override;
  void _draw(CastShadow cast) override;

  bool canBeRotated() const override;
  bool canBeResized() const override;
  bool canBeResizedFreely() const override;
  bool canBeFliped() const override;
  bool canAdjustOpacity() const override { return false; }

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

 private:
  /// Whether this group is that draw or inside of it.
  bool isInside(const DrawBase* draw) const;
  void adopt(const std::shared_ptr<DrawBase>& draw);
  void drawSubDraws(NSBitmapImageRep* image);

  DrawArray aryDraws_;
};
