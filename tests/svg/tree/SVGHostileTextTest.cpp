// Texts written to do harm. Each must end in an empty or partial picture, soon and in little
// memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "svg/tree/RecordingRenderer.h"
#include "svg/tree/SVGDocument.h"

using namespace SVGNative;

namespace {

/// Counts, and keeps track of nesting.
class CountingRenderer : public RecordingRenderer {
 public:
  std::shared_ptr<Path> CreatePath() override {
    ++made;
    return RecordingRenderer::CreatePath();
  }
  void Save(const GraphicStyleImpl&) override { deepest = std::max(deepest, ++depth); }
  void Restore() override { --depth; }
  void DrawPath(const Path&, const GraphicStyleImpl&, const FillStyleImpl&,
                const StrokeStyleImpl&) override {
    ++paths;
  }

  int64_t made = 0;  ///< paths, drawn or not
  int64_t paths = 0;
  int depth = 0;
  int deepest = 0;
};

std::string repeated(const std::string& text, int count) {
  std::string all;
  all.reserve(text.size() * static_cast<size_t>(count));
  for (int i = 0; i < count; ++i) all += text;
  return all;
}

/// "N" in the pattern is the number of the repetition, "M" the next one.
std::string numberedAll(const std::string& pattern, int count) {
  std::string all;
  for (int i = 0; i < count; ++i) {
    for (const char c : pattern) {
      if (c == 'N' || c == 'M') {
        all += std::to_string(c == 'N' ? i : i + 1);
      } else {
        all += c;
      }
    }
  }
  return all;
}

std::shared_ptr<CountingRenderer> rendered(const std::string& content,
                                           const std::string& prolog = "") {
  auto renderer = std::make_shared<CountingRenderer>();
  const auto document = SVGDocument::CreateSVGDocument(
      prolog + "<svg width='100' height='100'>" + content + "</svg>", renderer);
  if (document != nullptr) document->Render();
  EXPECT_EQ(renderer->depth, 0);
  return renderer;
}

TEST(SVGHostileTextTest, DeepNesting) {
  const auto renderer = rendered("<path/>" + repeated("<g>", 100000) + "<path/>");
  EXPECT_EQ(renderer->paths, 1);
  EXPECT_LE(renderer->deepest, 300);
  EXPECT_EQ(rendered(repeated("<g>", 200) + "<path/>" + repeated("</g>", 200))->paths, 1);
}

TEST(SVGHostileTextTest, ReferencesToReferencesAreBounded) {
  std::string text = "<defs><path id='l0' d='M0 0L9 9'/>";
  for (int level = 1; level <= 12; ++level) {
    text += "<g id='l" + std::to_string(level) + "'>" +
            repeated("<use href='#l" + std::to_string(level - 1) + "'/>", 10) + "</g>";
  }
  const auto renderer = rendered(text + "</defs><use href='#l12'/><path/>");
  EXPECT_GT(renderer->paths, 100000);
  EXPECT_LE(renderer->paths, 500001);
}

TEST(SVGHostileTextTest, ReferencesToLongPathsAreBounded) {
  const auto renderer = rendered("<defs><path id='p' d='M0 0" + repeated("h1", 500000) +
                                 "'/></defs>" + repeated("<use href='#p'/>", 5000) + "<path/>");
  EXPECT_GE(renderer->paths, 40);
  EXPECT_LE(renderer->paths, 60);
}

// Each reference has the symbol read once more.
TEST(SVGHostileTextTest, SymbolsInManySizesAreBounded) {
  const std::string rect = "<rect width='50%' height='50%'/>";
  const std::string twice = "<use href='#sM' width='50%'/><use href='#sM' width='9'/>";
  const std::string longPath = "<path d='M0 0" + repeated("h1", 500000) + "'/>";
  const std::pair<std::string, int64_t> cases[] = {
      {numberedAll("<symbol id='sN'>" + rect + twice + "</symbol>", 20), (4 << 20) / 64},
      {"<symbol id='s1'>" + rect + numberedAll(twice, 1) + "</symbol>", 2},
      {"<symbol id='s'>" + rect + longPath + "</symbol>" + repeated("<use href='#s'/>", 5000), 10}};
  for (const auto& [content, most] : cases) {
    const auto renderer = std::make_shared<CountingRenderer>();
    EXPECT_NE(SVGDocument::CreateSVGDocument("<svg>" + content + "</svg>", renderer), nullptr);
    EXPECT_LE(renderer->made, most);
  }
}

TEST(SVGHostileTextTest, ChainsOfReferencesAreBounded) {
  const auto renderer = rendered("<defs>" + numberedAll("<use id='uN' href='#uM'/>", 100000) +
                                 "<path id='u100000'/></defs><use href='#u0'/><path/>");
  EXPECT_EQ(renderer->paths, 1);
  EXPECT_LE(renderer->deepest, 300);
}

TEST(SVGHostileTextTest, ChainsOfGradients) {
  const std::string last = "<stop stop-color='red'/></linearGradient>";
  const auto chain = [&](int count) {
    return numberedAll("<linearGradient id='gN' href='#gM'/>", count) + "<linearGradient id='g" +
           std::to_string(count) + "'>" + last + "<path fill='url(#g0)'/>";
  };
  EXPECT_EQ(rendered(chain(20))->paths, 1);
  EXPECT_EQ(rendered(chain(50000))->paths, 0);
}

TEST(SVGHostileTextTest, ValuesInheritedByManyGradients) {
  const std::string transform = repeated("scale(1)", 100000);
  rendered("<linearGradient id='a' gradientTransform='" + transform + "'/>" +
           numberedAll("<linearGradient id='gN' href='#a'/>", 20000));
}

TEST(SVGHostileTextTest, ClipPathsGatherABoundedAmount) {
  rendered("<defs><path id='p' d='M0 0" + repeated("h1", 250000) + "'/></defs>" +
           numberedAll("<clipPath id='cN'><use href='#p'/></clipPath>", 20000));
}

TEST(SVGHostileTextTest, Entities) {
  std::string prolog = "<!DOCTYPE svg [<!ENTITY e0 'M0 0'><!ENTITY x SYSTEM 'file:///etc/passwd'>";
  for (int i = 1; i <= 9; ++i) {
    const std::string inner = repeated("&e" + std::to_string(i - 1) + ";", 10);
    prolog += "<!ENTITY e" + std::to_string(i) + " '" + inner + "'>";
  }
  prolog += "<!ENTITY g '<path/>'>]>";
  // Values grow no longer than allowed, and no elements come out of them.
  EXPECT_EQ(rendered("<path/>", prolog)->paths, 1);
  EXPECT_LE(rendered("<path d='&e9;'/>", prolog)->paths, 1);
  EXPECT_EQ(rendered("<path fill='&x;'/>&g;", prolog)->paths, 1);
  rendered("&e9;&x;", prolog);
}

// Values count as missing when the entities of all together have become too long.
TEST(SVGHostileTextTest, LongEntitiesInManyValues) {
  const std::string blank(200000, ' ');
  for (const std::string& long_ : {blank, repeated("&none;", 200000)}) {
    auto renderer = std::make_shared<RecordingRenderer>();
    const auto document = SVGDocument::CreateSVGDocument(
        "<!DOCTYPE svg [<!ENTITY none ''><!ENTITY long '" + long_ +
            "'>]><svg width='9' height='9'>" + repeated("<path d='M0 0&long;h1'/>", 20) + "</svg>",
        renderer);
    document->Render();
    EXPECT_EQ(std::ranges::count(renderer->lines, "path M 0 0 L 1 0 fill 0,0,0,1"), 5);
    EXPECT_EQ(std::ranges::count(renderer->lines, "path  fill 0,0,0,1"), 15);
  }
}

TEST(SVGHostileTextTest, DamageIsNotReported) {
  testing::internal::CaptureStderr();
  rendered("<path xml:id='1 2' id='p'/><path id='p' id='q' a:b='c'/>&x;&#1;</g>",
           "<!DOCTYPE svg [<!ELEMENT svg (a)><!ELEMENT svg ANY><!ATTLIST path xml:id CDATA "
           "#IMPLIED><!ATTLIST path id ID #IMPLIED>]>");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(SVGHostileTextTest, FilesAreNotIncluded) {
  EXPECT_EQ(rendered("<xi:include xmlns:xi='http://www.w3.org/2001/XInclude' href='/etc/hosts' "
                     "parse='text'/><path/>",
                     "<?xml version='1.0'?><!DOCTYPE svg SYSTEM 'file:///dev/tty'>")
                ->paths,
            1);
}

TEST(SVGHostileTextTest, LongAttributesAndManyOfThem) {
  EXPECT_EQ(rendered("<path transform='" + repeated("scale(1)rotate(1)", 100000) + "'/>")->paths,
            1);
  EXPECT_EQ(rendered("<path style='" + std::string(5000000, 'x') + "'/>")->paths, 1);
  EXPECT_EQ(rendered("<path stroke-dasharray='" + repeated("1 ", 1000000) + "'>" + "</path>" +
                     repeated("<path/>", 1000))
                ->paths,
            1001);
  std::string attributes;
  for (int i = 0; i < 5000; ++i) attributes += " a" + std::to_string(i) + "='1'";
  EXPECT_EQ(rendered("<path" + attributes + "/>")->paths, 1);
}

TEST(SVGHostileTextTest, LongPaths) {
  EXPECT_EQ(rendered("<path d='M0 0" + repeated("h1", 4000000) + "'/>")->paths, 1);
  EXPECT_EQ(rendered("<polygon points='" + repeated("1 ", 4000000) + "'/>")->paths, 1);
}

TEST(SVGHostileTextTest, NumbersWithoutEnd) {
  const std::string huge = "1e38";
  rendered("<svg x='" + huge + "' width='" + huge + "' height='1e-38' viewBox='-1e38 -1e38 2e38 " +
           "3e-38'><rect width='100%' height='100%' rx='1e38'/><circle r='100%'/></svg>");
  rendered(
      "<g transform='scale(1e38)scale(1e38)translate(1e38)'><g transform='scale(1e38)"
      "matrix(1 1 1 1 0 0)skewX(90)'><path d='M1e38-1e38H-1e38'/></g></g>");
}

TEST(SVGHostileTextTest, OtherEncodings) {
  for (const std::string& text :
       {std::string("\xff\xfe<\0s\0v\0g\0/\0>\0", 14), std::string("\x1f\x8b\x08\0\0", 5),
        std::string("<?xml version='1.0' encoding='UTF-16'?><svg width='5'/>"),
        std::string("<?xml version='1.0' encoding='nonsense'?><svg width='5'/>"),
        std::string("<svg id='\xff\xc0\x80' width='5'><path/></svg>"),
        std::string("<svg\0/>", 7)}) {
    const auto renderer = std::make_shared<CountingRenderer>();
    const auto document = SVGDocument::CreateSVGDocument(text, renderer);
    if (document != nullptr) document->Render(10, 10);
    EXPECT_LE(renderer->paths, 1);
  }
}

TEST(SVGHostileTextTest, EveryPrefixOfAText) {
  const std::string text =
      "<?xml version='1.0'?><!DOCTYPE svg [<!ENTITY a 'b'>]><svg width='10' height='10' "
      "viewBox='0 0 5 5'><defs><linearGradient id='g'><stop offset='50%' stop-color='red'/>"
      "</linearGradient><clipPath id='c'><rect width='3' height='4'/></clipPath></defs>"
      "<g clip-path='url(#c)' transform='rotate(5 1 2)'><path d='M0 0a1 1 0 0 1 2 2z' "
      "fill='url(#g) red' stroke='#abc'/><use href='#c'/><![CDATA[x]]></g>"
      "<image href='data:image/png;base64,5x5'/></svg>";
  for (size_t length = 0; length <= text.size(); ++length) {
    const auto renderer = std::make_shared<CountingRenderer>();
    const auto document = SVGDocument::CreateSVGDocument(text.substr(0, length), renderer);
    if (document != nullptr) document->Render(10, 10);
    EXPECT_EQ(renderer->depth, 0) << length;
  }
}

TEST(SVGHostileTextTest, ManyThreadsReadAtOnce) {
  std::vector<std::thread> threads;
  std::vector<int64_t> paths(4);
  for (size_t i = 0; i < paths.size(); ++i) {
    threads.emplace_back([i, &paths] {
      for (int round = 0; round < 50; ++round) {
        paths[i] +=
            rendered("<use href='#p'/><path id='p' fill='red'/>" + repeated("<path/>", round))
                ->paths;
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (const int64_t count : paths) EXPECT_EQ(count, 2 * 50 + 49 * 50 / 2);
}

}  // namespace
