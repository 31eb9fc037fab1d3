#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "svg/tree/RecordingRenderer.h"
#include "svg/tree/SVGDocument.h"

using namespace SVGNative;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

using Lines = std::vector<std::string>;

struct Parsed {
  explicit Parsed(const std::string& text)
      : renderer(std::make_shared<RecordingRenderer>()),
        document(SVGDocument::CreateSVGDocument(text, renderer)) {}

  std::shared_ptr<RecordingRenderer> renderer;
  std::unique_ptr<SVGDocument> document;
};

/// What a document of 300 by 400 units with this content draws, without the frame around it.
Lines drawn(const std::string& content, const ColorMap& colors = {}) {
  const Parsed parsed(
      "<svg xmlns='http://www.w3.org/2000/svg' xmlns:xlink="
      "'http://www.w3.org/1999/xlink' viewBox='0 0 300 400'>" +
      content + "</svg>");
  if (parsed.document == nullptr) return {"no document"};
  parsed.document->Render(colors, 300, 400);
  const Lines frame{"save clip(R 0 0 300 400)", "save [1 0 0 1 0 0]", "save"};
  Lines lines = parsed.renderer->lines;
  const auto start = std::search(lines.begin(), lines.end(), frame.begin(), frame.end());
  if (lines.end() - start < 6) return {"no frame"};
  lines.erase(start, start + 3);
  lines.erase(lines.end() - 3, lines.end());
  return lines;
}

const std::string kBlack = " fill 0,0,0,1";

struct DrawCase {
  std::string name;
  std::string content;
  Lines lines;
};

void PrintTo(const DrawCase& c, std::ostream* out) {
  *out << c.name;
}

class SVGDocumentDrawTest : public testing::TestWithParam<DrawCase> {};

TEST_P(SVGDocumentDrawTest, Draws) {
  EXPECT_THAT(drawn(GetParam().content), ElementsAreArray(GetParam().lines));
}

const auto kCaseName = [](const auto& info) { return info.param.name; };

