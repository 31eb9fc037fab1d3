// Drawing while memory runs out: it throws std::bad_alloc, and changes neither the draw nor what
// the thread draws afterwards.
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <string>
#include <vector>

#include "document/PaintManager.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "support/Bitmaps.h"
#include "support/Documents.h"
#include "support/FailingAllocations.h"
#include "support/RandomDraws.h"

namespace {

constexpr int64_t kSide = 300;

/// The draw on a canvas of its own, with that many allocations; null when they did not suffice.
std::shared_ptr<NSBitmapImageRep> drawn(DrawBase& draw, int64_t allocations, int64_t* used) {
  auto canvas = NSBitmapImageRep::create(kSide, kSide);
  const ZTFocusScope focus(canvas);
  bool isWhole = true;
  FailingAllocations memory(allocations);
  try {
    draw.drawInImage(canvas.get());
  } catch (const std::bad_alloc&) {
    isWhole = false;
  }
  if (used != nullptr) *used = memory.used();
  return isWhole ? canvas : nullptr;
}

constexpr int64_t kEnough = int64_t{1} << 40;

std::string archived(const std::shared_ptr<DrawBase>& draw) {
  const auto data = DrawBase::encodedData(draw);
  return data == nullptr
             ? std::string()
             : std::string(reinterpret_cast<const char*>(data->bytes().data()), data->length());
}

/// Draws copies of the draw with ever more memory, and each once more with enough.
void expectUnharmed(const std::shared_ptr<DrawBase>& draw, const std::string& name) {
  const auto data = DrawBase::encodedData(draw);
  const auto whole = DrawBase::drawFromEncodedData(data);
  ASSERT_NE(whole, nullptr) << name;
  int64_t used = 0;
  const auto expected = drawn(*whole, kEnough, &used);
  ASSERT_NE(expected, nullptr) << name;
  const std::string record = archived(whole);
  constexpr int64_t kTries = 40;
  int refused = 0;
  for (int64_t i = 0; i < std::min(used, kTries); ++i) {
    const int64_t allocations = used <= kTries ? i : i * used / kTries;
    const auto copy = DrawBase::drawFromEncodedData(data);
    if (const auto picture = drawn(*copy, allocations, nullptr)) {
      EXPECT_EQ(maxDifference(*picture, *expected), 0)
          << name << " differs with " << allocations << " of " << used << " allocations";
    } else {
      ++refused;
    }
    const auto again = drawn(*copy, kEnough, nullptr);
    ASSERT_NE(again, nullptr) << name;
    EXPECT_EQ(maxDifference(*again, *expected), 0)
        << name << " after " << allocations << " of " << used << " allocations";
    EXPECT_EQ(archived(copy), record)
        << name << " after " << allocations << " of " << used << " allocations";
    if (::testing::Test::HasFailure()) return;
  }
  // What needs memory must have been refused some.
  EXPECT_TRUE(used == 0 || refused > 0) << name;
}

}  // namespace

TEST(LackOfMemory, ChangesNoDrawOfAnyClass) {
  for (const char* name : {"all classes", "curved text", "text boxes", "pictures", "filters",
                           "stored sprays", "records"}) {
    const auto document = madeDocument(name);
    ASSERT_NE(document, nullptr);
    for (const auto& draw : document->allDraws()) {
      expectUnharmed(draw, std::string(name) + ": " + std::string(draw->className()));
    }
  }
}

TEST(LackOfMemory, ChangesNoDrawWithEffects) {
  ASSERT_NE(madeDocument("red"), nullptr);  // makes the classes known to archives
  RandomDraws draws(18, kSide);
  for (int i = 0; i < 60; ++i) {
    const auto draw = draws.next();
    expectUnharmed(draw, draws.description());
  }
}
