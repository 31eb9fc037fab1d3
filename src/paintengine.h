#pragma once

/// All that the shared library offers. A document is read with PaintManager::paintMgrWithPaintData
/// and shown with fullImage; ThumbnailProvider makes thumbnails of files; ZTSVGTool draws SVG.
#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "extension/ThumbnailProvider.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSURL.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/codecs/ImageDecoder.h"
#include "platform/graphics/codecs/PNGEncoder.h"
#include "svg/ZTSVGTool.h"