INSTANTIATE_TEST_SUITE_P(
    Shapes, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{"Rect", "<rect x='1' y='2' width='3' height='4'/>", {"path R 1 2 3 4" + kBlack}},
        DrawCase{"RectWithPercentages",
                 "<rect x='10%' y='10%' width='50%' height='50%'/>",
                 {"path R 30 40 150 200" + kBlack}},
        DrawCase{"RectWithOneRadius",
                 "<rect width='30' height='40' rx='5'/>",
                 {"path RR 0 0 30 40 5 5" + kBlack}},
        DrawCase{"RectWithTheOtherRadius",
                 "<rect width='30' height='40' ry='6' rx='-1'/>",
                 {"path RR 0 0 30 40 6 6" + kBlack}},
        DrawCase{"RectWithLargeRadii",
                 "<rect width='30' height='40' rx='100' ry='3'/>",
                 {"path RR 0 0 30 40 15 3" + kBlack}},
        DrawCase{"RectWithZeroRadius",
                 "<rect width='30' height='40' rx='0'/>",
                 {"path R 0 0 30 40" + kBlack}},
        DrawCase{"Circle", "<circle cx='5' cy='6' r='7'/>", {"path E 5 6 7 7" + kBlack}},
        // A diagonal percentage: half of the root of 300^2 + 400^2, not divided by the root of 2.
        DrawCase{"CircleWithPercentage", "<circle r='50%'/>", {"path E 0 0 250 250" + kBlack}},
        DrawCase{
            "Ellipse", "<ellipse cx='1in' cy='6' rx='7' ry='8'/>", {"path E 96 6 7 8" + kBlack}},
        DrawCase{"Line",
                 "<line x1='1' y1='2' x2='3' y2='4' stroke='red'/>",
                 {"path M 1 2 L 3 4" + kBlack + " stroke 1,0,0,1 width 1"}},
        DrawCase{
            "Polyline", "<polyline points='1,2 3-4 5 6 7'/>", {"path M 1 2 L 3 -4 L 5 6" + kBlack}},
        DrawCase{
            "Polygon", "<polygon points='1 2 3 4 5 6'/>", {"path M 1 2 L 3 4 L 5 6 Z" + kBlack}},
        DrawCase{"Path", "<path d='M1 2L3 4Z'/>", {"path M 1 2 L 3 4 Z" + kBlack}},
        DrawCase{"PathUpToItsError", "<path d='M1 2L3 4 5L'/>", {"path M 1 2 L 3 4" + kBlack}},
        DrawCase{"WithoutExtent",
                 "<rect width='0' height='4'/><rect width='-3' height='4'/><circle/>"
                 "<ellipse rx='3'/><polygon points='1,2,'/><polyline/><path/>",
                 Lines(7, "path " + kBlack)},
        DrawCase{"UnknownElements",
                 "<text>a</text><foo><rect width='1' height='1'/></foo><!-- c --><style>x</style>",
                 {}}),
    kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Styles, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{"Inheritance",
                 "<g fill='red' stroke='blue' stroke-width='3'><path fill='lime'/>"
                 "<g stroke='none'><path/></g></g><path/>",
                 {"save", "path  fill 0,1,0,1 stroke 0,0,1,1 width 3", "save", "path  fill 1,0,0,1",
                  "restore", "restore", "path " + kBlack}},
        DrawCase{"OpacityIsNotInherited",
                 "<g opacity='50%'><path opacity='2'/></g>",
                 {"save opacity 0.5", "path " + kBlack, "restore"}},
        DrawCase{
            "AllOfTheStroke",
            "<path fill='none' stroke='#f00' stroke-opacity='.25' stroke-width='2%' "
            "stroke-linecap='round' stroke-linejoin='bevel' stroke-miterlimit='7' "
            "stroke-dasharray='1 2,3' stroke-dashoffset='4'/>",
            {"path  stroke 1,0,0,1 width 10@0.25 roundcap beveljoin miter 7 dashes 3 phase 4"}},
        DrawCase{"UnknownCapsAndJoins",
                 "<g stroke-linecap='round' stroke-linejoin='round'>"
                 "<path stroke='red' stroke-linecap='x' stroke-linejoin='y' /></g>",
                 {"save", "path " + kBlack + " stroke 1,0,0,1 width 1", "restore"}},
        DrawCase{"InvalidValuesLeaveTheInheritedOnes",
                 "<g fill='red' fill-rule='evenodd' fill-opacity='.5' stroke='lime' "
                 "stroke-width='2' stroke-miterlimit='3' stroke-dasharray='1'>"
                 "<path fill='rad' fill-rule='odd' fill-opacity='x' stroke='' stroke-width='-1' "
                 "stroke-miterlimit='.5' stroke-dasharray='x'/></g>",
                 {"save", "path  fill 1,0,0,1@0.5 evenodd stroke 0,1,0,1 width 2 miter 3 dashes 1",
                  "restore"}},
        DrawCase{"DashesOff",
                 "<g stroke='red' stroke-dasharray='1'><path fill='none' "
                 "stroke-dasharray='none'/></g>",
                 {"save", "path  stroke 1,0,0,1 width 1", "restore"}},
        DrawCase{"NothingToPaint",
                 "<path fill='none'/><path fill='none' stroke='red' stroke-width='0'/>",
                 {}},
        DrawCase{
            "StyleAttributesAreIgnored", "<path style='fill:red' class='a'/>", {"path " + kBlack}},
        DrawCase{"CurrentColor",
                 "<g color='red' fill='currentColor'><path/><path color='lime'/></g>"
                 "<path fill='currentColor'/>",
                 {"save", "path  fill 1,0,0,1", "path  fill 0,1,0,1", "restore", "path " + kBlack}},
        DrawCase{"Display",
                 "<g display='none'><path/></g><path display=' none '/>"
                 "<path display='inline'/>",
                 {"path " + kBlack}},
        DrawCase{"Visibility",
                 "<g visibility='hidden'><path/><path visibility='visible'/></g>"
                 "<path visibility='collapse'/><path visibility='what'/>",
                 {"save", "path " + kBlack, "restore", "path " + kBlack}},
        DrawCase{
            "Transforms",
            "<g transform='translate(1 2)'><path transform='scale(2)'/>"
            "<path transform='scale(2'/></g>",
            {"save [1 0 0 1 1 2]", "path  [2 0 0 2 0 0]" + kBlack, "path " + kBlack, "restore"}}),
    kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Gradients, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{"LinearInUserSpace",
                 "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='10%' y1='10%' x2='9' "
                 "y2='8' spreadMethod='reflect' gradientTransform='scale(3)'>"
                 "<stop offset='.25' stop-color='red'/>"
                 "<stop offset='50%' stop-color='#00f' stop-opacity='.5'/></linearGradient>"
                 "<path fill='url(#g)'/>",
                 {"path  fill linear(30 40 9 8 reflect) [3 0 0 3 0 0] 0.25:1,0,0,1@1 "
                  "0.5:0,0,1,1@0.5"}},
        // The unit square is laid over the box of the shape, inside it the gradient's own matrix.
        DrawCase{"LinearInFractionsOfTheBox",
                 "<linearGradient id='g' gradientTransform='translate(.5)'>"
                 "<stop stop-color='red'/><stop offset='1'/></linearGradient>"
                 "<rect x='10' y='20' width='100' height='200' fill='url(#g)'/>",
                 {"path R 10 20 100 200 fill linear(0 0 1 0) [100 0 0 200 60 20] 0:1,0,0,1@1 "
                  "1:0,0,0,1@1"}},
        DrawCase{"RadialWithDefaults",
                 "<radialGradient id='g'><stop/><stop offset='1'/></radialGradient>"
                 "<circle r='5' fill='none' stroke='url(#g)'/>",
                 {"path E 0 0 5 5 stroke radial(0.5 0.5 0.5 0.5 0.5) [10 0 0 10 -5 -5] "
                  "0:0,0,0,1@1 1:0,0,0,1@1 width 1"}},
        DrawCase{"RadialInUserSpace",
                 "<radialGradient id='g' gradientUnits='userSpaceOnUse' cx='1' cy='2' r='10%' "
                 "fx='4' spreadMethod='repeat'><stop/><stop offset='1'/></radialGradient>"
                 "<path fill='url(#g)'/>",
                 {"path  fill radial(4 2 1 2 50 repeat) 0:0,0,0,1@1 1:0,0,0,1@1"}},
        DrawCase{"Referred",
                 "<path fill='url(#b)'/>"
                 "<linearGradient id='b' xlink:href='#a' y2='7'/>"
                 "<linearGradient id='a' href='#c' x2='5' y2='6' gradientUnits='userSpaceOnUse'/>"
                 "<linearGradient id='c' x1='3'><stop/><stop offset='1'/></linearGradient>",
                 {"path  fill linear(3 0 5 7) 0:0,0,0,1@1 1:0,0,0,1@1"}},
        // What the other kind does not have is not handed on by it; the rest is.
        DrawCase{"ReferredAcrossKinds",
                 "<linearGradient id='l' href='#r'/>"
                 "<radialGradient id='r' x1='3' cx='9' gradientUnits='userSpaceOnUse'>"
                 "<stop/><stop offset='1'/></radialGradient>"
                 "<radialGradient id='s' href='#m'/><linearGradient id='m' cy='7' href='#r'/>"
                 "<path fill='url(#l)'/><path fill='url(#s)'/>",
                 {"path  fill linear(0 0 300 0) 0:0,0,0,1@1 1:0,0,0,1@1",
                  "path  fill radial(9 200 9 200 250) 0:0,0,0,1@1 1:0,0,0,1@1"}},
        DrawCase{"ReferringToItself",
                 "<linearGradient id='a' href='#b'/><linearGradient id='b' href='#a'/>"
                 "<path fill='url(#a)'/>",
                 {}},
        DrawCase{"OffsetsNeverGoBack",
                 "<linearGradient id='g' gradientUnits='userSpaceOnUse'><stop offset='-1'/>"
                 "<stop offset='.5'/><stop offset='.2'/><stop offset='7'/></linearGradient>"
                 "<path fill='url(#g)'/>",
                 {"path  fill linear(0 0 300 0) 0:0,0,0,1@1 0.5:0,0,0,1@1 0.5:0,0,0,1@1 "
                  "1:0,0,0,1@1"}},
        DrawCase{"WithoutExtent",
                 "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='5' x2='5'>"
                 "<stop/><stop offset='1' stop-color='red' stop-opacity='.5'/></linearGradient>"
                 "<radialGradient id='r' r='0'><stop/><stop stop-color='lime'/></radialGradient>"
                 "<path fill='url(#g)'/><path fill='url(#r)'/>",
                 {"path  fill 1,0,0,0.5", "path  fill 0,1,0,1"}},
        DrawCase{"OneStopAndNone",
                 "<linearGradient id='g'><stop stop-color='red'/></linearGradient>"
                 "<linearGradient id='n'/><path fill='url(#g)'/><path fill='url(#n)'/>",
                 {"path  fill 1,0,0,1"}},
        // The box of a horizontal line has no height to measure in.
        DrawCase{"BoxWithoutArea",
                 "<linearGradient id='g'><stop/><stop offset='1'/></linearGradient>"
                 "<g color='lime' fill='none'><path d='M0 0H9' stroke='url(#g)'/>"
                 "<path d='M0 0H8' stroke='url(#g) red'/><path d='M0 0H7' stroke='url(#g) none'/>"
                 "<path d='M0 0H6' stroke='url(#g) currentColor'/>"
                 "<path d='M0 0H5' stroke='url(#g) #'/></g>",
                 {"save", "path M 0 0 L 8 0 stroke 1,0,0,1 width 1",
                  "path M 0 0 L 6 0 stroke 0,1,0,1 width 1", "restore"}},
        DrawCase{"MissingOnes",
                 "<path fill='url(#x)'/><path fill='url(#x) red'/><path fill='url(#x) none'/>"
                 "<g fill='red'><path fill='url(#x)y'/></g>",
                 {"path  fill 1,0,0,1", "save", "path  fill 1,0,0,1", "restore"}},
        // That of the stop or of what it stands in, not that of the element that is painted.
        DrawCase{"CurrentColorInStops",
                 "<g color='lime'><defs color='currentColor'><linearGradient id='g' "
                 "gradientUnits='userSpaceOnUse'><stop stop-color='currentColor'/>"
                 "<stop color='var(--a, blue)' stop-color='currentColor'/></linearGradient>"
                 "</defs></g><linearGradient id='h'><stop stop-color='currentColor'/>"
                 "</linearGradient><path color='red' fill='url(#g)'/>"
                 "<path color='red' fill='url(#h)'/>",
                 {"save", "restore", "path  fill linear(0 0 300 0) 0:0,1,0,1@1 0:0,0,1,1@1",
                  "path " + kBlack}}),
    kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Clips, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{"Shapes",
                 "<clipPath id='c' transform='scale(2)' clip-rule='evenodd'><rect width='1' "
                 "height='2'/><circle r='3' transform='translate(4 5)'/><text/>"
                 "<circle r='9' display='none'/><g><circle r='9'/></g></clipPath>"
                 "<path clip-path='url(#c)'/>",
                 {"path  clip(R 0 0 1 2 (E 0 0 3 3) 1 0 0 1 4 5) evenodd [2 0 0 2 0 0]" + kBlack}},
        DrawCase{"UsedBeforeAndOnGroups",
                 "<g clip-path=' url(#c) '/><defs><clipPath id='c'><circle r='3' "
                 "clip-rule='evenodd'/></clipPath></defs>",
                 {"save clip(E 0 0 3 3) evenodd", "restore"}},
        DrawCase{"InheritedRule",
                 "<g clip-rule='evenodd'><clipPath id='c'><circle r='3'/></clipPath></g>"
                 "<g clip-path='url(#c)'/>",
                 {"save", "restore", "save clip(E 0 0 3 3) evenodd", "restore"}},
        DrawCase{"References",
                 "<clipPath id='c'><use href='#r' x='5' transform='scale(2)'/><use href='#g'/>"
                 "</clipPath><defs><rect id='r' width='1' height='2' transform='scale(3)'/>"
                 "<g id='g'><path/></g></defs><g clip-path='url(#c)'/>",
                 {"save clip((R 0 0 1 2) 6 0 0 6 10 0)", "restore"}},
        DrawCase{"EmptyMissingAndUnsupported",
                 "<clipPath id='e'/><clipPath id='u' clipPathUnits='objectBoundingBox'>"
                 "<circle r='1'/></clipPath><g clip-path='url(#e)'/><g clip-path='url(#x)'/>"
                 "<g clip-path='url(#u)'/>",
                 {"save clip()", "restore", "save", "restore", "save", "restore"}}),
    kCaseName);

