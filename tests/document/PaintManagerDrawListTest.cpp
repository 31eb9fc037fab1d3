#include <gtest/gtest.h>

#include <map>
#include <random>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/NSBitmapImageRep.h"
#include "platform/graphics/NSColor.h"
#include "support/Bitmaps.h"

namespace {

std::shared_ptr<DrawBase> square(double x, double y, double hue) {
  auto draw = std::make_shared<DrawRectangle>();
  draw->init();
  draw->setBezierPathWithBounds(NSMakeRect(x, y, 12, 9));
  draw->setEnableStroke(false);
  draw->setEnableFill(true);
  draw->setFillColor(NSColor::colorWithCalibratedRed(hue, 1 - hue, hue / 2, 0.7));
  return draw;
}

/// A document of draws named by letters; a string in brackets is a group.
class DrawList : public testing::Test {
 protected:
  void SetUp() override {
    for (char c = 'a'; c <= 'h'; ++c) named_[c] = square(c - 'a', 2 * (c - 'a'), (c - 'a') / 8.0);
  }

  void make(const std::string& text) {
    document_.setSize({32, 32});
    for (size_t i = 0; i < text.size(); ++i) {
      if (text[i] != '(') {
        document_.addDraw(named_[text[i]]);
        continue;
      }
      DrawArray inside;
      while (text[++i] != ')') inside.push_back(named_[text[i]]);
      groups_.push_back(DrawGroup::initWithDraws(inside));
      document_.addDraw(groups_.back());
    }
  }

  std::string letters(const DrawArray& draws) const {
    std::string text;
    for (const auto& draw : draws) {
      if (const auto* group = dynamic_cast<const DrawGroup*>(draw.get())) {
        text += '(' + letters(group->draws()) + ')';
        continue;
      }
      for (const auto& [letter, named] : named_) {
        if (named == draw) text += letter;
      }
    }
    return text;
  }
  std::string order() const { return letters(document_.allDraws()); }

  DrawArray pick(const std::string& text) const {
    DrawArray draws;
    for (const char c : text)
      draws.push_back(c >= '0' && c <= '9' ? groups_[c - '0'] : named_.at(c));
    return draws;
  }

  PaintManager document_;
  std::map<char, std::shared_ptr<DrawBase>> named_;
  std::vector<std::shared_ptr<DrawGroup>> groups_;
};

using Move = bool (PaintManager::*)(PaintManager::Selection);

struct MoveCase {
  const char* list;
  const char* selection;
  Move move;
  const char* expected;
  int64_t control;
};

}  // namespace

TEST_F(DrawList, SelectedDrawsMoveAmongTheirNeighbours) {
  constexpr Move kFront = &PaintManager::moveDrawsToFront, kBack = &PaintManager::moveDrawsToBack,
                 kUp = &PaintManager::moveUpDraws, kDown = &PaintManager::moveDownDraws;
  const MoveCase cases[] = {
      {"abcd", "ac", kFront, "bdac", kRebuildBuffer},
      {"abcd", "ca", kFront, "bdac", kRebuildBuffer},
      {"abcd", "cd", kFront, "abcd", kImagesCurrent},
      {"abcd", "", kFront, "abcd", kImagesCurrent},
      {"abcd", "bd", kBack, "bdac", kRebuildBuffer},
      {"abcd", "ab", kBack, "abcd", kImagesCurrent},
      {"abcd", "ab", kUp, "cabd", kRebuildBuffer},
      {"abcd", "acd", kUp, "bacd", kRebuildBuffer},
      {"abcd", "cd", kUp, "abcd", kImagesCurrent},
      {"abcd", "cd", kDown, "acdb", kRebuildBuffer},
      {"abcd", "ab", kDown, "abcd", kImagesCurrent},
      {"a(bcd)", "b", kFront, "a(cdb)", kRefreshFullImage},
      {"a(bcd)", "b", kUp, "a(cbd)", kRefreshFullImage},
      {"(bcd)a", "b", kUp, "(cbd)a", kRebuildBuffer},
      {"(bcd)a", "d", kBack, "(dbc)a", kRebuildBuffer},
      {"(bc)a", "0b", kUp, "a(bc)", kRebuildBuffer},
  };
  for (const MoveCase& c : cases) {
    document_ = PaintManager();
    groups_.clear();
    make(c.list);
    document_.fullImage();
    const DrawArray selection = pick(c.selection);
    EXPECT_EQ((document_.*c.move)(selection), std::string(c.list) != c.expected) << c.list;
    EXPECT_EQ(order(), c.expected) << c.list << " with " << c.selection;
    EXPECT_EQ(document_.imageRefreshControl(), c.control) << c.list << " with " << c.selection;
  }
}

