#pragma once

#include <memory>

#include "platform/foundation/Geometry.h"
#include "platform/foundation/PaintExport.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/pictures/PictureFailure.h"
#include "platform/pictures/PictureSession.h"

class NSData;
class _NSSVGImageRep;

/// The one door to SVG pictures: recognises, measures and rasterises them. Data may be null
/// everywhere. Nothing throws but std::bad_alloc; every failure gives null or the zero size. Each
/// call is on its own, on any thread.
///
/// There are two renderers: the system's (librsvg, where it is installed) and the engine in
/// SVGNative. paint-picture-helper draws with either, in a process of its own. The functions with
/// "Native" in their names draw with the engine in the calling process, which that ends at arcs
/// that the engine does not support (see docs/svg.md).
class PAINT_API ZTSVGTool {
 public:
  /// True when "</svg>" stands within the last 100 bytes. Nothing else is looked at.
  static bool isSVGFormatData(const NSData* data);

  /// Whether the system's renderer is there and what is being drawn may use it (SVGEngine). The
  /// first call of a process starts the helper.
  static bool canUseSystemSVGFramework();
  /// Whether vectorImageWithSVGData can give images.
  static bool supportsVectorSVGImage();

  /// The natural size by the system's renderer: not always whole, zero without that renderer.
  static NSSize originalSizeOfSVG(const NSData* data);
  /// As imageWithNativeSVGData, by the system's renderer. Null also when a side of the picture is
  /// below 1.
  static std::shared_ptr<NSBitmapImageRep> imageWithSVGData(const NSData* data,
                                                            const NSSize& imageSize,
                                                            bool keepAspectRatio);
  /// An image that is drawn as sharp as the context it is drawn into; null when there is none.
  static std::shared_ptr<_NSSVGImageRep> vectorImageWithSVGData(
      const std::shared_ptr<const NSData>& data);

  // The same by a renderer of choice, in the helper. `failure` may be null; it then takes the
  // reason.
  static NSSize originalSizeOfSVG(const NSData* data, SVGEngine engine,
                                  PictureFailure* failure = nullptr);
  static std::shared_ptr<NSBitmapImageRep> imageWithSVGData(const NSData* data,
                                                            const NSSize& imageSize,
                                                            bool keepAspectRatio, SVGEngine engine,
                                                            PictureFailure* failure = nullptr);

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
