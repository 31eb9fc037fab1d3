#include "svg/ZTSVGTool.h"

#include <algorithm>
#include <new>
#include <string>
#include <string_view>

#include "platform/foundation/Unicode.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/pictures/CGSVGDocument.h"
#include "platform/pictures/NSSVGImageRep.h"
#include "platform/pictures/PictureHelper.h"
#include "svg/CGSVGRenderer.h"
#include "svg/tree/SVGDocument.h"

using SVGNative::CGSVGRenderer;
using SVGNative::SVGDocument;

namespace {

std::string_view textOf(const NSData& data) {
  return {reinterpret_cast<const char*>(data.bytes().data()), data.length()};
}

struct Picture {
  std::shared_ptr<CGSVGRenderer> renderer;
  std::unique_ptr<SVGDocument> document;  // null when the data is no picture
};

Picture readPicture(const NSData* data) {
  Picture picture;
  if (!ZTSVGTool::isSVGFormatData(data) || !isUTF8(textOf(*data))) return picture;
  picture.renderer = std::make_shared<CGSVGRenderer>();
  picture.document = SVGDocument::CreateSVGDocument(std::string(textOf(*data)), picture.renderer);
  return picture;
}

// Where the picture goes on the bitmap: all of it, or the largest part that keeps its proportions.
NSRect drawingRect(const NSSize& target, const NSSize& natural, bool keepAspectRatio) {
  NSRect rect{{0, 0}, target};
  if (!keepAspectRatio) return rect;
  const CGFloat ratio = natural.width / natural.height;
  const CGFloat fitWidth = ratio * target.height;
  if (target.width < fitWidth) {
    rect.size.height = target.width / ratio;
    rect.origin.y = (target.height - rect.size.height) * 0.5;
  } else {
    rect.size.width = fitWidth;
    rect.origin.x = (target.width - fitWidth) * 0.5;
  }
  return rect;
}

// Draws into `rect` of the bitmap. Pictures count y downwards.
void drawPicture(const Picture& picture, const NSSize& natural, const NSRect& rect,
                 CGFloat targetHeight, const std::shared_ptr<NSBitmapImageRep>& bitmap) {
  const ZTFocusScope focus(bitmap);
  const std::shared_ptr<NSGraphicsContext> current = NSGraphicsContext::currentContext();
  const std::shared_ptr<CGContext> port(current, current->graphicsPort());
  port->concatenate(CGAffineTransformMakeTranslation(rect.origin.x, targetHeight - rect.origin.y));
  port->concatenate(CGAffineTransformMakeScale(rect.size.width / natural.width,
                                               -rect.size.height / natural.height));
  picture.renderer->SetGraphicsContext(port);
  picture.document->Render(static_cast<float>(natural.width), static_cast<float>(natural.height));
  picture.renderer->SetGraphicsContext(nullptr);
}

NSSize targetSize(const NSSize& asked, const NSSize& natural) {
  return {asked.width >= 1 ? asked.width : natural.width,
          asked.height >= 1 ? asked.height : natural.height};
}

std::shared_ptr<NSBitmapImageRep> rasterise(const NSData* data, const NSSize& imageSize,
                                            bool keepAspectRatio) {
  const Picture picture = readPicture(data);
  if (picture.document == nullptr) return nullptr;
  const NSSize natural = NSMakeSize(picture.document->Width(), picture.document->Height());
  if (!(natural.width > 0 && natural.height > 0)) return nullptr;
  const NSSize target = targetSize(imageSize, natural);
  std::shared_ptr<NSBitmapImageRep> bitmap;
  if (!InitImageRep(target, &bitmap)) return nullptr;
  drawPicture(picture, natural, drawingRect(target, natural, keepAspectRatio), target.height,
              bitmap);
  return bitmap;
}

/// For what the caller keeps as long as it is used.
std::shared_ptr<const NSData> borrowed(const NSData* data) {
  return {std::shared_ptr<const void>(), data};
}

/// Null when the data is no picture.
CGSVGDocumentRef documentOf(const NSData* data, SVGEngine engine, PictureFailure* failure) {
  if (failure != nullptr) *failure = PictureFailure::unreadable;
  if (!ZTSVGTool::isSVGFormatData(data)) return nullptr;
  return CGSVGDocumentCreateFromData(borrowed(data), engine, failure);
}

}  // namespace

