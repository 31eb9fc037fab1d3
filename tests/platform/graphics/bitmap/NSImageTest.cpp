#include <gtest/gtest.h>

#include "platform/foundation/archive/NSKeyedArchiver.h"
#include "platform/foundation/archive/NSKeyedUnarchiver.h"
#include "platform/graphics/GraphicsClasses.h"
#include "platform/graphics/bitmap/EncodedBitmap.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/bitmap/NSImage.h"
#include "platform/graphics/color/NSColor.h"
#include "support/Archives.h"
#include "support/Bitmaps.h"

namespace {

class PictureArchive : public testing::Test {
 protected:
  PictureArchive() {
    registerGraphicsClasses();
    coder_.emplace(madeArchive("good/pictures"));
  }
  std::optional<NSKeyedUnarchiver> coder_;
};

template <class T>
std::shared_ptr<T> throughArchive(const std::shared_ptr<T>& object) {
  return std::dynamic_pointer_cast<T>(NSKeyedUnarchiver::unarchiveObjectWithData(
      NSKeyedArchiver::archivedDataWithRootObject(object)));
}

constexpr Pixel kRed{255, 0, 0, 255};
constexpr Pixel kBlue{0, 0, 255, 255};

}  // namespace

TEST_F(PictureArchive, BitmapsOfSeveralWriters) {
  for (const char* key : {"bitmap", "inline", "png", "other key", "cached"}) {
    const auto encoded = coder_->decodeObjectOfClass<EncodedBitmap>(key);
    ASSERT_NE(encoded, nullptr) << key;
    const auto bitmap = encoded->bitmap();
    ASSERT_NE(bitmap, nullptr) << key;
    EXPECT_EQ(bitmap->size(), (NSSize{1, 1})) << key;
    EXPECT_EQ(pixelAt(*bitmap, 0, 0), kRed) << key;
    EXPECT_EQ(bitmap->hasAlpha(), std::string_view(key) != "png") << key;
  }
  const auto encoded = coder_->decodeObjectOfClass<EncodedBitmap>("with direction");
  ASSERT_NE(encoded, nullptr);
  const auto blue = encoded->bitmap();
  ASSERT_NE(blue, nullptr);
  EXPECT_EQ(encoded->bitmap(), blue);  // shared while somebody has it
  EXPECT_EQ(blue->size(), (NSSize{2, 1}));
  EXPECT_EQ(pixelAt(*blue, 1, 0), kBlue);
  for (const char* key : {"no picture", "cut", "nothing"}) {
    const auto unreadable = coder_->decodeObjectOfClass<EncodedBitmap>(key);
    EXPECT_TRUE(unreadable == nullptr || unreadable->bitmap() == nullptr) << key;
  }
}

TEST_F(PictureArchive, ImagesKeepTheirLargestRepresentation) {
  const struct {
    const char* key;
    int64_t width;
  } kCases[] = {{"image", 1},           {"image of two", 2},  {"image, flat", 2},
                {"image with data", 1}, {"image by name", 0}, {"image of a page", 0},
                {"image in itself", 0}};
  for (const auto& [key, width] : kCases) {
    const auto image = coder_->decodeObjectOfClass<NSImage>(key);
    ASSERT_NE(image, nullptr) << key;
    const auto bitmap = image->representation();
    EXPECT_EQ(bitmap == nullptr ? 0 : bitmap->pixelsWide(), width) << key;
  }
}

TEST_F(PictureArchive, PatternColorsSurviveWriting) {
  auto color = coder_->decodeObjectOfClass<NSColor>("pattern");
  ASSERT_NE(color, nullptr);
  for (int i = 0; i < 2; ++i) {
    const auto image = std::dynamic_pointer_cast<NSImage>(color->patternImage());
    ASSERT_NE(image, nullptr);
    ASSERT_NE(image->representation(), nullptr);
    EXPECT_EQ(pixelAt(*image->representation(), 0, 0), kRed);
    color = throughArchive(color);
  }
}

TEST_F(PictureArchive, BitmapsOnDisk) {
  const auto bitmap = randomBitmap(2, 1, 5);
  const auto archive = NSKeyedArchiver::archivedDataWithRootObject(bitmap);
  const std::string text = describeArchive(archive->bytes());
  // The file is an object of its own: who asks for an object is given no bytes that stand inline.
  EXPECT_NE(text.find("  1 {NSTIFFRepresentation: ->2, $class: ->3}\n  2 data("), std::string::npos)
      << text;
  const char* const classes =
      "  3 {$classname: 'NSBitmapImageRep', "
      "$classes: ['NSBitmapImageRep', 'NSImageRep', 'NSObject']}\n";
  EXPECT_NE(text.find(classes), std::string::npos) << text;
}

TEST_F(PictureArchive, BitmapsSurviveWritingExactly) {
  const auto bitmap = randomBitmap(37, 21, 5);
  for (const bool hasAlpha : {true, false}) {
    auto source = bitmap;
    if (!hasAlpha) {
      source = makeBitmap(37, 21, [&](int64_t x, int64_t y) {
        Pixel pixel = pixelAt(*bitmap, x, y);
        pixel[3] = 255;
        return pixel;
      });
      source->setHasAlpha(false);
    }
    const auto archive = NSKeyedArchiver::archivedDataWithRootObject(source);
    const auto encoded = std::dynamic_pointer_cast<EncodedBitmap>(
        NSKeyedUnarchiver::unarchiveObjectWithData(archive));
    ASSERT_NE(encoded, nullptr);
    const auto read = encoded->bitmap();
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(maxDifference(*read, *source), 0);
    EXPECT_EQ(read->hasAlpha(), hasAlpha);
  }
}
