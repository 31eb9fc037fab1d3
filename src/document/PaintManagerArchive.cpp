// The document's file: an outer keyed archive with facts about the file around an inner keyed
// archive of the PaintManager.
#include <chrono>
#include <optional>
#include <unordered_set>
#include <utility>

#include "document/DocumentClasses.h"
#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/core/PaintManagerContext.h"
#include "draw/image/DrawImage.h"
#include "draw/image/DrawImage2.h"
#include "platform/foundation/Convert.h"
#include "platform/foundation/Limits.h"
#include "platform/foundation/NSException.h"
#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSBundle.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/color/NSColor.h"

namespace {

constexpr const char* kPaintData = "PaintData";
constexpr const char* kResolution = "Resolution";
constexpr const char* kVersion = "Version";
// The doubled "n" is what files hold.
constexpr const char* kCannvasSize = "CannvasSize";
constexpr const char* kObjectsCount = "ObjectsCount";
constexpr const char* kSavedDate = "SavedDate";
constexpr const char* kAppName = "AppName";
constexpr const char* kBundleIdentifier = "BundleIdentifier";
constexpr const char* kAppShortVersion = "AppShortVersion";
constexpr const char* kAppVersion = "AppVersion";

constexpr const char* kBackingScale = "BackingScale";
constexpr const char* kCanvasSize = "CanvasSize";
constexpr const char* kDrawsArray = "DrawsArray";
constexpr const char* kHasBackground = "HasBackground";
constexpr const char* kMaskWithBackground = "MaskWithBackground";
constexpr const char* kBackgroundColor = "BackgroundColor";

double secondsSince1970() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration<double>(now).count();
}

/// Toward zero through a 32-bit integer, whose largest number stands for all that are larger.
CGFloat truncatedSide(CGFloat side) {
  return static_cast<CGFloat>(clampToInteger<int32_t>(side));
}

/// The context of the draws to come; null when the file is older than both facts.
std::shared_ptr<PaintManagerContext> decodeContext(NSCoder& coder) {
  auto context = std::make_shared<PaintManagerContext>();
  const bool hasScale = coder.containsValueForKey(kBackingScale);
  const bool hasVersion = coder.containsValueForKey(kVersion);
  if (hasScale) context->setSavedBackingScale(coder.decodeDoubleForKey(kBackingScale));
  if (hasVersion) context->setSavedVersion(coder.decodeIntegerForKey(kVersion));
  return hasScale || hasVersion ? context : nullptr;
}

/// The facts of the outer archive that the reader wants.
struct OuterArchive {
  int64_t version = 0;
  std::shared_ptr<NSData> paintData;
};

/// Nothing when the archive holds no document. The inner data of a newer format is not touched.
/// The resolution is known even when the inner data then turns out to be damaged.
std::optional<OuterArchive> readOuterArchive(const std::shared_ptr<const NSData>& data,
                                             double* resolution) {
  NSKeyedUnarchiver unarchiver(data);
  if (!unarchiver.containsValueForKey(kPaintData)) return std::nullopt;
  OuterArchive outer;
  outer.version = unarchiver.decodeIntegerForKey(kVersion);
  if (outer.version > DrawBase::version()) return outer;
  if (resolution != nullptr) {
    const double stored = unarchiver.decodeDoubleForKey(kResolution);
    if (stored != 0) *resolution = stored;
  }
  outer.paintData = unarchiver.decodeObjectOfClass<NSData>(kPaintData);
  unarchiver.finishDecoding();
  return outer;
}

}  // namespace

bool PaintManager::detectPaintData(const std::shared_ptr<const NSData>& data) {
  if (data == nullptr || data->length() == 0) return false;
  try {
    return NSKeyedUnarchiver(data).containsValueForKey(kPaintData);
  } catch (const NSException&) {
    return false;
  }
}

std::optional<PaintDataFacts> PaintManager::factsOfPaintData(
    const std::shared_ptr<const NSData>& data) {
  if (!detectPaintData(data)) return std::nullopt;
  PaintDataFacts facts;
  NSKeyedUnarchiver archive(data);
  const auto read = [](const auto& decode) {
    try {
      decode();
    } catch (const NSException&) {
      // One fact of the wrong kind says nothing about the others.
    }
  };
  read([&] { facts.version = archive.decodeIntegerForKey(kVersion); });
  read([&] {
    if (archive.containsValueForKey(kSavedDate)) {
      facts.savedDate = archive.decodeDoubleForKey(kSavedDate);
    }
  });
  const std::pair<const char*, std::string*> texts[] = {
      {kAppName, &facts.application},
      {kBundleIdentifier, &facts.bundleIdentifier},
      {kAppShortVersion, &facts.shortVersion},
      {kAppVersion, &facts.buildVersion}};
  for (const auto& fact : texts) {
    read([&] { *fact.second = archive.decodeStringForKey(fact.first).value_or(""); });
  }
  return facts;
}

