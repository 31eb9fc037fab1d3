#include "svg/SVGPictureCases.h"

namespace {

constexpr SVGPictureCase kPictures[] = {
    // Shapes
    {"Rect", "<rect x='10' y='20' width='80' height='50' fill='teal'/>"},
    {"RectOnFractions", "<rect x='10.25' y='20.5' width='80.5' height='50.75' fill='teal'/>"},
    {"RectWithRoundCorners", "<rect x='10' y='20' width='80' height='50' rx='15' fill='teal'/>"},
    {"RectWithEllipticCorners",
     "<rect x='10' y='20' width='80' height='50' rx='30' ry='10' fill='teal'/>"},
    {"RectWithLargeCorners",
     "<rect x='10' y='20' width='80' height='50' rx='90' ry='90' fill='teal'/>"},
    {"Circle", "<circle cx='60' cy='60' r='45' fill='orchid'/>"},
    {"Ellipse", "<ellipse cx='60' cy='60' rx='50' ry='25' fill='orchid'/>"},
    {"Line", "<line x1='10' y1='15' x2='110' y2='90' stroke='navy' stroke-width='7'/>"},
    {"Polyline",
     "<polyline points='10,10 50,100 90,20 110 110' fill='gold' stroke='navy' stroke-width='4'/>"},
    {"Polygon",
     "<polygon points='10,10 50,100 90,20 110 110' fill='gold' stroke='navy' stroke-width='4'/>"},
    {"Percentages",
     "<rect x='10%' y='25%' width='50%' height='50%' fill='teal'/><ellipse cx='75%' cy='75%' "
     "rx='20%' ry='10%' fill='orchid'/>"},
    {"Units",
     "<rect x='0.1in' y='5mm' width='2cm' height='30pt' fill='teal'/>"
     "<rect x='3pc' y='70px' width='40' height='20' fill='orchid'/>"},

    // Path data
    {"PathOfLines", "<path d='M10 10h80v30H40V90l-30 10z' fill='sienna'/>"},
    {"PathOfCubics", "<path d='M10 60C10 0 60 0 60 60S110 120 110 60z' fill='sienna'/>"},
    {"PathOfRelativeCubics", "<path d='m10 60c0-60 50-60 50 0s50 60 50 0z' fill='sienna'/>"},
    {"PathOfQuadratics", "<path d='M10 60Q35 0 60 60T110 60V110H10z' fill='sienna'/>"},
    {"PathOfRelativeQuadratics", "<path d='m10 60q25-60 50 0t50 0v50h-100z' fill='sienna'/>"},
    {"PathWithArcs",
     "<path d='M20 60A40 40 0 0 1 100 60A40 40 0 0 1 20 60' fill='none' stroke='sienna' "
     "stroke-width='6'/>"},
    {"PathWithEveryArcFlag",
     "<g fill='none' stroke-width='5'><path d='M40 40A30 30 0 0 0 80 70' stroke='red'/>"
     "<path d='M40 40A30 30 0 0 1 80 70' stroke='green'/>"
     "<path d='M40 40A30 30 0 1 0 80 70' stroke='blue'/>"
     "<path d='M40 40A30 30 0 1 1 80 70' stroke='black'/></g>"},
    {"PathWithTouchingArcFlags",
     "<path d='M20 60a40 40 0 0180 0a40,40,0,1,1-80,0z' fill='sienna'/>"},
    {"PathWithArcOfSmallRadius", "<path d='M20 60A5 5 0 0 1 100 60z' fill='sienna'/>"},
    {"PathWithAlmostFullArc",
     "<path d='M60 20a40 40 0 1 1-.01 0z' fill='none' stroke='sienna' stroke-width='9'/>"},
    {"PathOfSubpaths",
     "<path d='M10 10h40v40h-40zm60 0l30 50h-60zM20 70h80v40h-80' fill='sienna'/>"},
    {"PathGoingOnAfterClose", "<path d='M30 30h40v40zl-20 60' stroke='sienna' stroke-width='5'/>"},
    {"PathWithoutSeparators", "<path d='M10.5.5L90-10 95.5.5l-.5e1 80-60.5.5z' fill='sienna'/>"},
    {"PathUpToItsError", "<path d='M10 10H100V100L50 50 20' fill='sienna'/>"},

    // Fills
    {"NonZeroRule", "<path d='M60 5L93 107 6 43H114L27 107z' fill='olive' fill-rule='nonzero'/>"},
    {"EvenOddRule", "<path d='M60 5L93 107 6 43H114L27 107z' fill='olive' fill-rule='evenodd'/>"},
    {"NonZeroHole", "<path d='M10 10h100v100h-100zM40 40v40h40v-40z' fill='olive'/>"},
    {"FillOpacity",
     "<rect width='80' height='80' fill='red'/><rect x='30' y='30' width='80' height='80' "
     "fill='blue' fill-opacity='40%'/>"},
    {"ColourForms",
     "<rect width='20' height='120' fill='#c63'/><rect x='20' width='20' height='120' "
     "fill='#cc6633'/><rect x='40' width='20' height='120' fill='rgb(204,102,51)'/>"
     "<rect x='60' width='20' height='120' fill='rgb(80%, 40%, 20%)'/>"
     "<rect x='80' width='20' height='120' fill='RebeccaPurple'/>"},
    {"CurrentColour",
     "<g color='crimson' fill='currentColor'><rect width='50' height='50'/>"
     "<rect x='60' width='50' height='50' color='navy'/></g>"},

    // Strokes
    {"ButtCaps", "<path d='M30 30H90M30 60H90' stroke='black' stroke-width='20'/>"},
    {"RoundCaps",
     "<path d='M30 30H90M30 80L90 90' stroke='black' stroke-width='20' stroke-linecap='round'/>"},
    {"SquareCaps",
     "<path d='M30 30H90M30 80L90 90' stroke='black' stroke-width='20' stroke-linecap='square'/>"},
    {"MiterJoins",
     "<path d='M20 100L60 20 100 100' fill='none' stroke='black' stroke-width='16'/>"},
    {"MiterLimit",
     "<path d='M20 100L40 20 60 100M70 100L90 20 110 100' fill='none' stroke='black' "
     "stroke-width='8' stroke-miterlimit='2'/>"},
    {"RoundJoins",
     "<path d='M20 100L60 20 100 100' fill='none' stroke='black' stroke-width='16' "
     "stroke-linejoin='round'/>"},
    {"BevelJoins",
     "<path d='M20 100L60 20 100 100' fill='none' stroke='black' stroke-width='16' "
     "stroke-linejoin='bevel'/>"},
    {"ClosedStroke", "<path d='M30 30H90V90H30z' fill='none' stroke='black' stroke-width='20'/>"},
    {"StrokeOpacity",
     "<path d='M20 20L100 100M20 100L100 20' stroke='black' stroke-width='20' "
     "stroke-opacity='.5'/>"},
    {"StrokeOverFill",
     "<circle cx='60' cy='60' r='40' fill='gold' stroke='navy' stroke-width='16' "
     "stroke-opacity='.6'/>"},
    {"StretchedStroke",
     "<circle cx='20' cy='60' r='12' fill='none' stroke='black' stroke-width='6' "
     "transform='scale(3 1)'/>"},
    {"WideCurve",
     "<path d='M10 100C10 0 110 0 110 100' fill='none' stroke='black' stroke-width='25'/>"},
    {"NoStrokeWithoutWidth",
     "<rect x='9' y='9' width='90' height='90' fill='tan' stroke='red' "
     "stroke-width='0'/>"},

    // Transforms
    {"Translate", "<rect width='50' height='50' fill='teal' transform='translate(30,40)'/>"},
    {"Scale", "<rect width='20' height='20' fill='teal' transform='scale(2 4.5)'/>"},
    {"Rotate", "<rect x='50' width='40' height='40' fill='teal' transform='rotate(30)'/>"},
    {"RotateAboutAPoint",
     "<rect x='40' y='40' width='40' height='40' fill='teal' transform='rotate(30 60 60)'/>"},
    {"Skew",
     "<rect x='10' width='40' height='40' fill='teal' transform='skewX(30)'/>"
     "<rect x='60' width='40' height='40' fill='navy' transform='skewY(-20)translate(0 80)'/>"},
    {"Matrix", "<rect width='40' height='40' fill='teal' transform='matrix(1.5 .5-.5 1 40 10)'/>"},
    {"TransformList",
     "<rect width='20' height='20' fill='teal' transform='translate(60 60), rotate(45) "
     "scale(2)'/>"},
    {"NestedTransforms",
     "<g transform='translate(60 20)'><g transform='rotate(45)'><rect width='40' height='40' "
     "fill='teal' transform='scale(1.5)'/></g></g>"},

    // Groups
    {"Inheritance",
     "<g fill='gold' stroke='navy' stroke-width='6'><circle cx='30' cy='30' r='20'/>"
     "<g fill='tan' stroke-linejoin='round'><rect x='60' y='10' width='40' height='40'/>"
     "<rect x='60' y='70' width='40' height='40' stroke='none'/></g></g>"},
    {"GroupOpacity",
     "<g opacity='.5'><rect x='10' y='10' width='60' height='60' fill='red'/>"
     "<rect x='40' y='40' width='60' height='60' fill='blue'/></g>"},
    {"NestedGroupOpacity",
     "<rect width='120' height='60' fill='gold'/><g opacity='.7'><circle cx='50' cy='60' r='40' "
     "fill='red'/><g opacity='50%'><circle cx='70' cy='50' r='30' fill='blue'/>"
     "<circle cx='70' cy='80' r='30' fill='lime'/></g></g>"},
    {"ElementOpacity",
     "<rect width='120' height='60' fill='gold'/><circle cx='60' cy='60' r='40' fill='red' "
     "stroke='blue' stroke-width='20' opacity='.5'/>"},
    {"DisplayAndVisibility",
     "<rect width='40' height='40' display='none'/><g visibility='hidden'><rect x='40' width='40' "
     "height='40'/><rect x='80' width='40' height='40' visibility='visible' fill='teal'/></g>"},

    // Gradients
    {"LinearGradient",
     "<linearGradient id='g'><stop stop-color='red'/><stop offset='1' stop-color='blue'/>"
     "</linearGradient><rect x='10' y='10' width='100' height='100' fill='url(#g)'/>"},
    {"LinearGradientWithManyStops",
     "<linearGradient id='g' x2='0' y2='1'><stop offset='.1' stop-color='red'/><stop offset='40%' "
     "stop-color='#ff0' stop-opacity='.5'/><stop offset='.4' stop-color='lime'/><stop offset='.9' "
     "stop-color='blue' stop-opacity='0'/></linearGradient><circle cx='60' cy='60' r='50' "
     "fill='url(#g)'/>"},
    {"LinearGradientInUserSpace",
     "<linearGradient id='g' gradientUnits='userSpaceOnUse' x1='30' y1='30' x2='80' y2='60'>"
     "<stop stop-color='red'/><stop offset='1' stop-color='blue'/></linearGradient>"
     "<rect x='10' y='10' width='100' height='100' fill='url(#g)'/>"},
    {"LinearGradientAcrossAnOblongBox",
     "<linearGradient id='g' x2='1' y2='1'><stop stop-color='white'/><stop offset='1'/>"
     "</linearGradient><rect x='10' y='40' width='100' height='30' fill='url(#g)'/>"},
    {"GradientTransform",
     "<linearGradient id='g' gradientTransform='rotate(60)skewX(20)'><stop stop-color='red'/>"
     "<stop offset='1' stop-color='blue'/></linearGradient><rect x='10' y='10' width='100' "
     "height='80' fill='url(#g)'/>"},
    {"RadialGradient",
     "<radialGradient id='g'><stop stop-color='white'/><stop offset='1' stop-color='purple'/>"
     "</radialGradient><rect x='10' y='10' width='100' height='60' fill='url(#g)'/>"},
    {"RadialGradientWithFocus",
     "<radialGradient id='g' cx='.5' cy='.5' r='.5' fx='.25' fy='.3'><stop stop-color='white'/>"
     "<stop offset='1' stop-color='purple'/></radialGradient><circle cx='60' cy='60' r='50' "
     "fill='url(#g)'/>"},
    {"RadialGradientInUserSpace",
     "<radialGradient id='g' gradientUnits='userSpaceOnUse' cx='50' cy='70' r='40' "
     "gradientTransform='translate(0 20) scale(1 .6)'><stop stop-color='gold'/><stop offset='.6' "
     "stop-color='teal'/><stop offset='1' stop-color='navy'/></radialGradient>"
     "<rect x='5' y='5' width='110' height='110' fill='url(#g)'/>"},
    {"GradientStroke",
     "<linearGradient id='g' gradientUnits='userSpaceOnUse' x2='120'><stop stop-color='red'/>"
     "<stop offset='1' stop-color='blue'/></linearGradient><path d='M20 100L60 20 100 100' "
     "fill='none' stroke='url(#g)' stroke-width='20' stroke-opacity='.7'/>"},
    {"RadialGradientStroke",
     "<radialGradient id='g'><stop offset='.7' stop-color='red'/><stop offset='1' "
     "stop-color='blue'/></radialGradient><circle cx='60' cy='60' r='45' fill='none' "
     "stroke='url(#g)' stroke-width='20'/>"},
    {"GradientFromAnother",
     "<rect x='5' y='5' width='110' height='110' fill='url(#b)'/>"
     "<linearGradient id='b' xlink:href='#a' x1='.5' gradientTransform='rotate(20)'/>"
     "<linearGradient id='a'><stop stop-color='gold'/><stop offset='1' stop-color='navy'/>"
     "</linearGradient>"},
    {"GradientOpacities",
     "<rect width='120' height='60' fill='black'/><linearGradient id='g'><stop stop-color='red' "
     "stop-opacity='.2'/><stop offset='1' stop-color='blue'/></linearGradient>"
     "<rect x='10' y='10' width='100' height='100' fill='url(#g)' fill-opacity='.6' "
     "opacity='.8'/>"},
    {"MissingGradient",
     "<rect width='60' height='120' fill='url(#x) teal'/>"
     "<rect x='60' width='60' height='120' fill='url(#x)'/>"},

    // Clips
    {"ClipPath",
     "<clipPath id='c'><circle cx='60' cy='60' r='40'/></clipPath>"
     "<rect x='10' y='10' width='100' height='60' fill='teal' clip-path='url(#c)'/>"},
    {"ClipRule",
     "<clipPath id='c'><path d='M60 5L93 107 6 43H114L27 107z' clip-rule='evenodd'/></clipPath>"
     "<rect width='120' height='120' fill='teal' clip-path='url(#c)'/>"},
    {"ClipPathOfSeveralShapes",
     "<clipPath id='c'><rect width='50' height='50'/><rect x='60' y='60' width='40' height='40' "
     "transform='rotate(20 80 80)'/><use xlink:href='#r' x='10'/></clipPath>"
     "<defs><circle id='r' cx='70' cy='30' r='20'/></defs>"
     "<rect width='120' height='120' fill='teal' clip-path='url(#c)'/>"},
    {"ClippedAndTurnedGroup",
     "<clipPath id='c' transform='scale(1.5)'><rect x='10' y='10' width='40' height='40'/>"
     "</clipPath><g clip-path='url(#c)' transform='rotate(20 60 60)'><circle cx='40' cy='40' "
     "r='40' fill='red'/><circle cx='80' cy='60' r='40' fill='blue' fill-opacity='.5'/></g>"},
    {"ClipsInsideClips",
     "<clipPath id='a'><rect x='20' y='20' width='80' height='50'/></clipPath><clipPath id='b'>"
     "<circle cx='60' cy='70' r='40'/></clipPath><g clip-path='url(#a)'><rect width='120' "
     "height='120' fill='teal' clip-path='url(#b)'/></g>"},
    {"EmptyClipPath",
     "<clipPath id='c'/><rect width='60' height='60' clip-path='url(#c)'/><rect x='60' y='60' "
     "width='60' height='60' fill='teal'/>"},
    {"ClippedTranslucentGroup",
     "<clipPath id='c'><circle cx='60' cy='60' r='50'/></clipPath><g clip-path='url(#c)' "
     "opacity='.5'><rect width='80' height='80' fill='red'/><rect x='40' y='40' width='80' "
     "height='80' fill='blue'/></g>"},

    // References
    {"Use",
     "<defs><rect id='r' width='30' height='30'/></defs><use xlink:href='#r' x='10' y='10' "
     "fill='red'/><use href='#r' x='50' y='50' transform='rotate(10)' fill='blue'/>"},
    {"UseOfAGroup",
     "<g id='a' fill='gold'><circle cx='20' cy='20' r='15'/><rect x='20' y='20' width='20' "
     "height='20' fill='teal'/></g><use href='#a' x='60' y='60' opacity='.5'/>"},
    {"UseOfAUse",
     "<defs><circle id='a' r='10'/><use id='b' href='#a' x='20'/></defs><use href='#b' y='30'/>"
     "<use href='#b' x='50' y='60' transform='scale(1.2)' fill='teal'/>"},
    {"UseOfASymbol",
     "<symbol id='s' viewBox='0 0 10 10'><circle cx='5' cy='5' r='5' fill='teal'/></symbol>"
     "<use href='#s' x='10' y='10' width='40' height='40'/><use href='#s' x='60' y='30' "
     "width='50' height='80'/>"},
    {"UseOfAClippedShape",
     "<clipPath id='c'><rect width='30' height='60'/></clipPath><defs><circle id='a' cx='30' "
     "cy='30' r='25' clip-path='url(#c)'/></defs><use href='#a' x='40' y='30' fill='teal'/>"},

    // Viewports
    {"ViewBox",
     "<svg width='120' height='120' viewBox='-10 -10 40 40'><circle cx='10' cy='10' "
     "r='15' fill='teal'/></svg>"},
    {"ViewBoxOfOtherProportions",
     "<svg width='120' height='80' viewBox='0 0 20 20' preserveAspectRatio='xMinYMid'><rect "
     "width='20' height='20' fill='teal'/></svg>"},
    {"ViewBoxStretched",
     "<svg width='120' height='80' viewBox='0 0 20 20' preserveAspectRatio='none'><circle cx='10' "
     "cy='10' r='9' fill='none' stroke='teal' stroke-width='2'/></svg>"},
    {"ViewBoxSliced",
     "<svg width='120' height='80' viewBox='0 0 20 20' preserveAspectRatio='xMidYMax slice'>"
     "<circle cx='10' cy='10' r='9' fill='teal'/></svg>"},
    {"NestedViewport",
     "<svg x='20' y='10' width='60' height='90' viewBox='0 0 10 10'><circle cx='5' cy='5' r='8' "
     "fill='teal'/></svg>"},
    {"NestedViewportsAligned",
     "<svg x='5' y='5' width='50' height='20' viewBox='0 0 9 9' preserveAspectRatio='xMaxYMid'>"
     "<rect width='9' height='9' fill='red'/></svg><svg x='60' y='5' width='20' height='100' "
     "viewBox='0 0 9 9' preserveAspectRatio='xMidYMax'><rect width='9' height='9' fill='teal'/>"
     "</svg><svg x='5' y='40' width='50' height='20' viewBox='0 0 9 9' "
     "preserveAspectRatio='xMinYMin slice'><circle cx='4' cy='4' r='4' fill='navy'/></svg>"},
    {"NestedViewportWithoutViewBox",
     "<svg x='20' y='30' width='50%' height='50%'><rect width='50%' height='100%' fill='teal'/>"
     "<circle r='20' fill='gold'/></svg>"},
    {"PhysicalSize",
     "<svg width='1in' height='6pc' viewBox='0 0 96 96'><rect x='10' y='10' width='70' "
     "height='50' fill='teal'/></svg>"},
    {"Enlarged",
     "<svg width='200' height='200' viewBox='0 0 10 10'><path d='M1 1l8 1-1 6-5 1z' "
     "fill='teal' stroke='navy' stroke-width='.5'/></svg>"},
    {"Reduced",
     "<svg width='60' height='60' viewBox='0 0 1200 1200'><path d='M100 100l800 100-100 "
     "600-500 100z' fill='teal' stroke='navy' stroke-width='50'/></svg>"},
};

constexpr SVGDifferenceCase kDifferences[] = {
    {"DashesAreDrawnSolid",
     "<path d='M10 20H110M10 60H110' stroke='navy' stroke-width='8' stroke-dasharray='10 5' "
     "stroke-dashoffset='3'/>",
     "<path d='M10 20H110M10 60H110' stroke='navy' stroke-width='8'/>"},
    {"ReflectedGradientsArePadded",
     "<linearGradient id='g' spreadMethod='reflect' x1='.4' x2='.6'><stop stop-color='red'/>"
     "<stop offset='1' stop-color='blue'/></linearGradient><rect x='10' y='10' width='100' "
     "height='100' fill='url(#g)'/>",
     "<linearGradient id='g' x1='.4' x2='.6'><stop stop-color='red'/><stop offset='1' "
     "stop-color='blue'/></linearGradient><rect x='10' y='10' width='100' height='100' "
     "fill='url(#g)'/>"},
    {"RepeatedGradientsArePadded",
     "<radialGradient id='g' spreadMethod='repeat' r='.2'><stop stop-color='red'/><stop "
     "offset='1' stop-color='blue'/></radialGradient><rect x='10' y='10' width='100' "
     "height='100' fill='url(#g)'/>",
     "<radialGradient id='g' r='.2'><stop stop-color='red'/><stop offset='1' stop-color='blue'/>"
     "</radialGradient><rect x='10' y='10' width='100' height='100' fill='url(#g)'/>"},
    {"StyleAttributesAreIgnored",
     "<rect x='10' y='10' width='100' height='100' fill='teal' style='fill:red'/>",
     "<rect x='10' y='10' width='100' height='100' fill='teal'/>"},
    {"StyleSheetsAreIgnored",
     "<style>rect{fill:red} .a{display:none}</style><rect class='a' x='10' y='10' width='100' "
     "height='100' fill='teal'/>",
     "<rect x='10' y='10' width='100' height='100' fill='teal'/>"},
    // The diagonal of 120 by 120 is 169.7: 30 % of it, not of that divided by the root of two.
    {"DiagonalPercentagesAreOfTheWholeDiagonal", "<circle cx='60' cy='60' r='30%' fill='teal'/>",
     "<circle cx='60' cy='60' r='50.9117' fill='teal'/>"},
    {"StrokeWidthsInPercentAreOfTheWholeDiagonal",
     "<path d='M10 60H110' stroke='navy' stroke-width='10%'/>",
     "<path d='M10 60H110' stroke='navy' stroke-width='16.9706'/>"},
    {"ClipPathsInFractionsOfTheBoxClipNothing",
     "<clipPath id='c' clipPathUnits='objectBoundingBox'><rect width='.5' height='.5'/></clipPath>"
     "<rect x='10' y='10' width='100' height='100' fill='teal' clip-path='url(#c)'/>",
     "<rect x='10' y='10' width='100' height='100' fill='teal'/>"},
    {"TextIsLeftOut",
     "<rect x='10' y='10' width='100' height='100' fill='teal'/><text y='80' font-size='90' "
     "fill='red'>M</text>",
     "<rect x='10' y='10' width='100' height='100' fill='teal'/>"},
    // SVG 1.1 wants the following three; the other renderer differs or follows a later version.
    {"SymbolsAreClippedToTheirViewport",
     "<symbol id='s' viewBox='0 0 10 10'><circle cx='5' cy='5' r='7' fill='teal'/></symbol>"
     "<use href='#s' x='10' y='10' width='100' height='100'/>",
     "<svg x='10' y='10' width='100' height='100' viewBox='0 0 10 10'><circle cx='5' cy='5' r='7' "
     "fill='teal'/></svg>"},
    {"GradientsWithoutExtentPaintTheirLastColour",
     "<linearGradient id='g' x1='.5' x2='.5'><stop stop-color='red'/><stop offset='1' "
     "stop-color='teal'/></linearGradient><rect x='10' y='10' width='100' height='100' "
     "fill='url(#g)'/>",
     "<rect x='10' y='10' width='100' height='100' fill='teal'/>"},
    {"AFocusOutsideTheCircleIsMovedOntoIt",
     "<radialGradient id='g' gradientUnits='userSpaceOnUse' cx='60' cy='60' r='40' fx='120' "
     "fy='60'><stop stop-color='red'/><stop offset='1' stop-color='blue'/></radialGradient>"
     "<rect x='10' y='10' width='100' height='100' fill='url(#g)'/>",
     "<radialGradient id='g' gradientUnits='userSpaceOnUse' cx='60' cy='60' r='40' fx='99.6' "
     "fy='60'><stop stop-color='red'/><stop offset='1' stop-color='blue'/></radialGradient>"
     "<rect x='10' y='10' width='100' height='100' fill='url(#g)'/>"},
};

}  // namespace

std::span<const SVGPictureCase> svgPictureCases() {
  return kPictures;
}

std::span<const SVGDifferenceCase> svgDifferenceCases() {
  return kDifferences;
}