INSTANTIATE_TEST_SUITE_P(
    References, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{
            "InheritFromTheirPlace",
            "<defs><path id='p' stroke='lime'/></defs><g fill='blue'>"
            "<use xlink:href='#p' x='3' y='4' transform='scale(2)' fill='red'/>"
            "<use href='#p'/></g>",
            {"save", "save [2 0 0 2 6 8]", "path  fill 1,0,0,1 stroke 0,1,0,1 width 1", "restore",
             "save", "path  fill 0,0,1,1 stroke 0,1,0,1 width 1", "restore", "restore"}},
        DrawCase{"ForwardAndMissing",
                 "<use href='#p'/><use href='#q'/><use href='p'/><use/>"
                 "<path id='p'/>",
                 {"save", "path " + kBlack, "restore", "path " + kBlack}},
        DrawCase{"TheFirstOfAnId",
                 "<defs><path id='p' fill='red'/><path id='p' fill='lime'/>"
                 "</defs><use href='#p'/>",
                 {"save", "path  fill 1,0,0,1", "restore"}},
        DrawCase{"ToShapesOfClipPaths",
                 "<clipPath id='c'><path id='p' d='M1 2' fill='lime'/></clipPath>"
                 "<clipPath id='d'><use href='#p'/></clipPath>"
                 "<use href='#p' clip-path='url(#d)'/>",
                 {"save clip((M 1 2) 1 0 0 1 0 0)", "path M 1 2 fill 0,1,0,1", "restore"}},
        // One that reaches itself draws once and stops there.
        DrawCase{"ToThemselves",
                 "<g id='a'><path/><use href='#a'/></g>",
                 {"save", "path " + kBlack, "save", "save", "path " + kBlack, "restore", "restore",
                  "restore"}},
        DrawCase{
            "Circles",
            "<defs><g id='a'><use href='#b'/></g><g id='b'><path/><use href='#a'/></g></defs>"
            "<use href='#b'/>",
            {"save", "save", "path " + kBlack, "save", "save", "save", "save", "path " + kBlack,
             "restore", "restore", "restore", "restore", "restore", "restore"}},
        DrawCase{"UnseenTargets",
                 "<g display='none'><path id='p'/></g><path id='q' display='none'/>"
                 "<use href='#p'/><use href='#q'/><use href='#p' visibility='hidden'/>",
                 {"save", "path " + kBlack, "restore", "save", "restore", "save", "restore"}},
        DrawCase{"Symbols",
                 "<symbol id='s' viewBox='0 0 10 20'><rect width='100%' height='50%'/></symbol>"
                 "<use href='#s' x='5' width='20' height='20'/>",
                 {"save [1 0 0 1 5 0]", "save", "save clip(R 0 0 20 20)", "save [1 0 0 1 5 0]",
                  "path R 0 0 10 10" + kBlack, "restore", "restore", "restore", "restore"}},
        // Without a view box, percentages are of the size that the reference gives.
        DrawCase{"SymbolsOfTheirReferencesSize",
                 "<use href='#s' width='20' height='40'/><symbol id='s' width='100' height='100'>"
                 "<rect id='r' width='50%' height='25%'/></symbol><use href='#r'/>",
                 {"save", "save", "save clip(R 0 0 20 40)", "save [1 0 0 1 0 0]",
                  "path R 0 0 10 10" + kBlack, "restore", "restore", "restore", "restore", "save",
                  "path R 0 0 50 25" + kBlack, "restore"}},
        DrawCase{"SymbolsAsLargeAsTheirSurroundings",
                 "<symbol id='s' viewBox='0 0 30 20'><path/></symbol><use href='#s'/>",
                 {"save", "save", "save clip(R 0 0 300 400)", "save [10 0 0 10 0 100]",
                  "path " + kBlack, "restore", "restore", "restore", "restore"}}),
    kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Viewports, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{"Nested",
                 "<svg x='10' y='20' width='50%' height='40' viewBox='1 2 15 8' opacity='.5' "
                 "preserveAspectRatio='none'><rect width='10%' height='50%'/></svg>"
                 "<rect width='10%' height='50%'/>",
                 {"save opacity 0.5", "save clip(R 10 20 150 40)", "save [10 0 0 5 0 10]",
                  "path R 0 0 1.5 4" + kBlack, "restore", "restore", "restore",
                  "path R 0 0 30 200" + kBlack}},
        DrawCase{"WithoutViewBox",
                 "<svg x='10' width='40' height='50'><rect width='50%' height='50%'/></svg>",
                 {"save", "save clip(R 10 0 40 50)", "save [1 0 0 1 10 0]",
                  "path R 0 0 20 25" + kBlack, "restore", "restore", "restore"}},
        DrawCase{"WithoutArea",
                 "<svg width='0'><path/></svg><svg viewBox='0 0 0 5'><path/></svg>"
                 "<svg width='-5'><path/></svg><svg viewBox='0 0 1e-38 1' width='1e38' "
                 "preserveAspectRatio='none'><path/></svg>",
                 {"save", "restore", "save", "restore", "save", "restore", "save", "restore"}}),
    kCaseName);

