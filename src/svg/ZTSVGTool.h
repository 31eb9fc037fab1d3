#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/PaintExport.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"

class NSData;

/// The one door to SVG pictures: recognises, measures and rasterises them. Data may be null
/// everywhere. Nothing throws; every failure gives null or the zero size. Each call is on its own,
/// on any thread.
///
/// There are two renderers: one of the system's, which does not exist here, and the engine in
/// SVGNative. The latter ends the process at arcs that it does not support (see docs/svg.md).
class PAINT_API ZTSVGTool {
 public:
  /// True when "</svg>" stands within the last 100 bytes. Nothing else is looked at.
  static bool isSVGFormatData(const NSData* data);

  /// No system renderer and no vector image class exist here: both answer no, and what depends on
  /// them answers the zero size or null.
  static bool canUseSystemSVGFramework() { return false; }
  static bool supportsVectorSVGImage() { return false; }
  static NSSize originalSizeOfSVG(const NSData* /*data*/) { return NSZeroSize; }
  static std::shared_ptr<NSBitmapImageRep> imageWithSVGData(const NSData* /*data*/,
                                                            const NSSize& /*imageSize*/,
                                                            bool /*keepAspectRatio*/) {
    return nullptr;
  }
  static std::shared_ptr<NSObject> vectorImageWithSVGData(const NSData* /*data*/) {
    return nullptr;
  }

  /// The picture's natural size in whole units, which may be zero or negative.
  static NSSize originalSizeOfNativeSVG(const NSData* data);

  /// The picture on a transparent bitmap of `imageSize`, dimensions below 1 replaced by the
  /// picture's own. It is stretched to the bitmap or, keeping its aspect ratio, as large as fits
  /// and centred. Null also when the picture's own width or height is not above 0, and when the
  /// bitmap cannot be made.
  static std::shared_ptr<NSBitmapImageRep> imageWithNativeSVGData(const NSData* data,
                                                                  const NSSize& imageSize,
                                                                  bool keepAspectRatio);
};
