#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "document/DrawGroup.h"
#include "document/LayerDrawsStatus.h"
#include "document/PaintManager.h"
#include "draw/image/DrawImage2.h"
#include "draw/shapes/DrawRectangle.h"
#include "platform/graphics/bitmap/NSBitmapImageRep.h"
#include "platform/graphics/color/NSColor.h"
#include "support/Bitmaps.h"
#include "support/FilterChart.h"
#include "support/RandomDraws.h"

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
      {"a(bcd)", "d", kBack, "a(dbc)", kRebuildBuffer},
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

TEST_F(DrawList, DrawsMoveToAPlaceInTheListOrInAGroup) {
  const struct {
    const char* list;
    const char* selection;
    const char* target;
    uint64_t index;
    const char* expected;
    int64_t control;
  } cases[] = {
      {"abcd", "a", "", 3, "bcad", kRebuildBuffer},
      {"abcd", "da", "", 2, "badc", kRebuildBuffer},
      {"abcd", "ab", "", 4, "cdab", kRebuildBuffer},
      {"abcd", "bc", "", 2, "abcd", kImagesCurrent},
      {"a(bc)d", "ad", "0", 1, "(badc)", kRebuildBuffer},
      {"a(bc)", "b", "0", 2, "a(cb)", kRefreshFullImage},
      {"a(bc)d", "c", "", 0, "ca(b)d", kRebuildBuffer},
      {"(ab)(cd)", "ad", "1", 0, "(b)(adc)", kRebuildBuffer},
      {"(ab)(cd)", "0", "1", 1, "(c(ab)d)", kRebuildBuffer},
      {"(ab)c", "0a", "", 2, "c(b)a", kRebuildBuffer},
      // Refused: no draw of the document, no group, a group into itself, beyond the end.
      {"abcd", "ah", "", 0, "abcd", kImagesCurrent},
      {"abcd", "a", "b", 0, "abcd", kImagesCurrent},
      {"a(bc)", "0", "0", 0, "a(bc)", kImagesCurrent},
      {"a(bc)", "a", "0", 3, "a(bc)", kImagesCurrent},
      {"abcd", "", "", 0, "abcd", kImagesCurrent},
  };
  for (const auto& c : cases) {
    document_ = PaintManager();
    groups_.clear();
    make(c.list);
    document_.fullImage();
    const auto target = *c.target != 0 ? pick(c.target).front() : nullptr;
    EXPECT_EQ(document_.moveDraws(pick(c.selection), target, c.index),
              std::string(c.list) != c.expected);
    EXPECT_EQ(order(), c.expected) << c.list << " with " << c.selection;
    EXPECT_EQ(document_.imageRefreshControl(), c.control) << c.list << " with " << c.selection;
  }
}

TEST_F(DrawList, TheBackgroundDrawKeepsItsPlace) {
  document_.setSize({32, 32});
  document_.setBackgroundImage(NSBitmapImageRep::create(32, 32));
  make("ab");
  const std::shared_ptr<DrawBase> background = document_.backgroundDraw();
  const DrawArray all = document_.allDraws();
  EXPECT_FALSE(document_.moveDraws(DrawArray{background}, nullptr, 2));
  EXPECT_FALSE(document_.moveDraws(pick("b"), nullptr, 0));
  EXPECT_FALSE(document_.insertDraw(named_['c'], 0));
  EXPECT_FALSE(document_.moveDrawsToFront(DrawArray{background}));
  EXPECT_FALSE(document_.moveDownDraws(pick("a")));
  EXPECT_EQ(document_.groupDraws(DrawArray{background, named_['a']}), nullptr);
  EXPECT_EQ(document_.allDraws(), all);
  EXPECT_TRUE(document_.removeDraw(background));
  EXPECT_EQ(document_.backgroundDraw(), nullptr);
}

TEST_F(DrawList, DrawsComeAndGo) {
  make("ab(cd)");
  document_.fullImage();
  EXPECT_FALSE(document_.addDraw(nullptr));
  EXPECT_FALSE(document_.addDraw(named_['a']));
  EXPECT_FALSE(document_.insertDraw(nullptr, 0));
  EXPECT_FALSE(document_.insertDraw(named_['a'], 3));
  EXPECT_FALSE(document_.insertDraw(named_['e'], 4)) << "beyond the end";
  EXPECT_FALSE(document_.removeDraw(nullptr));
  EXPECT_FALSE(document_.removeDraw(named_['e']));
  EXPECT_EQ(order(), "ab(cd)");
  EXPECT_EQ(document_.imageRefreshControl(), kImagesCurrent) << "nothing changed";

  EXPECT_TRUE(document_.insertDraw(named_['e'], 3));
  EXPECT_EQ(document_.imageRefreshControl(), kRefreshFullImage) << "at the end, as if added";
  document_.fullImage();
  EXPECT_TRUE(document_.insertDraw(named_['f'], 1));
  EXPECT_EQ(document_.imageRefreshControl(), kRebuildBuffer);
  EXPECT_EQ(order(), "afb(cd)e");
  EXPECT_EQ(document_.toppestDraw(), named_['e']);
  document_.fullImage();
  EXPECT_TRUE(document_.removeDraw(named_['d']));
  EXPECT_EQ(document_.imageRefreshControl(), kRebuildBuffer);
  EXPECT_TRUE(document_.removeDraw(named_['a']));
  EXPECT_EQ(order(), "fb(c)e");
  EXPECT_EQ(PaintManager().toppestDraw(), nullptr);
}