INSTANTIATE_TEST_SUITE_P(
    Images, SVGDocumentDrawTest,
    testing::Values(
        DrawCase{"Centred",
                 "<image href='data:image/png;base64,20x10' x='5' width='100' height='100'/>",
                 {"png", "image 20x10 in 5 0 100 100 at 5 25 100 50"}},
        DrawCase{"Sliced",
                 "<image href='data:image/jpeg;base64,20x10' width='100' height='100' "
                 "preserveAspectRatio='xMaxYMin slice' opacity='.5'/>",
                 {"jpeg", "image 20x10 opacity 0.5 in 0 0 100 100 at -100 0 200 100"}},
        DrawCase{"Stretched",
                 "<image xlink:href='data:image/jpg;base64,20x10' width='30' height='30' "
                 "preserveAspectRatio='none'/>",
                 {"jpeg", "image 20x10 in 0 0 30 30 at 0 0 30 30"}},
        DrawCase{"OfTheirOwnSize",
                 "<image href='data:image/png;base64,20x10' y='1'/>",
                 {"png", "image 20x10 in 0 1 20 10 at 0 1 20 10"}},
        DrawCase{"DataInLines",
                 "<image href='data:image/png;base64,\n 20&#9;x&#13;\n1&#10;0\n'/>",
                 {"png", "image 20x10 in 0 0 20 10 at 0 0 20 10"}},
        DrawCase{"Ignored",
                 "<image href='data:image/gif;base64,20x10'/><image href='file:///a.png'/>"
                 "<image href='data:image/png,20x10'/><image/>",
                 {}},
        DrawCase{"Undecodable", "<image href='data:image/png;base64,?'/>", {"png"}},
        DrawCase{
            "Hidden", "<image href='data:image/png;base64,2x1' visibility='hidden'/>", {"png"}}),
    kCaseName);

