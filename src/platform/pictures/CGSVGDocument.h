#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/pictures/PictureFailure.h"
#include "platform/pictures/PictureSession.h"

class CGContext;
class NSBitmapImageRep;
class NSData;
struct HelperPicture;

/// An SVG picture, read and drawn by paint-picture-helper. May be used by several threads.
struct CGSVGDocument {
  std::shared_ptr<const HelperPicture> picture;
  NSSize canvasSize;
};
using CGSVGDocumentRef = std::shared_ptr<const CGSVGDocument>;

/// Null when the data is no SVG picture or the helper cannot tell. `failure` may be null; it then
/// takes the reason.
CGSVGDocumentRef CGSVGDocumentCreateFromData(const std::shared_ptr<const NSData>& data,
                                             SVGEngine engine = SVGEngine::system,
                                             PictureFailure* failure = nullptr);
/// The natural size in user space units, both sides finite and 0 or more; zero for null.
NSSize CGSVGDocumentGetCanvasSize(const CGSVGDocumentRef& document);
/// Draws the picture in its natural size at the origin of user space, upright, as sharp as the
/// context's pixels are. Nothing when that fails.
void CGContextDrawSVGDocument(CGContext& context, const CGSVGDocumentRef& document);
/// Lets the document go.
void CGSVGDocumentRelease(CGSVGDocumentRef& document);

/// A bitmap of whole pixels over which the picture is stretched, which takes less than making a
/// document of it first. Null when a side of the bitmap or of the picture's natural size is below
/// 1, for bitmaps larger than a canvas, and when the picture cannot be drawn. `failure` may be
/// null; it then takes the reason.
std::shared_ptr<NSBitmapImageRep> stretchedSVG(const std::shared_ptr<const NSData>& data,
                                               SVGEngine engine, const NSSize& size,
                                               PictureFailure* failure = nullptr);
/// The same over `rect` of the bitmap (origin at the bottom left); the rest stays transparent.
std::shared_ptr<NSBitmapImageRep> bitmapOfSVGDocument(const CGSVGDocumentRef& document,
                                                      const NSSize& size, const NSRect& rect,
                                                      PictureFailure* failure = nullptr);