bool ZTSVGTool::canUseSystemSVGFramework() {
  const PictureSession* const session = PictureSession::current();
  const bool isWanted = session == nullptr || session->engine() == SVGEngine::system;
  return isWanted && PictureHelper::shared().hasSystemSVG();
}

bool ZTSVGTool::supportsVectorSVGImage() {
  return PictureHelper::shared().hasSystemSVG();
}

NSSize ZTSVGTool::originalSizeOfSVG(const NSData* data) {
  return canUseSystemSVGFramework() ? originalSizeOfSVG(data, SVGEngine::system) : NSZeroSize;
}

NSSize ZTSVGTool::originalSizeOfSVG(const NSData* data, SVGEngine engine, PictureFailure* failure) {
  return CGSVGDocumentGetCanvasSize(documentOf(data, engine, failure));
}

std::shared_ptr<NSBitmapImageRep> ZTSVGTool::imageWithSVGData(const NSData* data,
                                                              const NSSize& imageSize,
                                                              bool keepAspectRatio) {
  if (!canUseSystemSVGFramework()) return nullptr;
  return imageWithSVGData(data, imageSize, keepAspectRatio, SVGEngine::system);
}

std::shared_ptr<NSBitmapImageRep> ZTSVGTool::imageWithSVGData(const NSData* data,
                                                              const NSSize& imageSize,
                                                              bool keepAspectRatio,
                                                              SVGEngine engine,
                                                              PictureFailure* failure) {
  if (!keepAspectRatio && imageSize.width >= 1 && imageSize.height >= 1 && isSVGFormatData(data)) {
    return stretchedSVG(borrowed(data), engine, imageSize, failure);
  }
  const CGSVGDocumentRef document = documentOf(data, engine, failure);
  const NSSize natural = CGSVGDocumentGetCanvasSize(document);
  if (natural.width < 1 || natural.height < 1) {
    if (document != nullptr && failure != nullptr) *failure = PictureFailure::unreadable;
    return nullptr;
  }
  const NSSize target = targetSize(imageSize, natural);
  return bitmapOfSVGDocument(document, target, drawingRect(target, natural, keepAspectRatio),
                             failure);
}

std::shared_ptr<_NSSVGImageRep> ZTSVGTool::vectorImageWithSVGData(
    const std::shared_ptr<const NSData>& data) {
  if (!supportsVectorSVGImage() || !isSVGFormatData(data.get())) return nullptr;
  auto image = _NSSVGImageRep::initWithData(data);
  if (image == nullptr) return nullptr;
  // Drawn once, so that it is wholly read before somebody has it.
  const ZTFocusScope focus(NSBitmapImageRep::create(1, 1));
  image->drawInRect(NSMakeRect(0, 0, 1, 1));
  return image;
}

bool ZTSVGTool::isSVGFormatData(const NSData* data) {
  if (data == nullptr) return false;
  constexpr size_t kSearched = 100;
  const std::string_view text = textOf(*data);
  const std::string_view tail = text.substr(text.size() - std::min(text.size(), kSearched));
  return tail.rfind("</svg>") != std::string_view::npos;
}

NSSize ZTSVGTool::originalSizeOfNativeSVG(const NSData* data) {
  try {
    const Picture picture = readPicture(data);
    if (picture.document == nullptr) return NSZeroSize;
    return NSMakeSize(picture.document->Width(), picture.document->Height());
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return NSZeroSize;
  }
}

std::shared_ptr<NSBitmapImageRep> ZTSVGTool::imageWithNativeSVGData(const NSData* data,
                                                                    const NSSize& imageSize,
                                                                    bool keepAspectRatio) {
  try {
    return rasterise(data, imageSize, keepAspectRatio);
  } catch (const std::bad_alloc&) {
    throw;
  } catch (...) {
    return nullptr;
  }
}