std::shared_ptr<PaintManager> PaintManager::paintMgrWithPaintData(
    const std::shared_ptr<const NSData>& data, double* resolution, int64_t* error) {
  registerDocumentClasses();
  const auto fail = [error](PaintDataError code) {
    if (error != nullptr) *error = code;
    return nullptr;
  };
  fail(kPaintDataUnreadable);
  if (data == nullptr || data->length() == 0) return nullptr;
  try {
    const auto outer = readOuterArchive(data, resolution);
    if (!outer) return nullptr;
    if (outer->version > DrawBase::version()) return fail(kPaintDataNewerFormat);
    auto document = std::dynamic_pointer_cast<PaintManager>(
        NSKeyedUnarchiver::unarchiveObjectWithData(outer->paintData));
    if (document == nullptr) return nullptr;
    const NSSize size = document->size();
    if (size.width * size.height > static_cast<CGFloat>(limits::kMaxCanvasPixels)) {
      return fail(kPaintDataCanvasTooLarge);
    }
    fail(kPaintDataSuccess);
    return document;
  } catch (const NSException&) {
    return nullptr;
  }
}

std::shared_ptr<NSMutableData> PaintManager::paintDataWithResolution(double resolution) const {
  const auto inner = NSKeyedArchiver::archivedDataWithRootObject(
      std::shared_ptr<const NSObject>(std::shared_ptr<const NSObject>(), this));
  auto data = std::make_shared<NSMutableData>();
  NSKeyedArchiver archiver(data);
  archiver.setOutputFormat(NSPropertyListBinaryFormat_v1_0);
  archiver.encodeObject(inner, kPaintData);
  if (resolution > 0) archiver.encodeDouble(resolution, kResolution);
  archiver.encodeInteger(DrawBase::version(), kVersion);
  archiver.encodeSize(size_, kCannvasSize);
  archiver.encodeInteger(static_cast<int64_t>(aryDraw_.size()), kObjectsCount);
  archiver.encodeDouble(secondsSince1970(), kSavedDate);
  constexpr std::pair<const char*, const char*> kBundleFacts[] = {
      {kAppName, "CFBundleName"},
      {kBundleIdentifier, "CFBundleIdentifier"},
      {kAppShortVersion, "CFBundleShortVersionString"},
      {kAppVersion, "CFBundleVersion"}};
  for (const auto& [key, fact] : kBundleFacts) {
    archiver.encodeObject(mainBundleObjectForInfoDictionaryKey(fact), key);
  }
  archiver.finishEncoding();
  return data;
}

void PaintManager::encodeWithCoder(NSCoder& coder) const {
  coder.encodeDouble(kMainScreenBackingScale, kBackingScale);
  coder.encodeInteger(DrawBase::version(), kVersion);
  coder.encodeString(NSStringFromSize(size_), kCanvasSize);
  coder.encodeObject(
      std::make_shared<NSMutableArray>(NSArray::Objects(aryDraw_.begin(), aryDraw_.end())),
      kDrawsArray);
  coder.encodeBool(drawBackground_ != nullptr, kHasBackground);
  coder.encodeBool(bMaskWithBackground_, kMaskWithBackground);
  if (_backgroundColor != nullptr) coder.encodeObject(_backgroundColor, kBackgroundColor);
}

bool PaintManager::initWithCoder(NSCoder& coder) {
  if (auto context = decodeContext(coder)) setPaintMangerContext(coder, std::move(context));
  const NSSize size = NSSizeFromString(coder.decodeStringForKey(kCanvasSize).value_or(""));
  size_ = {truncatedSide(size.width), truncatedSide(size.height)};
  if (const auto draws = coder.decodeObjectOfClass<NSArray>(kDrawsArray)) {
    std::unordered_set<const NSObject*> seen;
    for (const auto& object : *draws) {
      // What is no draw cannot be drawn; the rest of the list still can. A draw has one place:
      // a file that names one again would multiply the work.
      auto draw = std::dynamic_pointer_cast<DrawBase>(object);
      if (draw == nullptr || draw->group() != nullptr || !seen.insert(draw.get()).second) continue;
      aryDraw_.push_back(std::move(draw));
    }
  }
  convertLegacyDraws();
  if (coder.decodeBoolForKey(kHasBackground) && !aryDraw_.empty()) {
    if (auto first = std::dynamic_pointer_cast<DrawImage2>(aryDraw_.front())) {
      setBackgroundDraw(std::move(first));
    }
  }
  bMaskWithBackground_ = coder.decodeBoolForKey(kMaskWithBackground);
  _backgroundColor = coder.decodeObjectOfClass<NSColor>(kBackgroundColor);
  return true;
}

void PaintManager::convertLegacyDraws() {
  for (auto& draw : aryDraw_) {
    if (auto converted = convertedLegacyDraw(draw)) {
      draw = std::move(converted);
    } else if (auto* group = dynamic_cast<DrawGroup*>(draw.get())) {
      // One level only: deeper ones stay what they are.
      for (const auto& sub : DrawArray(group->draws())) {
        if (auto replacement = convertedLegacyDraw(sub)) {
          group->replaceDraw(sub.get(), std::move(replacement));
        }
      }
    }
  }
}
