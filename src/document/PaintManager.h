#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "document/DirtyRectangles.h"
#include "draw/core/DrawBase.h"
#include "platform/foundation/NSObject.h"
#include "platform/foundation/PaintExport.h"
#include "platform/pictures/PictureFailure.h"
#include "platform/pictures/PictureSession.h"

class DrawGroup;
class DrawingRecord;
class DrawImage2;
class NSBitmapImageRep;
class NSColor;
class NSData;
class NSImage;
class NSMutableData;
struct CanvasView;
struct PixelBox;
struct LayerDrawsStatus;

/// What resizing a canvas does to the draws on it.
enum class ResampleLayer : uint8_t { no, yes };

/// What a copy of a document in another size does to its draws.
enum class ScaleDrawing : uint8_t { no, yes };

/// Why a file is not a document, as integers that callers know.
enum PaintDataError : int64_t {
  kPaintDataSuccess = 0,
  /// No data, no keyed archive, no document in it, or one that cannot be decoded.
  kPaintDataUnreadable = 1,
  /// Written by a newer version of the format.
  kPaintDataNewerFormat = 2,
  /// The canvas has more than limits::kMaxCanvasPixels pixels.
  kPaintDataCanvasTooLarge = 3,
};

/// What a file says of itself, empty where it says nothing or something of another kind. Anybody
/// can write anything there.
struct PaintDataFacts {
  int64_t version = 0;              ///< of the format; 0 when it does not say
  std::optional<double> savedDate;  ///< seconds since 1970-01-01 00:00 UTC
  std::string application;
  std::string bundleIdentifier;
  std::string shortVersion;  ///< of the application, for people
  std::string buildVersion;
};

/// Which of the two bitmaps of a document are stale.
enum ImageRefreshControl : int64_t {
  kImagesCurrent = 0,
  /// The full image must be recomposed from the buffer.
  kRefreshFullImage = 1,
  /// The buffer must be rebuilt too.
  kRebuildBuffer = 2,
};

