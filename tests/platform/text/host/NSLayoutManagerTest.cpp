#include <gtest/gtest.h>

#include "platform/text/TextSupport.h"
#include "platform/text/host/NSLayoutManager.h"
#include "platform/text/host/NSTextStorage.h"

namespace {

class NSLayoutManagerTest : public BoxFontTest {
 protected:
  void SetUp() override {
    manager_->addTextContainer(container_);
    container_->setLineFragmentPadding(0);
    storage_.setAttributedString(boxes("aaa bbb cc"));
  }

  static NSAttributedString boxes(std::string_view text, double size = 10) {
    auto attributes = std::make_shared<NSMutableDictionary>();
    attributes->setObject(std::make_shared<NSFont>(kBoxFont, size), NSFontAttributeName);
    return NSAttributedString(text, attributes);
  }

  NSSize used() { return manager_->usedRectForTextContainer(*container_).size; }

  std::shared_ptr<NSTextContainer> container_ = std::make_shared<NSTextContainer>();
  std::shared_ptr<NSLayoutManager> manager_ = std::make_shared<NSLayoutManager>();
  NSTextStorage storage_;
};

}  // namespace

TEST_F(NSLayoutManagerTest, SetsNothingUnlessAttached) {
  EXPECT_EQ(used(), NSZeroSize);
  storage_.addLayoutManager(manager_);
  EXPECT_EQ(manager_->textStorage(), &storage_);
  EXPECT_EQ(used(), NSMakeSize(45, 10));
  storage_.removeLayoutManager(manager_);
  EXPECT_EQ(manager_->textStorage(), nullptr);
  EXPECT_EQ(manager_->glyphRangeForTextContainer(*container_), NSRange{});
  EXPECT_TRUE(storage_.layoutManagers().empty());
}

TEST_F(NSLayoutManagerTest, FollowsItsTextAndItsContainer) {
  storage_.addLayoutManager(manager_);
  container_->setContainerSize({32, 1e9});
  EXPECT_EQ(used(), NSMakeSize(27.5, 20));
  EXPECT_EQ(manager_->glyphRangeForTextContainer(*container_), (NSRange{0, 10}));
  container_->setContainerSize({32, 15});
  EXPECT_EQ(manager_->glyphRangeForTextContainer(*container_), (NSRange{0, 4}));
  container_->setLineFragmentPadding(20);
  EXPECT_EQ(manager_->glyphRangeForTextContainer(*container_), (NSRange{0, 1}));
  container_->setLineFragmentPadding(0);
  storage_.deleteCharactersInRange({1, 9});
  EXPECT_EQ(used(), NSMakeSize(5, 10));
  storage_.addAttribute(NSFontAttributeName, std::make_shared<NSFont>(kBoxFont, 14), {0, 1});
  EXPECT_EQ(used(), NSMakeSize(7, 14));
  storage_.deleteCharactersInRange({0, 1});
  EXPECT_EQ(manager_->glyphRangeForTextContainer(*container_).length, 0u);
}

TEST_F(NSLayoutManagerTest, ServesOneTextAtATime) {
  storage_.addLayoutManager(manager_);
  {
    NSTextStorage other(boxes("x"));
    other.addLayoutManager(manager_);
    EXPECT_TRUE(storage_.layoutManagers().empty());
    EXPECT_EQ(used(), NSMakeSize(5, 10));
  }
  EXPECT_EQ(manager_->textStorage(), nullptr) << "the text is gone";
  EXPECT_EQ(used(), NSZeroSize);
}

TEST_F(NSLayoutManagerTest, OnlyItsOwnContainerIsSet) {
  storage_.addLayoutManager(manager_);
  const NSTextContainer stranger;
  EXPECT_EQ(manager_->usedRectForTextContainer(stranger), NSZeroRect);
  EXPECT_EQ(stranger.lineFragmentPadding(), 5);
  EXPECT_EQ(stranger.layoutManager(), nullptr);
  EXPECT_EQ(container_->layoutManager(), manager_.get());
}

TEST_F(NSLayoutManagerTest, DefaultLinesOfAFont) {
  const NSFont times("TimesNewRomanPSMT", 96);
  EXPECT_EQ(manager_->defaultLineHeightForFont(times), 111);
  EXPECT_EQ(manager_->defaultBaselineOffsetForFont(times), 86);
  manager_->setUsesFontLeading(false);
  EXPECT_EQ(manager_->defaultLineHeightForFont(times), 107);
  EXPECT_EQ(manager_->defaultLineHeightForFont(NSFont("Helvetica", 17)), 20);
}