TEST_F(DrawList, LayerOrderIsThatOfTheDocument) {
  make("a(bc)d");
  EXPECT_EQ(letters(document_.drawsInLayerOrder(pick("dcha"))), "acd");
  EXPECT_EQ(letters(document_.drawsInLayerOrder(pick("c0"))), "(bc)c");
}

TEST_F(DrawList, ADrawHasOnePlace) {
  make("a(bc)d");
  EXPECT_EQ(document_.imageRefreshControl(), kRefreshFullImage) << "only added to so far";
  EXPECT_TRUE(document_.addDraw(named_['b']));
  EXPECT_EQ(order(), "a(c)db");
  EXPECT_EQ(named_['b']->group(), nullptr);
  EXPECT_TRUE(document_.insertDraw(named_['c'], 0));
  EXPECT_EQ(order(), "ca()db");
  EXPECT_EQ(document_.imageRefreshControl(), kRebuildBuffer);
  EXPECT_FALSE(groups_[0]->insertDraw(groups_[0], 0));
  const auto inner = DrawGroup::initWithDraws({named_['f']});
  EXPECT_TRUE(groups_[0]->insertDraw(inner, 0));
  EXPECT_FALSE(inner->replaceDraw(named_['f'].get(), groups_[0])) << "it holds the group";
  inner->setDraws({named_['f'], groups_[0], inner});
  EXPECT_EQ(letters({groups_[0], inner}), "((f))(f)");
  EXPECT_EQ(groups_[0]->draws().size(), 1U);
  groups_[0]->removeDraw(inner.get());
  const auto other = DrawGroup::initWithDraws({named_['e']});
  EXPECT_TRUE(groups_[0]->insertDraw(named_['e'], 0));
  EXPECT_EQ(letters({groups_[0], other}), "(e)()");
}

TEST_F(DrawList, EveryDrawGoesBackToItsPlace) {
  make("a(bc)d(ef)");
  const LayerDrawsStatus status = document_.savedLayerDrawsStatus();
  document_.moveDraws(pick("0d"), groups_[1], 1);
  document_.removeDraw(named_['a']);
  document_.addDraw(named_['b']);
  document_.addDraw(named_['g']);
  EXPECT_EQ(order(), "(e(c)df)bg");
  document_.fullImage();
  document_.restoreFromLayerStatus(status);
  EXPECT_EQ(order(), "a(bc)d(ef)");
  EXPECT_EQ(document_.imageRefreshControl(), kRebuildBuffer);
  EXPECT_EQ(named_['b']->group(), groups_[0].get());
  EXPECT_EQ(groups_[0]->group(), nullptr);
}