TEST(SVGDocumentTest, CustomPropertiesComeFromTheMap) {
  const std::string content =
      "<g color='var(--c, lime)'><path fill='var(--a, red)'/><path fill='var(--b, #00f)'/>"
      "<path fill='var(--b, nonsense)'/><path fill='var(--b, #)'/><path fill='var(--b)'/>"
      "<path fill='currentColor'/><path fill='var(--b, currentColor)'/></g>";
  EXPECT_THAT(drawn(content, {{"--a", {0.5f, 0.5f, 0.5f, 0.25f}}}),
              ElementsAre("save", "path  fill 0.5,0.5,0.5,0.25", "path  fill 0,0,1,1",
                          "path " + kBlack, "path " + kBlack, "path " + kBlack,
                          "path  fill 0,1,0,1", "path  fill 0,1,0,1", "restore"));
  EXPECT_EQ(drawn(content, {{"--c", {0, 0, 1, 1}}})[6], "path  fill 0,0,1,1");
}

struct SizeCase {
  std::string attributes;
  int width;
  int height;
};

TEST(SVGDocumentTest, NaturalSizes) {
  const SizeCase cases[] = {
      {"width='20' height='30.9'", 20, 30},
      {"viewBox='0 0 40 50'", 40, 50},
      {"width='20' viewBox='0 0 40 50'", 20, 50},
      {"width='50%' height='200%' viewBox='0 0 40 50'", 20, 100},
      {"width='1in' height='x' viewBox='0 0 40 50'", 96, 50},
      {"viewBox='0 0 40'", 0, 0},
      {"", 0, 0},
      {"width='100%' height='100%'", 0, 0},
      {"width='0' height='-7'", 0, -7},
      {"width='1e30' height='5'", 1000000000, 5},
  };
  for (const auto& [attributes, width, height] : cases) {
    const Parsed parsed("<svg " + attributes + "/>");
    ASSERT_NE(parsed.document, nullptr) << attributes;
    EXPECT_EQ(parsed.document->Width(), width) << attributes;
    EXPECT_EQ(parsed.document->Height(), height) << attributes;
  }
}

