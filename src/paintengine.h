#pragma once

/// All that the shared library offers. A document is read with PaintManager::paintMgrWithPaintData
/// and shown with fullImage; ThumbnailProvider makes thumbnails of files; ZTSVGTool draws SVG.
#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "extension/ThumbnailProvider.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSURL.h"
#include "platform/graphics/bitmap/ImageFiles.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "svg/ZTSVGTool.h"