TEST_F(DrawList, WhetherDrawsCanMove) {
  make("a(bc)d");
  const std::pair<const char*, std::pair<bool, bool>> cases[] = {
      {"a", {true, false}}, {"d", {false, true}}, {"ad", {true, true}}, {"0", {true, true}},
      {"b", {true, false}}, {"0c", {true, true}}, {"c", {false, true}}, {"", {false, false}}};
  for (const auto& [selection, can] : cases) {
    EXPECT_EQ(document_.canMoveDrawsUp(pick(selection)), can.first) << selection;
    EXPECT_EQ(document_.canMoveDrawsDown(pick(selection)), can.second) << selection;
  }
}

TEST_F(DrawList, GroupsAreMadeAndDissolved) {
  make("abcde");
  EXPECT_EQ(document_.groupDraws(pick("b")), nullptr);
  EXPECT_EQ(document_.groupDraws(pick("bh")), nullptr) << "not in the document";
  const auto group = document_.groupDraws(pick("db"));
  ASSERT_NE(group, nullptr);
  EXPECT_EQ(order(), "ac(bd)e");
  EXPECT_EQ(named_['b']->group(), group.get());
  EXPECT_FALSE(document_.unGroupDraws(pick("ab")));
  EXPECT_TRUE(document_.unGroupDraws(DrawArray{group}));
  EXPECT_EQ(order(), "acbde");
  EXPECT_EQ(named_['b']->group(), nullptr);
}

TEST_F(DrawList, DrawsAreReplacedInPlace) {
  make("ab(cd)");
  EXPECT_FALSE(document_.replaceDraw(named_['a'], named_['b']));
  EXPECT_FALSE(document_.replaceDraw(named_['a'], named_['c'])) << "has its place already";
  EXPECT_FALSE(document_.replaceDraw(named_['g'], named_['h']));
  EXPECT_TRUE(document_.replaceDraw(named_['a'], named_['e']));
  EXPECT_TRUE(document_.replaceDraw(named_['c'], named_['f']));
  EXPECT_EQ(order(), "eb(fd)");
  EXPECT_EQ(named_['c']->group(), nullptr);
  EXPECT_EQ(named_['f']->group(), groups_[0].get());
}

TEST_F(DrawList, CroppingMovesEverything) {
  make("a(b)");
  const NSRect a = named_['a']->pathBounds(), b = named_['b']->pathBounds();
  EXPECT_FALSE(document_.cropWithRect(NSMakeRect(0, 0, 0.5, 10)));
  EXPECT_FALSE(document_.cropWithRect(NSMakeRect(0, 0, 1e6, 1e6)));
  EXPECT_TRUE(document_.cropWithRect(NSMakeRect(3, 4, 20.9, 10)));
  EXPECT_EQ(document_.size(), NSMakeSize(20, 10));
  EXPECT_EQ(named_['a']->pathBounds(), NSOffsetRect(a, -3, -4));
  EXPECT_EQ(named_['b']->pathBounds(), NSOffsetRect(b, -3, -4));
  EXPECT_EQ(document_.fullImage()->pixelsWide(), 20);
}

TEST_F(DrawList, AChangeOnTopDoesNotHideOneBelow) {
  make("ab");
  document_.fullImage();
  named_['a']->moveByX(5, 5);
  document_.respondToChangeOfDraws(pick("a"));
  document_.respondToChangeOfDraws(pick("b"));
  EXPECT_EQ(document_.imageRefreshControl(), kRebuildBuffer);
}