TEST(SVGDocumentTest, TheViewBoxIsLaidIntoTheRequestedSize) {
  const Parsed parsed(
      "<svg width='10' height='10' viewBox='10 0 20 10' preserveAspectRatio='xMinYMax'/>");
  parsed.document->Render(100, 100);
  EXPECT_THAT(parsed.renderer->lines,
              ElementsAre("save clip(R 0 0 100 100)", "save [5 0 0 5 -50 50]", "save", "restore",
                          "restore", "restore"));
}

// 15.9 by 16 units are a picture of 15 by 16, which has no margins.
TEST(SVGDocumentTest, FractionsOfTheSizeAreStretchedAway) {
  for (const char* box : {"", " viewBox='0 0 31.8 32'"}) {
    const Parsed parsed("<svg width='15.9' height='16'" + std::string(box) + "/>");
    const std::string content = *box == 0 ? "save [1 0 0 1 0 0]" : "save [0.5 0 0 0.5 0 0]";
    parsed.document->Render(15, 16);
    EXPECT_THAT(parsed.renderer->lines,
                ElementsAre("save [0.943 0 0 1 0 0] clip(R 0 0 15.9 16)", content, "save",
                            "restore", "restore", "restore"));
    parsed.renderer->lines.clear();
    parsed.document->Render();
    EXPECT_EQ(parsed.renderer->lines[0], "save clip(R 0 0 15.9 16)");
  }
}

