#pragma once

#include "platform/foundation/Geometry.h"
#include "platform/pictures/PictureFailure.h"

class DrawBase;
class NSBezierPath;
class NSBitmapImageRep;
class NSShadow;

// Steps of drawing a bitmap into a rectangle, shared by the draws that show one. They draw into the
// current context, which must exist.

/// Whether the clip of the current context lets show anything near the rectangle. False without a
/// context, true for rectangles that are not finite.
bool mayShow(const NSRect& rect);

/// Gets the current context ready: source-over, antialiased, pictures resampled.
void preparePictureContext();

/// Moves the user space so that the rectangle's origin falls on whole units.
void snapToPixels(const NSRect& bounds);

/// Stretches the whole bitmap over the rectangle. The fraction (0 to 1) is its opacity and takes
/// the place of the context's.
void drawPicture(const NSBitmapImageRep& image, const NSRect& bounds, CGFloat fraction);

/// The shadow that the surroundings cast onto the picture, inside `bounds`. `path` is the picture's
/// outline.
void drawPictureInnerShadow(const NSBitmapImageRep& image, const NSRect& bounds,
                            const NSBezierPath& path, const NSShadow& shadow, CGFloat fraction);

/// Notes in the session of the document that is drawn that a draw's picture is left out. Nothing
/// when there is no reason.
void reportLeftOutPicture(const DrawBase& draw, PictureFailure failure);