namespace {

/// Does one operation or another, with arguments by chance.
class RandomEditor {
 public:
  RandomEditor(PaintManager& document, unsigned seed) : document_(document), random_(seed) {}

  void step() {
    const auto fresh = square(below(20), below(20), below(100) / 100.0);
    switch (below(13)) {
      case 0:
      case 1:
        document_.addDraw(fresh);
        break;
      case 2:
        document_.insertDraw(fresh, below(6));
        break;
      case 3:
        document_.removeDraw(any());
        break;
      case 4:
        document_.moveDrawsToFront(some());
        break;
      case 5:
        document_.moveDrawsToBack(some());
        break;
      case 6:
        document_.moveUpDraws(some());
        break;
      case 7:
        document_.moveDownDraws(some());
        break;
      case 8:
        document_.groupDraws(some());
        break;
      case 9:
        document_.unGroupDraws(some());
        break;
      case 10:
        document_.replaceDraw(any(), fresh);
        break;
      case 11:
        change();
        break;
      default:
        if (below(8) == 0) document_.clearMemeryBuffer();
        if (below(3) == 0) document_.fullImage();
    }
  }

 private:
  unsigned below(unsigned n) { return static_cast<unsigned>(random_() % n); }

  DrawArray everything() const {
    DrawArray draws;
    for (const auto& draw : document_.allDraws()) {
      // Moving the background draw up is allowed and takes it from its place.
      if (draw != document_.backgroundDraw()) draws.push_back(draw);
      if (const auto* group = dynamic_cast<const DrawGroup*>(draw.get())) {
        draws.insert(draws.end(), group->draws().begin(), group->draws().end());
      }
    }
    return draws;
  }
  std::shared_ptr<DrawBase> any() {
    const DrawArray draws = everything();
    return draws.empty() ? nullptr : draws[below(static_cast<unsigned>(draws.size()))];
  }
  DrawArray some() {
    DrawArray draws;
    for (const auto& draw : everything()) {
      if (below(3) == 0) draws.push_back(draw);
    }
    return draws;
  }
  void change() {
    const auto draw = any();
    if (draw == nullptr) return;
    if (below(2) == 0) {
      draw->moveByX(below(7) - 3.0, below(7) - 3.0);
    } else {
      draw->setVisible(!draw->visible());
    }
    document_.respondToChangeOfDraws({&draw, 1});
  }

  PaintManager& document_;
  std::minstd_rand random_;
};

void expectInvariants(const PaintManager& document) {
  if (document.backgroundDraw() != nullptr) {
    ASSERT_EQ(document.allDraws().at(0), document.backgroundDraw());
  }
  for (const auto& draw : document.allDraws()) {
    ASSERT_EQ(draw->group(), nullptr);
    const auto* group = dynamic_cast<const DrawGroup*>(draw.get());
    if (group == nullptr) continue;
    for (const auto& sub : group->draws()) ASSERT_EQ(sub->group(), group);
  }
}

}  // namespace

TEST(DrawListProperties, AnySequenceKeepsTheInvariantsAndTheImageCurrent) {
  for (unsigned seed = 1; seed <= 40; ++seed) {
    PaintManager document;
    document.setSize({32, 32});
    if (seed % 2 == 0) {
      auto picture = NSBitmapImageRep::create(32, 32);
      document.setBackgroundDraw(DrawImage2::initWithImage(picture));
    }
    RandomEditor editor(document, seed);
    for (int step = 0; step < 150; ++step) {
      editor.step();
      expectInvariants(document);
      if (HasFatalFailure()) FAIL() << "seed " << seed << " step " << step;
      if (step % 5 != 0) continue;
      const auto incremental = document.fullImage()->copy();
      document.clearMemeryBuffer();
      const auto fresh = document.fullImage();
      ASSERT_EQ(maxDifference(*incremental, *fresh), 0) << "seed " << seed << " step " << step;
    }
  }
}