TEST(SVGDocumentTest, WithoutAViewBoxTheSizeCounts) {
  const Parsed parsed("<svg width='10' height='20'><rect width='50%' height='50%'/></svg>");
  parsed.document->Render();
  parsed.document->Render(20, 40);
  EXPECT_EQ(parsed.renderer->lines[1], "save [1 0 0 1 0 0]");
  EXPECT_EQ(parsed.renderer->lines[3], "path R 0 0 5 10" + kBlack);
  EXPECT_EQ(parsed.renderer->lines[8], "save [2 0 0 2 0 0]");
}

TEST(SVGDocumentTest, OneElementById) {
  const Parsed parsed(
      "<svg width='10' height='20'><g fill='red'><path id='p'/></g><symbol id='s'/></svg>");
  parsed.document->Render("nothing");
  EXPECT_THAT(parsed.renderer->lines, IsEmpty());
  parsed.document->Render("p");
  EXPECT_THAT(parsed.renderer->lines, ElementsAre("save clip(R 0 0 10 20)", "save [1 0 0 1 0 0]",
                                                  "path " + kBlack, "restore", "restore"));
  parsed.document->Render("s", 5, 10);
  EXPECT_EQ(parsed.renderer->lines[6], "save [0.5 0 0 0.5 0 0]");

  const Parsed colored("<svg width='10' height='20'><path id='p' fill='var(--a, red)'/></svg>");
  const ColorMap colors{{"--a", {0, 0.5f, 1, 0.25f}}};
  const std::string path = "path  fill 0,0.5,1,0.25";
  colored.document->Render("p", colors, 20, 40);
  EXPECT_THAT(colored.renderer->lines, ElementsAre("save clip(R 0 0 20 40)", "save [2 0 0 2 0 0]",
                                                   path, "restore", "restore"));
  // Without a size, the natural one.
  const Lines natural{"save clip(R 0 0 10 20)", "save [1 0 0 1 0 0]", path, "restore", "restore"};
  colored.renderer->lines.clear();
  colored.document->Render("p", colors);
  EXPECT_EQ(colored.renderer->lines, natural);
  colored.renderer->lines.clear();
  colored.document->Render(colors);
  EXPECT_THAT(colored.renderer->lines, testing::Contains(path));
  EXPECT_EQ(colored.renderer->lines[0], natural[0]);
}

TEST(SVGDocumentTest, BoundsAreTheRenderers) {
  const Parsed parsed(
      "<svg width='10' height='20'><rect id='r' x='1' y='2' width='3' height='4'/>"
      "<line x1='9' x2='10'/></svg>");
  Rect bounds;
  EXPECT_TRUE(parsed.document->GetBoundingBox(bounds));
  EXPECT_EQ(bounds, (Rect{{1, 10}, {0, 6}}));
  EXPECT_TRUE(parsed.document->GetBoundingBox("r", bounds));
  EXPECT_EQ(bounds, (Rect{{1, 4}, {2, 6}}));
  EXPECT_FALSE(parsed.document->GetBoundingBox("x", bounds));
}