/// A document: canvas size in whole pixels, its draws bottom first, an optional background draw
/// (always element 0 of the list), and the bitmaps they are composed into.
///
/// Composition draws into the calling thread's graphics context; a document is composed on one
/// thread at a time.
class PAINT_API PaintManager : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }

  // ---- New documents. Null when the size would not be that of a canvas.
  /// An empty, transparent canvas; fractions of a pixel are dropped.
  static std::shared_ptr<PaintManager> initWithSize(NSSize size);
  /// A canvas of the size of a bitmap, which is its background.
  static std::shared_ptr<PaintManager> initWithImageRep(
      const std::shared_ptr<NSBitmapImageRep>& image);
  static std::shared_ptr<PaintManager> initWithImage(const std::shared_ptr<NSImage>& image);
  /// A canvas of the natural size of an SVG document, which is its background.
  static std::shared_ptr<PaintManager> initWithSVG(const std::shared_ptr<NSData>& data);
  /// A canvas of the size of a draw, which is moved to the origin and becomes the background.
  static std::shared_ptr<PaintManager> initWithBackgroundDraw(
      const std::shared_ptr<DrawImage2>& draw);

  // ---- The file.
  /// Whether the data is an archive that holds a document (of any version).
  static bool detectPaintData(const std::shared_ptr<const NSData>& data);
  /// What the file says of itself; nothing when it is no document (of any version).
  static std::optional<PaintDataFacts> factsOfPaintData(const std::shared_ptr<const NSData>& data);
  /// The document in a file's data, or null. `resolution` and `error` may be null; a resolution
  /// that the file does not hold, or holds as 0, is left untouched.
  static std::shared_ptr<PaintManager> paintMgrWithPaintData(
      const std::shared_ptr<const NSData>& data, double* resolution, int64_t* error);
  /// The file's data; the resolution is stored when greater than 0. Throws NSException when a draw
  /// cannot be archived.
  std::shared_ptr<NSMutableData> paintDataWithResolution(double resolution) const;

  bool initWithCoder(NSCoder& coder) override;
  void encodeWithCoder(NSCoder& coder) const override;

  // ---- Canvas.
  NSSize size() const { return size_; }
  /// Sets the canvas size in whole pixels and drops both bitmaps.
  void setSize(NSSize size);
  const std::shared_ptr<NSColor>& backgroundColor() const { return _backgroundColor; }
  /// No effect when the same object is given again.
  void setBackgroundColor(std::shared_ptr<NSColor> color);
  bool maskBackground() const { return bMaskWithBackground_; }
  void setMaskBackground(bool mask);

  // ---- The draw list.
  const DrawArray& allDraws() const { return aryDraw_; }
  /// The last element, null for an empty list.
  std::shared_ptr<DrawBase> toppestDraw() const;
  /// The top-level draws that paint something.
  DrawArray visibleDraws() const;
  const std::shared_ptr<DrawImage2>& backgroundDraw() const { return drawBackground_; }
  /// Makes a draw the background, element 0 of the list; null removes the background draw.
  void setBackgroundDraw(std::shared_ptr<DrawImage2> draw);
  /// Gives the background draw a copy of the bitmap, at the origin and in its size, or makes a
  /// background draw for it; null removes the background draw.
  void setBackgroundImage(const std::shared_ptr<NSBitmapImageRep>& image);
  /// The first top-level group whose own sub-draws contain the draw; null for top-level draws.
  DrawGroup* groupForDraw(const DrawBase* draw) const;
  /// Appends; refuses null and a draw that is in the list already. A draw that is in a group
  /// leaves it, here and wherever a draw is put in the list.
  bool addDraw(const std::shared_ptr<DrawBase>& draw);
  /// Inserts below the element at `index`; refuses index 0 while there is a background draw.
  bool insertDraw(const std::shared_ptr<DrawBase>& draw, uint64_t index);
  /// Removes a top-level draw, or a sub-draw of a top-level group.
  bool removeDraw(const std::shared_ptr<DrawBase>& draw);
  /// Whether a draw is in the top-level list.
  bool containsDraw(const DrawBase* draw) const;
  /// Place in the top-level list; nothing for draws that are not in it.
  std::optional<size_t> indexOfDraw(const DrawBase* draw) const;
  /// The visible top-level draws that paint into the rectangle, bottom first.
  DrawArray drawsInRect(const NSRect& rect) const;

  // Changes of the order. Selected draws move among their neighbours: in the top-level list, and
  // inside each top-level group that is not selected itself. All answer whether anything moved, and
  // take time linear in the number of draws.
  using Selection = std::span<const std::shared_ptr<DrawBase>>;
  bool canMoveDrawsUp(Selection draws) const;
  bool canMoveDrawsDown(Selection draws) const;
  bool moveDrawsToFront(Selection draws);
  /// Just above the background draw.
  bool moveDrawsToBack(Selection draws);
  /// One step. A selected background draw is moved like any other.
  bool moveUpDraws(Selection draws);
  /// One step; never below the background draw.
  bool moveDownDraws(Selection draws);
  /// The draws of the list and of its groups that are selected, bottom first; a group comes before
  /// its sub-draws.
  DrawArray drawsInLayerOrder(Selection draws) const;
  /// Moves draws, in layer order, to below what is now element `atIndex` of a top-level group or,
  /// without a group, of the list. Refuses draws that are not in the document, the background
  /// draw, the group itself, and places beyond the end or below the background draw.
  bool moveDraws(Selection draws, const std::shared_ptr<DrawBase>& toDraw, uint64_t atIndex);
  /// Which draws are where: the list, what its groups hold, the background draw.
  LayerDrawsStatus savedLayerDrawsStatus() const;
  /// Puts every draw back to where it was; draws that have come since leave.
  void restoreFromLayerStatus(const LayerDrawsStatus& status);

  /// Two top-level draws or more, none of them the background draw.
  bool canGroupDraws(Selection draws) const;
  /// Puts the draws, in list order, into a new group at the place of the topmost one. Answers the
  /// group, or null.
  std::shared_ptr<DrawGroup> groupDraws(Selection draws);
  /// The same with a group that is not in the document yet and whose sub-draws, if any, leave it.
  bool groupDraws(Selection draws, const std::shared_ptr<DrawGroup>& withDraw);
  /// Whether a top-level group is among the draws.
  bool canUnGroupDraws(Selection draws) const;
  /// Puts the sub-draws of top-level groups in the place of their group.
  bool unGroupDraws(Selection draws);
  /// Puts another draw in the place of a top-level draw or of a sub-draw of a top-level group. The
  /// background draw can only be replaced by a DrawImage2.
  bool replaceDraw(const std::shared_ptr<DrawBase>& draw,
                   const std::shared_ptr<DrawBase>& withDraw);

  /// Moves all draws so that the rectangle's lower left corner becomes the origin, and gives the
  /// canvas its size in whole pixels. Refuses rectangles smaller than a pixel and too large ones.
  bool cropWithRect(const NSRect& rect);
  /// Gives the canvas another size in whole pixels. Resampling scales the draws and their line
  /// widths with it; otherwise they move so that the anchor, a place on the old canvas and on the
  /// new one in fractions of their sizes, stays under them. Refuses what is no canvas size.
  bool resizeToSize(NSSize size, ResampleLayer resampleLayer, NSPoint anchorPoint);
  /// A copy of the document in another size, with scaled draws or with the same ones. Null for
  /// what is no canvas size.
  std::shared_ptr<PaintManager> scaledPaintWithSize(NSSize size, ScaleDrawing scaleDrawing) const;

  // ---- Composition.
  /// The composed canvas, refreshed first when needed. Null when it is too large.
  std::shared_ptr<NSBitmapImageRep> fullImage();
  /// The same picture of a document that is shown once and not changed: composed in one bitmap, not
  /// in two, and not kept.
  std::shared_ptr<NSBitmapImageRep> composedImage() { return composedImage(1); }
  /// The same picture at a scale: so many pixels a canvas unit, sides rounded up. The canvas's
  /// upper left corner is that of the bitmap. Null for scales below kSmallestScale, or such that
  /// the result is larger than any bitmap.
  std::shared_ptr<NSBitmapImageRep> composedImage(CGFloat scale);
  /// The same pixels of a part of the canvas alone, in canvas units: what of the rectangle, grown
  /// to whole pixels of the bitmap, lies on the canvas. Null where that is nothing.
  std::shared_ptr<NSBitmapImageRep> composedImage(const NSRect& part, CGFloat scale = 1);
  /// The longest canvas has more than a pixel at this one.
  static constexpr CGFloat kSmallestScale = 1.0 / (1 << 20);
  /// What composing the canvas paints, as data; without failing pictures, which are found when
  /// their pixels are made.
  std::shared_ptr<const DrawingRecord> recordedDrawing();
  /// The composed canvas as it stands: maybe null, maybe stale.
  const std::shared_ptr<NSBitmapImageRep>& imageWithoutRefreshing() const { return image_; }
  void refreshImage();
  /// Marks as stale what a change of these draws makes stale.
  void respondToChangeOfDraws(std::span<const std::shared_ptr<DrawBase>> draws);
  int64_t imageRefreshControl() const { return _imageRefreshControl; }
  void setImageRefreshControl(int64_t control);
  /// Drops both bitmaps; the next fullImage composes them again.
  void clearMemeryBuffer();

  // ---- Embedded pictures. What cannot be drawn is left out, and the rest of the document is
  // drawn.
  /// The pictures that the last composition left out, of those that it painted.
  const std::vector<LeftOutPicture>& leftOutPictures() const { return pictures_.leftOut(); }
  /// Why the picture of a draw of this document cannot be drawn; none when it can, and for draws
  /// without one. Reads and draws it.
  PictureFailure pictureFailure(DrawBase& draw);
  /// The same, and what the picture is.
  PictureFacts pictureFacts(DrawBase& draw);
  /// Who draws SVG pictures that have not been drawn yet; the system's renderer by default.
  void setSVGEngine(SVGEngine engine) { pictures_.setEngine(engine); }
  /// What each picture, and all of a composition, may take.
  void setPictureLimits(const PictureLimits& limits) { pictures_.setLimits(limits); }

  /// Called after each top-level draw that a composition has painted, with how many there are to
  /// paint. For people who wait; an empty handler, the default, is none.
  using ProgressHandler = std::function<void(size_t painted, size_t total)>;
  void setProgressHandler(ProgressHandler handler) { progressHandler_ = std::move(handler); }

 private:
  void raiseRefreshControl(int64_t control);
  /// The same for a change of some top-level draws and of nothing else.
  void raiseRefreshControl(int64_t control, Selection changed);
  void eraseDraw(const DrawBase* draw);
  /// Makes a draw that a group holds one that no group holds.
  void takeOutOfGroup(const std::shared_ptr<DrawBase>& draw);
  /// Before another draw covers it.
  void paintToppestDrawIntoBuffer();
  /// The first index that an ordinary draw may have.
  size_t lowestIndex() const { return drawBackground_ != nullptr ? 1 : 0; }
  /// Reorders the list from index `lowest` on, and each group that is not selected, by `order`,
  /// which answers whether it changed a range.
  template <class Order>
  bool reorder(Selection selection, size_t lowest, const Order& order);
  /// Makes the list and the groups in it hold other draws, and marks as stale what that changes;
  /// answers whether it changes anything.
  bool rearrange(DrawArray list, const std::vector<std::pair<DrawGroup*, DrawArray>>& inside,
                 Selection changed);
  void convertLegacyDraws();
  void rebuildBuffer();
  /// Paints the background colour and the first `count` draws into the bitmap in focus.
  void paintDraws(NSBitmapImageRep* bitmap, size_t count) const;
  /// What masks the picture; null when nothing does.
  std::shared_ptr<const NSBitmapImageRep> backgroundMask() const;
  void paintBackgroundColor(const NSRect& rect) const;
  /// Repaints parts of the buffer as painting all of it would; answers whether that was possible.
  bool repaintBuffer(std::vector<NSRect> parts);
  bool repaintPart(const NSRect& part);
  /// How a bitmap of the size of a box of device pixels shows them.
  CanvasView viewOf(const PixelBox& shown, CGFloat scale) const;
  void composeFullImage(const NSBitmapImageRep* mask);
  void applyBackgroundMask(const NSBitmapImageRep& mask);

  NSSize size_;
  DrawArray aryDraw_;
  std::shared_ptr<DrawImage2> drawBackground_;
  bool bMaskWithBackground_ = false;
  std::shared_ptr<NSColor> _backgroundColor;
  std::shared_ptr<NSBitmapImageRep> image_;
  std::shared_ptr<NSBitmapImageRep> imageBuffer_;
  int64_t _imageRefreshControl = kImagesCurrent;
  DirtyRectangles areas_;
  ProgressHandler progressHandler_;
  PictureSession pictures_;
};