TEST_F(DrawList, DrawsAreFoundByWhatTheyPaint) {
  make("a(bh)");  // a: (0, 0, 12, 9), b: (1, 2, 12, 9), h: (7, 14, 12, 9)
  EXPECT_EQ(letters(document_.drawsInRect(NSMakeRect(2, 1, 2, 0.5))), "a");
  EXPECT_EQ(letters(document_.drawsInRect(NSMakeRect(8, 8.5, 4, 10))), "a(bh)");
  EXPECT_EQ(letters(document_.drawsInRect(NSMakeRect(8, 20, 4, 10))), "(bh)");
  EXPECT_EQ(letters(document_.drawsInRect(NSMakeRect(20, 0, 4, 40))), "");
  EXPECT_EQ(groups_[0]->drawRect(), NSMakeRect(1, 2, 18, 21));
  named_['h']->setVisible(false);
  EXPECT_EQ(groups_[0]->renderedRect(), NSMakeRect(1, 2, 12, 9));
  named_['a']->setEnableStroke(true);
  named_['a']->setStrokeColor(NSColor::blackColor());
  named_['a']->setLineWidth(4);
  named_['a']->setVisible(true);
  EXPECT_EQ(letters(document_.drawsInRect(NSMakeRect(-4, -4, 3, 3))), "a") << "the stroke's edge";
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

  EXPECT_FALSE(document_.groupDraws(pick("ab"), nullptr));
  EXPECT_TRUE(document_.groupDraws(pick("ba"), group));
  EXPECT_EQ(order(), "c(ab)de") << "the group is used again";
  EXPECT_FALSE(document_.groupDraws(pick("cd"), group)) << "has its place already";
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
  RandomEditor(PaintManager& document, unsigned seed)
      : document_(document), random_(seed), draws_(seed, 48) {}

  void step() {
    const auto fresh = draws_.next();
    switch (below(18)) {
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
      case 12:
        document_.moveDraws(some(), below(2) == 0 ? any() : nullptr, below(6));
        break;
      case 13:
        if (below(3) == 0) statuses_.push_back(document_.savedLayerDrawsStatus());
        break;
      case 14:
        if (below(4) == 0 && !statuses_.empty()) {
          document_.restoreFromLayerStatus(
              statuses_[below(static_cast<unsigned>(statuses_.size()))]);
        }
        break;
      case 15:
        resize();
        break;
      case 16:
        changeBackground();
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
  void resize() {
    const NSSize size{50.0 + below(17), 50.0 + below(17)};
    switch (below(6)) {
      case 0:
        document_.resizeToSize(size, ResampleLayer::yes, NSZeroPoint);
        break;
      case 1:
        document_.resizeToSize(size, ResampleLayer::no, {0.5, 1});
        break;
      case 2:
        document_.cropWithRect({{below(3) - 1.0, below(3) - 1.0}, size});
        break;
      default:
        document_.drawsInRect({{4, 4}, size});
    }
  }
  void changeBackground() {
    const auto picture = plainBitmap(20 + below(9), 20 + below(9), {0, 200, 100, 255});
    switch (below(5)) {
      case 0:
        document_.setBackgroundImage(picture);
        break;
      case 1:
        document_.setBackgroundImage(nullptr);
        break;
      case 2:
        document_.setBackgroundDraw(DrawImage2::initWithImage(picture));
        break;
      case 3:
        document_.setMaskBackground(!document_.maskBackground());
        break;
      default:
        document_.setBackgroundColor(NSColor::colorWithCalibratedRed(0.5, below(2), 1, 0.5));
    }
  }
  void change() {
    const auto draw = any();
    if (draw == nullptr) return;
    switch (below(5)) {
      case 0:
        draw->setVisible(!draw->visible());
        break;
      case 1:
        draw->setRotateDegree(draw->rotateDegree() + 30);
        break;
      case 2:
        draw->setOpacity(below(101));
        break;
      case 3:
        draw->setLineWidth(below(9));
        break;
      default:
        draw->moveByX(below(7) - 3.0, below(7) - 3.0);
    }
    document_.respondToChangeOfDraws({&draw, 1});
  }

  PaintManager& document_;
  std::minstd_rand random_;
  RandomDraws draws_;
  std::vector<LayerDrawsStatus> statuses_;
};

void expectBackReferences(const DrawArray& draws, const DrawBase* group,
                          std::set<const DrawBase*>& seen) {
  for (const auto& draw : draws) {
    ASSERT_TRUE(seen.insert(draw.get()).second) << "a draw has one place";
    ASSERT_EQ(draw->group(), group);
    const auto* inner = dynamic_cast<const DrawGroup*>(draw.get());
    if (inner != nullptr) expectBackReferences(inner->draws(), inner, seen);
  }
}

void expectInvariants(const PaintManager& document) {
  if (document.backgroundDraw() != nullptr) {
    ASSERT_EQ(document.allDraws().at(0), document.backgroundDraw());
  }
  std::set<const DrawBase*> seen;
  expectBackReferences(document.allDraws(), nullptr, seen);
}

}  // namespace

TEST(DrawListProperties, AnySequenceKeepsTheInvariantsAndTheImageCurrent) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    PaintManager document;
    document.setSize({60, 60});
    if (seed % 2 == 0) {
      document.setBackgroundImage(randomBitmap(40, 40, seed));
    }
    RandomEditor editor(document, seed);
    for (int step = 0; step < 150; ++step) {
      editor.step();
      expectInvariants(document);
      if (HasFatalFailure()) FAIL() << "seed " << seed << " step " << step;
      if (step % 5 != 0) continue;
      const auto incremental = document.fullImage()->copy();
      PaintManager fresh = document;
      fresh.clearMemeryBuffer();
      ASSERT_EQ(maxDifference(*incremental, *fresh.fullImage()), 0)
          << "seed " << seed << " step " << step;
    }
  }
}