/// As drawing programs write it, addresses of namespaces included.
TEST(SVGDocumentTest, EntitiesOfTheTextStandInValues) {
  const Parsed parsed(
      "<!DOCTYPE svg ["
      "<!ENTITY svg 'http://www.w3.org/2000/svg'>"
      "<!ENTITY xlink 'http://www.w3.org/1999/xlink'>"
      "<!ENTITY line 'L 3&#32;4'><!ENTITY lines '&line; &line;'><!ENTITY lime '#0f0'>"
      "<!ENTITY file SYSTEM 'file:///etc/hostname'>]>"
      "<svg xmlns='&svg;' xmlns:xlink='&xlink;' width='30' height='40'>"
      "<defs><g id='g'><path d='M&#49; 2&lines;z&missing;&file;'/></g></defs>"
      "<g fill='&lime;'><use xlink:href='#g'/></g></svg>");
  parsed.document->Render();
  EXPECT_THAT(parsed.renderer->lines, testing::Contains("path M 1 2 L 3 4 L 3 4 Z fill 0,1,0,1"));
}

TEST(SVGDocumentTest, KeepsItsRenderer) {
  const Parsed parsed("<svg width='30' height='40'/>");
  EXPECT_EQ(parsed.document->Renderer(), parsed.renderer);
}

TEST(RectTest, SetsOfPoints) {
  const Rect empty;
  const Rect rect = Rect::FromSize(1, 2, 4, 6);  // x from 1 to 5, y from 2 to 8
  const Rect line = Rect::FromSize(5, 0, 0, 3);  // x 5, y from 0 to 3
  const Rect apart = Rect::FromSize(6, 2, 1, 1);
  EXPECT_TRUE(empty.IsEmpty());
  EXPECT_FALSE(line.IsEmpty()) << "it holds points";
  EXPECT_EQ(rect.Intersection(line), Rect::FromSize(5, 2, 0, 1));
  EXPECT_EQ(rect.Intersection(Rect::FromSize(0, 7, 3, 9)), Rect::FromSize(1, 7, 2, 1));
  EXPECT_EQ(rect.Intersection(apart), empty);
  EXPECT_EQ(rect.Intersection(empty), empty);
  EXPECT_EQ(rect.Union(line), Rect::FromSize(1, 0, 4, 8));
  EXPECT_EQ(rect.Union(empty), rect);
  EXPECT_EQ(empty.Union(rect), rect);
  EXPECT_EQ(apart.Union(line), Rect::FromSize(5, 0, 2, 3));
  EXPECT_TRUE(rect.Contains(5, 8));
  EXPECT_FALSE(rect.Contains(5.5f, 8));
  EXPECT_FALSE(rect.Contains(1, 1));
  EXPECT_TRUE(rect.Contains(Rect::FromSize(2, 2, 3, 6)));
  EXPECT_FALSE(rect.Contains(line));
  EXPECT_TRUE(rect.Contains(empty));
  EXPECT_FALSE(empty.Contains(rect));
}

TEST(SVGDocumentTest, DamagedTexts) {
  const auto renderer = std::make_shared<RecordingRenderer>();
  EXPECT_EQ(SVGDocument::CreateSVGDocument("<svg/>", nullptr), nullptr);
  for (const char* text :
       {"", " ", "hello", "{}", "<svg fill='#'/>", "<svg><path fill='#xyz'/></svg>"}) {
    EXPECT_EQ(SVGDocument::CreateSVGDocument(text, renderer), nullptr) << text;
  }
  for (const char* text : {"<svgs width='5' height='5'><path/></svgs>", "<html><svg/></html>"}) {
    const auto document = SVGDocument::CreateSVGDocument(text, renderer);
    ASSERT_NE(document, nullptr) << text;
    EXPECT_EQ(document->Width(), 0);
    document->Render(10, 10);
    EXPECT_THAT(renderer->lines, IsEmpty()) << text;
  }
  // What can be made out of a text is kept.
  const Parsed parsed("<svg width='5' height='5'><g><path id='a'/></b><path <circle r='3' &");
  parsed.document->Render();
  EXPECT_THAT(parsed.renderer->lines, testing::Contains("path " + kBlack));
}

TEST(SVGDocumentTest, TextsThatAreTooLong) {
  std::string text = "<svg width='5' height='5'/>";
  text.resize(size_t{64} << 20, ' ');
  EXPECT_NE(Parsed(text).document, nullptr);
  text += ' ';
  EXPECT_EQ(Parsed(text).document, nullptr);
}

}  // namespace
