// Whatever is done to a document: repainting what changed gives what painting all of it gives, and
// the file that is written shows the same.
#include <gtest/gtest.h>

#include <string>

#include "document/DrawGroup.h"
#include "document/LayerDrawsStatus.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "platform/foundation/values/NSData.h"
#include "platform/graphics/color/NSColor.h"
#include "support/Bitmaps.h"
#include "support/RandomDraws.h"

namespace {

constexpr double kSide = 90;

std::shared_ptr<PaintManager> writtenAndRead(const PaintManager& document) {
  return PaintManager::paintMgrWithPaintData(document.paintDataWithResolution(0), nullptr, nullptr);
}

class RandomEdits {
 public:
  explicit RandomEdits(unsigned seed) : random_(seed, kSide) {
    PaintManager drawn;
    drawn.setSize({kSide, kSide});
    for (int i = 0; i < 4; ++i) drawn.addDraw(random_.nextOfAll());
    // Coordinates of files are single precision.
    document_ = writtenAndRead(drawn);
    status_ = document_->savedLayerDrawsStatus();
  }

  PaintManager& document() { return *document_; }

  /// Answers what was done.
  std::string edit() {
    const auto draw = any();
    const std::string what = draw != nullptr ? std::string(draw->className()) + " " : "";
    return what + (random_.oneIn(2) && draw != nullptr ? changeDraw(draw) : changeList(draw));
  }

 private:
  std::shared_ptr<DrawBase> any() {
    all_.clear();
    collect(document_->allDraws());
    return all_.empty() ? nullptr : all_[random_.below(static_cast<unsigned>(all_.size()))];
  }
  void collect(const DrawArray& draws) {
    for (const auto& draw : draws) {
      all_.push_back(draw);
      if (const auto* group = dynamic_cast<const DrawGroup*>(draw.get())) collect(group->draws());
    }
  }
  double by() { return 0.4 + random_.below(1000) / 700.0; }
  CGFloat step() { return random_.below(401) / 10.0 - 20; }
  unsigned place() {
    return random_.below(static_cast<unsigned>(document_->allDraws().size()) + 1);
  }
  /// A draw as a file has it.
  std::shared_ptr<DrawBase> fresh() {
    return DrawBase::drawFromEncodedData(DrawBase::encodedData(random_.nextOfAll()));
  }

  std::string changeDraw(const std::shared_ptr<DrawBase>& draw) {
    const char* what = "";
    switch (random_.below(8)) {
      case 0:
        draw->moveByX(step(), step());
        what = "moved";
        break;
      case 1:
        draw->scaleByX(by(), by(), {step(), step()}, ResizeLineWidth::yes);
        what = "scaled";
        break;
      case 2:
        draw->scaleByX(random_.oneIn(2) ? -1 : 1, -1, {kSide / 2, kSide / 2}, ResizeLineWidth::no);
        what = "flipped";
        break;
      case 3:
        draw->setRotateDegree(static_cast<float>(random_.below(3600)) / 10);
        what = "turned";
        break;
      case 4:
        draw->setVisible(!draw->visible());
        what = "shown or hidden";
        break;
      case 5:
        draw->setOpacity(random_.below(101));
        what = "made transparent";
        break;
      case 6:
        draw->setLineWidth(random_.below(80) / 10.0);
        what = "given a width";
        break;
      default:
        draw->setEnableReflection(!draw->enableReflection());
        draw->setReflection(0.75F);
        draw->setReflectionDis(static_cast<float>(step()));
        what = "reflected";
    }
    document_->respondToChangeOfDraws({&draw, 1});
    return what;
  }

  std::string changeList(const std::shared_ptr<DrawBase>& draw) {
    const DrawArray selected{draw, any()};
    switch (random_.below(18)) {
      case 0:
        return document_->insertDraw(fresh(), place()) ? "inserted" : "";
      case 1:
        return document_->addDraw(draw) ? "brought to the top level" : "";
      case 2:
        return document_->removeDraw(draw) ? "removed" : "";
      case 3:
        return document_->moveDrawsToFront(selected) ? "to the front" : "";
      case 4:
        return document_->moveDrawsToBack(selected) ? "to the back" : "";
      case 5:
        // A background that is moved up is still one, but is not written as one.
        if (draw == document_->backgroundDraw() || selected[1] == document_->backgroundDraw()) {
          return "";
        }
        return document_->moveUpDraws(selected) ? "up" : "";
      case 6:
        return document_->moveDownDraws(selected) ? "down" : "";
      case 7:
        return document_->moveDraws({&draw, 1}, random_.oneIn(2) ? any() : nullptr, place())
                   ? "moved in the list"
                   : "";
      case 8:
      case 9:
        return document_->groupDraws(selected) != nullptr ? "grouped" : "";
      case 10:
        return document_->unGroupDraws(selected) ? "ungrouped" : "";
      case 11:
        return document_->replaceDraw(draw, fresh()) ? "replaced" : "";
      case 12:
        document_->restoreFromLayerStatus(
            std::exchange(status_, document_->savedLayerDrawsStatus()));
        return "restored";
      case 13:
        document_->setBackgroundColor(random_.oneIn(2) ? NSColor::whiteColor() : nullptr);
        return "ground";
      case 14:
        return document_->cropWithRect(NSMakeRect(step(), step(), kSide, kSide)) ? "cropped" : "";
      case 15: {
        const NSSize size{60.0 + random_.below(60), 60.0 + random_.below(60)};
        const bool resamples = random_.oneIn(2);
        document_->resizeToSize(size, resamples ? ResampleLayer::yes : ResampleLayer::no, {0.5, 0});
        return resamples ? "resampled" : "resized";
      }
      case 16:
        document_->setBackgroundDraw(
            random_.oneIn(2) ? DrawImage2::initWithImage(randomBitmap(9, 9, random_.below(99)))
                             : nullptr);
        return "background";
      default:
        document_->setMaskBackground(!document_->maskBackground());
        return "mask";
    }
  }

  RandomDraws random_;
  std::shared_ptr<PaintManager> document_;
  LayerDrawsStatus status_;
  DrawArray all_;
};

}  // namespace

TEST(RandomEdits, RepaintAndWriteWhatThereIs) {
  for (unsigned seed = 1; seed <= 25; ++seed) {
    RandomEdits edits(seed);
    std::string history;
    edits.document().fullImage();
    for (int i = 0; i < 30; ++i) {
      history += edits.edit() + "; ";
      const auto whole = edits.document().composedImage();
      ASSERT_EQ(maxDifference(*edits.document().fullImage(), *whole), 0) << seed << ": " << history;
      const auto again = writtenAndRead(edits.document());
      ASSERT_NE(again, nullptr) << seed << ": " << history;
      ASSERT_EQ(maxDifference(*again->composedImage(), *whole), 0)
          << seed << ", written and read: " << history;
    }
  }
}
