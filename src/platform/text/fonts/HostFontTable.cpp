// Families with their faces, vertical metrics and stand-ins. Metrics were read from published
// measurements of the host's own fonts where these exist; families without metrics take those of
// their stand-in. Horizontal scales are the quotient of the average lower-case widths. The file is
// long because it is one table.
#include "platform/text/fonts/HostFontTable.h"

namespace {
// Stand-ins, best first: the family, its horizontal scale, and the weights and sizes it serves.
constexpr HostSubstitute kLikeHelvetica[] = {{"Nimbus Sans"}, {"Liberation Sans"}};
constexpr HostSubstitute kLikeHelveticaNeue[] = {{"Inter", .95, 0, 350},
                                                 {"Inter", .93, 450, 550},
                                                 {"Nimbus Sans", 1.009},
                                                 {"Liberation Sans", 1.009}};
constexpr HostSubstitute kLikeArial[] = {{"Liberation Sans"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeArialNarrow[] = {
    {"Liberation Sans Narrow"}, {"Nimbus Sans Narrow"}, {"Liberation Sans", .85}};
constexpr HostSubstitute kLikeArialBlack[] = {{"Inter", 1.1}, {"Liberation Sans", 1.15}};
constexpr HostSubstitute kRounded[] = {{"Quicksand"}, {"Inter"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeTimes[] = {{"Nimbus Roman"}, {"Liberation Serif"}};
constexpr HostSubstitute kLikeTimesNewRoman[] = {{"Liberation Serif"}, {"Nimbus Roman"}};
constexpr HostSubstitute kLikeCourier[] = {{"Nimbus Mono PS"}, {"Liberation Mono"}};
constexpr HostSubstitute kLikeCourierNew[] = {{"Liberation Mono"}, {"Nimbus Mono PS"}};
constexpr HostSubstitute kSystem[] = {
    {"Inter Display", .96, 0, 1000, 20}, {"Inter"}, {"Nimbus Sans"}, {"Liberation Sans"}};
constexpr HostSubstitute kLikeLucidaGrande[] = {
    {"Inter", 1.026}, {"DejaVu Sans", .96}, {"Nimbus Sans", 1.103}};
constexpr HostSubstitute kLikeMenlo[] = {{"DejaVu Sans Mono"}, {"Liberation Mono"}};
constexpr HostSubstitute kLikeVerdana[] = {{"DejaVu Sans"}, {"Liberation Sans", 1.149}};
constexpr HostSubstitute kLikeTahoma[] = {{"DejaVu Sans", .875}, {"Liberation Sans"}};
constexpr HostSubstitute kLikeTrebuchet[] = {{"Open Sans", .97}, {"Liberation Sans", 1.023}};
constexpr HostSubstitute kLikeGeorgia[] = {
    {"Vollkorn", 1.02}, {"Noto Serif", .92}, {"Liberation Serif", 1.086}};
constexpr HostSubstitute kLikePalatino[] = {{"P052"}, {"Liberation Serif", 1.08}};
constexpr HostSubstitute kLikeBookman[] = {{"URW Bookman"}, {"Liberation Serif", 1.15}};
constexpr HostSubstitute kLikeCentury[] = {{"C059"}, {"Liberation Serif", 1.13}};
constexpr HostSubstitute kGeometric[] = {{"URW Gothic"}, {"Inter"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeFutura[] = {{"League Spartan"}, {"URW Gothic"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeAvenir[] = {{"Manrope"}, {"Lato"}, {"Inter", .95}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeGillSans[] = {{"Gillius ADF"}, {"Cabin"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeOptima[] = {{"Linux Biolinum O"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeCalibri[] = {{"Carlito"}, {"Nimbus Sans"}};
constexpr HostSubstitute kLikeCambria[] = {{"Caladea"}, {"Liberation Serif"}};
constexpr HostSubstitute kLikeBaskerville[] = {{"Baskervald ADF Std"}, {"Liberation Serif"}};
constexpr HostSubstitute kLikeDidot[] = {{"GFS Didot"}, {"Liberation Serif"}};
constexpr HostSubstitute kLikeBodoni[] = {{"Old Standard TT"}, {"GFS Didot"}, {"Liberation Serif"}};
constexpr HostSubstitute kLikeGaramond[] = {{"EB Garamond"}, {"Liberation Serif"}};
constexpr HostSubstitute kLikeCharter[] = {{"Charis SIL"}, {"Liberation Serif"}};
constexpr HostSubstitute kSlab[] = {{"Roboto Slab"}, {"URW Bookman"}, {"Liberation Serif"}};
constexpr HostSubstitute kTypewriter[] = {
    {"Courier Prime"}, {"Nimbus Mono PS"}, {"Liberation Mono"}};
constexpr HostSubstitute kLikeCopperplate[] = {{"Linux Libertine O"}, {"Liberation Serif"}};
// Their plain faces are as heavy as the stand-ins' bold ones.
constexpr HostSubstitute kLikeImpact[] = {{"Bebas Neue", 1, 0, 1000, 0, 700},
                                          {"Nimbus Sans Narrow", 1, 0, 1000, 0, 700},
                                          {"Liberation Sans Narrow", 1, 0, 1000, 0, 700},
                                          {"Liberation Sans", 0.85, 0, 1000, 0, 700}};
constexpr HostSubstitute kHeavyDisplay[] = {{"Inter"}, {"Nimbus Sans"}, {"Liberation Sans"}};
constexpr HostSubstitute kLikeComicSans[] = {{"Comic Neue", 1.1}, {"DejaVu Sans"}};
constexpr HostSubstitute kChalk[] = {{"Comic Neue"}, {"DejaVu Sans"}};
constexpr HostSubstitute kHandwriting[] = {{"Comic Neue"}, {"Kaushan Script"}, {"Z003"}};
constexpr HostSubstitute kBrush[] = {{"Kaushan Script"}, {"Dancing Script"}, {"Z003"}};
constexpr HostSubstitute kChancery[] = {{"Z003"}, {"Dancing Script"}, {"Nimbus Roman"}};
constexpr HostSubstitute kAntique[] = {{"Oldania ADF Std"}, {"Nimbus Roman"}};
constexpr HostSubstitute kSymbol[] = {{"Standard Symbols PS"}, {"DejaVu Sans"}};
constexpr HostSubstitute kDingbats[] = {{"D050000L"}, {"DejaVu Sans"}};
constexpr HostSubstitute kEmoji[] = {{"Noto Color Emoji"}};
constexpr HostSubstitute kSymbols[] = {
    {"Noto Sans Symbols"}, {"Noto Sans Symbols2"}, {"Noto Sans Math"}, {"DejaVu Sans"}};
constexpr HostSubstitute kChineseSimplified[] = {
    {"Noto Sans CJK SC"}, {"Noto Sans SC"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kChineseTraditional[] = {
    {"Noto Sans CJK TC"}, {"Noto Sans TC"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kChineseHongKong[] = {
    {"Noto Sans CJK HK"}, {"Noto Sans CJK TC"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kSong[] = {
    {"Noto Serif CJK SC"}, {"AR PL UMing CN"}, {"Noto Sans CJK SC"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kKai[] = {
    {"LXGW WenKai"}, {"AR PL UKai CN"}, {"Noto Sans CJK SC"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kJapaneseGothic[] = {
    {"Noto Sans CJK JP"}, {"Noto Sans JP"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kJapaneseMincho[] = {
    {"Noto Serif CJK JP"}, {"Noto Sans CJK JP"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kKorean[] = {
    {"Noto Sans CJK KR"}, {"Noto Sans KR"}, {"Droid Sans Fallback"}};
constexpr HostSubstitute kArabic[] = {{"Noto Sans Arabic"}, {"DejaVu Sans"}};
constexpr HostSubstitute kHebrew[] = {{"Noto Sans Hebrew"}, {"DejaVu Sans"}};
constexpr HostSubstitute kThai[] = {{"Noto Sans Thai"}, {"Noto Sans Thai Looped"}};
constexpr HostSubstitute kDevanagari[] = {{"Noto Sans Devanagari"}};

// Faces: PostScript name, style name.
constexpr HostFace kAppleSystemUIFontFaces[] = {{".AppleSystemUIFont", "Regular"},
                                                {".AppleSystemUIFontBold", "Bold"},
                                                {".AppleSystemUIFontDemi", "Demi"},
                                                {".AppleSystemUIFontMedium", "Medium"},
                                                {".AppleSystemUIFontLight", "Light"},
                                                {".AppleSystemUIFontThin", "Thin"},
                                                {".AppleSystemUIFontUltraLight", "UltraLight"},
                                                {".AppleSystemUIFontHeavy", "Heavy"},
                                                {".AppleSystemUIFontBlack", "Black"},
                                                {".AppleSystemUIFontEmphasized", "Emphasized"},
                                                {".SFNS-Regular", "Regular"},
                                                {".SFNS-Bold", "Bold"},
                                                {".SFNS-Semibold", "Semibold"},
                                                {".SFNS-Medium", "Medium"},
                                                {".SFNS-Light", "Light"},
                                                {".SFNS-Thin", "Thin"},
                                                {".SFNS-Ultralight", "Ultralight"},
                                                {".SFNS-Heavy", "Heavy"},
                                                {".SFNS-Black", "Black"},
                                                {".SFNSText", "Regular"},
                                                {".SFNSText-Italic", "Italic"},
                                                {".SFNSText-Regular", "Regular"},
                                                {".SFNSText-Bold", "Bold"},
                                                {".SFNSText-Semibold", "Semibold"},
                                                {".SFNSText-Medium", "Medium"},
                                                {".SFNSText-Light", "Light"},
                                                {".SFNSText-Heavy", "Heavy"},
                                                {".SFNSDisplay", "Regular"},
                                                {".SFNSDisplay-Regular", "Regular"},
                                                {".SFNSDisplay-Bold", "Bold"},
                                                {".SFNSDisplay-Semibold", "Semibold"},
                                                {".SFNSDisplay-Medium", "Medium"},
                                                {".SFNSDisplay-Light", "Light"},
                                                {".SFNSDisplay-Thin", "Thin"},
                                                {".SFNSDisplay-Ultralight", "Ultralight"},
                                                {".SFNSDisplay-Heavy", "Heavy"},
                                                {".SFNSDisplay-Black", "Black"}};
constexpr HostFace kAmericanTypewriterFaces[] = {
    {"AmericanTypewriter", "Regular"},
    {"AmericanTypewriter-Light", "Light"},
    {"AmericanTypewriter-Semibold", "Semibold"},
    {"AmericanTypewriter-Bold", "Bold"},
    {"AmericanTypewriter-Condensed", "Condensed"},
    {"AmericanTypewriter-CondensedLight", "Condensed Light"},
    {"AmericanTypewriter-CondensedBold", "Condensed Bold"}};
constexpr HostFace kAndaleMonoFaces[] = {{"AndaleMono", "Regular"}};
constexpr HostFace kAppleChanceryFaces[] = {{"Apple-Chancery", "Regular"}};
constexpr HostFace kAppleColorEmojiFaces[] = {{"AppleColorEmoji", "Regular"},
                                              {".AppleColorEmojiUI", "Regular"}};
constexpr HostFace kAppleSDGothicNeoFaces[] = {{"AppleSDGothicNeo-Regular", "Regular"},
                                               {"AppleSDGothicNeo-Thin", "Thin"},
                                               {"AppleSDGothicNeo-UltraLight", "UltraLight"},
                                               {"AppleSDGothicNeo-Light", "Light"},
                                               {"AppleSDGothicNeo-Medium", "Medium"},
                                               {"AppleSDGothicNeo-SemiBold", "SemiBold"},
                                               {"AppleSDGothicNeo-Bold", "Bold"},
                                               {"AppleSDGothicNeo-ExtraBold", "ExtraBold"},
                                               {"AppleSDGothicNeo-Heavy", "Heavy"}};
constexpr HostFace kAppleSymbolsFaces[] = {{"AppleSymbols", "Regular"}};
constexpr HostFace kAppleGothicFaces[] = {{"AppleGothic", "Regular"}};
constexpr HostFace kArialFaces[] = {{"ArialMT", "Regular"},
                                    {"Arial-ItalicMT", "Italic"},
                                    {"Arial-BoldMT", "Bold"},
                                    {"Arial-BoldItalicMT", "Bold Italic"}};
constexpr HostFace kArialBlackFaces[] = {{"Arial-Black", "Black"}};
constexpr HostFace kArialHebrewFaces[] = {
    {"ArialHebrew", "Regular"}, {"ArialHebrew-Light", "Light"}, {"ArialHebrew-Bold", "Bold"}};
constexpr HostFace kArialNarrowFaces[] = {{"ArialNarrow", "Regular"},
                                          {"ArialNarrow-Italic", "Italic"},
                                          {"ArialNarrow-Bold", "Bold"},
                                          {"ArialNarrow-BoldItalic", "Bold Italic"}};
constexpr HostFace kArialRoundedMTBoldFaces[] = {{"ArialRoundedMTBold", "Bold"}};
constexpr HostFace kArialUnicodeMSFaces[] = {{"ArialUnicodeMS", "Regular"}};
constexpr HostFace kAthelasFaces[] = {{"Athelas-Regular", "Regular"},
                                      {"Athelas-Italic", "Italic"},
                                      {"Athelas-Bold", "Bold"},
                                      {"Athelas-BoldItalic", "Bold Italic"}};
constexpr HostFace kAvenirFaces[] = {
    {"Avenir-Book", "Book"},     {"Avenir-BookOblique", "Book Oblique"},
    {"Avenir-Roman", "Roman"},   {"Avenir-Oblique", "Oblique"},
    {"Avenir-Light", "Light"},   {"Avenir-LightOblique", "Light Oblique"},
    {"Avenir-Medium", "Medium"}, {"Avenir-MediumOblique", "Medium Oblique"},
    {"Avenir-Heavy", "Heavy"},   {"Avenir-HeavyOblique", "Heavy Oblique"},
    {"Avenir-Black", "Black"},   {"Avenir-BlackOblique", "Black Oblique"}};
constexpr HostFace kAvenirNextFaces[] = {{"AvenirNext-Regular", "Regular"},
                                         {"AvenirNext-Italic", "Italic"},
                                         {"AvenirNext-UltraLight", "Ultra Light"},
                                         {"AvenirNext-UltraLightItalic", "Ultra Light Italic"},
                                         {"AvenirNext-Medium", "Medium"},
                                         {"AvenirNext-MediumItalic", "Medium Italic"},
                                         {"AvenirNext-DemiBold", "Demi Bold"},
                                         {"AvenirNext-DemiBoldItalic", "Demi Bold Italic"},
                                         {"AvenirNext-Bold", "Bold"},
                                         {"AvenirNext-BoldItalic", "Bold Italic"},
                                         {"AvenirNext-Heavy", "Heavy"},
                                         {"AvenirNext-HeavyItalic", "Heavy Italic"}};
constexpr HostFace kAyuthayaFaces[] = {{"Ayuthaya", "Regular"}};
constexpr HostFace kBaoliSCFaces[] = {{"STBaoliSC-Regular", "Regular"}};
constexpr HostFace kBaskervilleFaces[] = {
    {"Baskerville", "Regular"},           {"Baskerville-Italic", "Italic"},
    {"Baskerville-SemiBold", "SemiBold"}, {"Baskerville-SemiBoldItalic", "SemiBold Italic"},
    {"Baskerville-Bold", "Bold"},         {"Baskerville-BoldItalic", "Bold Italic"}};
constexpr HostFace kBigCaslonFaces[] = {{"BigCaslon-Medium", "Medium"}};
constexpr HostFace kBodoni72Faces[] = {{"BodoniSvtyTwoITCTT-Book", "Book"},
                                       {"BodoniSvtyTwoITCTT-BookIta", "Book Italic"},
                                       {"BodoniSvtyTwoITCTT-Bold", "Bold"}};
constexpr HostFace kBookAntiquaFaces[] = {{"BookAntiqua", "Regular"},
                                          {"BookAntiqua-Italic", "Italic"},
                                          {"BookAntiqua-Bold", "Bold"},
                                          {"BookAntiqua-BoldItalic", "Bold Italic"}};
constexpr HostFace kBookmanOldStyleFaces[] = {{"BookmanOldStyle", "Regular"},
                                              {"BookmanOldStyle-Italic", "Italic"},
                                              {"BookmanOldStyle-Bold", "Bold"},
                                              {"BookmanOldStyle-BoldItalic", "Bold Italic"}};
constexpr HostFace kBradleyHandFaces[] = {{"BradleyHandITCTT-Bold", "Bold"}};
constexpr HostFace kBrushScriptMTFaces[] = {{"BrushScriptMT", "Italic"}};
constexpr HostFace kCalibriFaces[] = {{"Calibri", "Regular"},
                                      {"Calibri-Italic", "Italic"},
                                      {"Calibri-Bold", "Bold"},
                                      {"Calibri-BoldItalic", "Bold Italic"}};
constexpr HostFace kCambriaFaces[] = {{"Cambria", "Regular"},
                                      {"Cambria-Italic", "Italic"},
                                      {"Cambria-Bold", "Bold"},
                                      {"Cambria-BoldItalic", "Bold Italic"}};
constexpr HostFace kCenturyFaces[] = {{"Century", "Regular"}};
constexpr HostFace kCenturyGothicFaces[] = {{"CenturyGothic", "Regular"},
                                            {"CenturyGothic-Italic", "Italic"},
                                            {"CenturyGothic-Bold", "Bold"},
                                            {"CenturyGothic-BoldItalic", "Bold Italic"}};
constexpr HostFace kCenturySchoolbookFaces[] = {{"CenturySchoolbook", "Regular"},
                                                {"CenturySchoolbook-Italic", "Italic"},
                                                {"CenturySchoolbook-Bold", "Bold"},
                                                {"CenturySchoolbook-BoldItalic", "Bold Italic"}};
constexpr HostFace kChalkboardFaces[] = {{"Chalkboard", "Regular"}, {"Chalkboard-Bold", "Bold"}};
constexpr HostFace kChalkboardSEFaces[] = {{"ChalkboardSE-Regular", "Regular"},
                                           {"ChalkboardSE-Light", "Light"},
                                           {"ChalkboardSE-Bold", "Bold"}};
constexpr HostFace kChalkdusterFaces[] = {{"Chalkduster", "Regular"}};
constexpr HostFace kCharterFaces[] = {
    {"Charter-Roman", "Roman"}, {"Charter-Italic", "Italic"},
    {"Charter-Bold", "Bold"},   {"Charter-BoldItalic", "Bold Italic"},
    {"Charter-Black", "Black"}, {"Charter-BlackItalic", "Black Italic"}};
constexpr HostFace kCochinFaces[] = {{"Cochin", "Regular"},
                                     {"Cochin-Italic", "Italic"},
                                     {"Cochin-Bold", "Bold"},
                                     {"Cochin-BoldItalic", "Bold Italic"}};
constexpr HostFace kComicSansMSFaces[] = {{"ComicSansMS", "Regular"}, {"ComicSansMS-Bold", "Bold"}};
constexpr HostFace kConsolasFaces[] = {{"Consolas", "Regular"},
                                       {"Consolas-Italic", "Italic"},
                                       {"Consolas-Bold", "Bold"},
                                       {"Consolas-BoldItalic", "Bold Italic"}};
constexpr HostFace kCopperplateFaces[] = {
    {"Copperplate", "Regular"}, {"Copperplate-Light", "Light"}, {"Copperplate-Bold", "Bold"}};
constexpr HostFace kCourierFaces[] = {{"Courier", "Regular"},
                                      {"Courier-Oblique", "Oblique"},
                                      {"Courier-Bold", "Bold"},
                                      {"Courier-BoldOblique", "Bold Oblique"}};
constexpr HostFace kCourierNewFaces[] = {{"CourierNewPSMT", "Regular"},
                                         {"CourierNewPS-ItalicMT", "Italic"},
                                         {"CourierNewPS-BoldMT", "Bold"},
                                         {"CourierNewPS-BoldItalicMT", "Bold Italic"}};
constexpr HostFace kDINAlternateFaces[] = {{"DINAlternate-Bold", "Bold"}};
constexpr HostFace kDINCondensedFaces[] = {{"DINCondensed-Bold", "Bold"}};
constexpr HostFace kDidotFaces[] = {
    {"Didot", "Regular"}, {"Didot-Italic", "Italic"}, {"Didot-Bold", "Bold"}};
constexpr HostFace kFuturaFaces[] = {{"Futura-Medium", "Medium"},
                                     {"Futura-MediumItalic", "Medium Italic"},
                                     {"Futura-Bold", "Bold"},
                                     {"Futura-CondensedMedium", "Condensed Medium"},
                                     {"Futura-CondensedExtraBold", "Condensed ExtraBold"}};
constexpr HostFace kGaramondFaces[] = {{"Garamond", "Regular"},
                                       {"Garamond-Italic", "Italic"},
                                       {"Garamond-Bold", "Bold"},
                                       {"Garamond-BoldItalic", "Bold Italic"}};
constexpr HostFace kGeezaProFaces[] = {{"GeezaPro", "Regular"}, {"GeezaPro-Bold", "Bold"}};
constexpr HostFace kGenevaFaces[] = {{"Geneva", "Regular"}};
constexpr HostFace kGeorgiaFaces[] = {{"Georgia", "Regular"},
                                      {"Georgia-Italic", "Italic"},
                                      {"Georgia-Bold", "Bold"},
                                      {"Georgia-BoldItalic", "Bold Italic"}};
constexpr HostFace kGillSansFaces[] = {{"GillSans", "Regular"},
                                       {"GillSans-Italic", "Italic"},
                                       {"GillSans-Light", "Light"},
                                       {"GillSans-LightItalic", "Light Italic"},
                                       {"GillSans-SemiBold", "SemiBold"},
                                       {"GillSans-SemiBoldItalic", "SemiBold Italic"},
                                       {"GillSans-Bold", "Bold"},
                                       {"GillSans-BoldItalic", "Bold Italic"},
                                       {"GillSans-UltraBold", "UltraBold"}};
constexpr HostFace kHaettenschweilerFaces[] = {{"Haettenschweiler", "Regular"}};
constexpr HostFace kHannotateSCFaces[] = {{"HannotateSC-W5", "Regular"}};
constexpr HostFace kHanziPenSCFaces[] = {{"HanziPenSC-W3", "Regular"}};
constexpr HostFace kHeitiSCFaces[] = {{"STHeitiSC-Light", "Light"}, {"STHeitiSC-Medium", "Medium"}};
constexpr HostFace kHeitiTCFaces[] = {{"STHeitiTC-Light", "Light"}, {"STHeitiTC-Medium", "Medium"}};
constexpr HostFace kHelveticaFaces[] = {
    {"Helvetica", "Regular"},     {"Helvetica-Oblique", "Oblique"},
    {"Helvetica-Bold", "Bold"},   {"Helvetica-BoldOblique", "Bold Oblique"},
    {"Helvetica-Light", "Light"}, {"Helvetica-LightOblique", "Light Oblique"}};
constexpr HostFace kHelveticaNeueFaces[] = {{"HelveticaNeue", "Regular"},
                                            {"HelveticaNeue-Italic", "Italic"},
                                            {"HelveticaNeue-UltraLight", "UltraLight"},
                                            {"HelveticaNeue-UltraLightItalic", "UltraLight Italic"},
                                            {"HelveticaNeue-Thin", "Thin"},
                                            {"HelveticaNeue-ThinItalic", "Thin Italic"},
                                            {"HelveticaNeue-Light", "Light"},
                                            {"HelveticaNeue-LightItalic", "Light Italic"},
                                            {"HelveticaNeue-Medium", "Medium"},
                                            {"HelveticaNeue-MediumItalic", "Medium Italic"},
                                            {"HelveticaNeue-Bold", "Bold"},
                                            {"HelveticaNeue-BoldItalic", "Bold Italic"},
                                            {"HelveticaNeue-CondensedBold", "Condensed Bold"},
                                            {"HelveticaNeue-CondensedBlack", "Condensed Black"},
                                            {".HelveticaNeueDeskInterface-Regular", "Regular"},
                                            {".HelveticaNeueDeskInterface-Bold", "Bold"}};
constexpr HostFace kHerculanumFaces[] = {{"Herculanum", "Regular"}};
constexpr HostFace kHiraginoKakuGothicProFaces[] = {{"HiraKakuPro-W3", "W3"},
                                                    {"HiraKakuPro-W6", "W6"}};
constexpr HostFace kHiraginoKakuGothicProNFaces[] = {{"HiraKakuProN-W3", "W3"},
                                                     {"HiraKakuProN-W6", "W6"}};
constexpr HostFace kHiraginoMinchoProNFaces[] = {{"HiraMinProN-W3", "W3"},
                                                 {"HiraMinProN-W6", "W6"}};
constexpr HostFace kHiraginoSansFaces[] = {{"HiraginoSans-W0", "W0"}, {"HiraginoSans-W1", "W1"},
                                           {"HiraginoSans-W2", "W2"}, {"HiraginoSans-W3", "W3"},
                                           {"HiraginoSans-W4", "W4"}, {"HiraginoSans-W5", "W5"},
                                           {"HiraginoSans-W6", "W6"}, {"HiraginoSans-W7", "W7"},
                                           {"HiraginoSans-W8", "W8"}, {"HiraginoSans-W9", "W9"}};
constexpr HostFace kHiraginoSansGBFaces[] = {{"HiraginoSansGB-W3", "W3"},
                                             {"HiraginoSansGB-W6", "W6"}};
constexpr HostFace kHoeflerTextFaces[] = {{"HoeflerText-Regular", "Regular"},
                                          {"HoeflerText-Italic", "Italic"},
                                          {"HoeflerText-Black", "Black"},
                                          {"HoeflerText-BlackItalic", "Black Italic"}};
constexpr HostFace kITCAvantGardeGothicFaces[] = {{"AvantGarde-Book", "Book"},
                                                  {"AvantGarde-BookOblique", "Book Oblique"},
                                                  {"AvantGarde-Demi", "Demi"},
                                                  {"AvantGarde-DemiOblique", "Demi Oblique"}};
constexpr HostFace kImpactFaces[] = {{"Impact", "Regular"}};
constexpr HostFace kIowanOldStyleFaces[] = {
    {"IowanOldStyle-Roman", "Roman"}, {"IowanOldStyle-Italic", "Italic"},
    {"IowanOldStyle-Bold", "Bold"},   {"IowanOldStyle-BoldItalic", "Bold Italic"},
    {"IowanOldStyle-Black", "Black"}, {"IowanOldStyle-BlackItalic", "Black Italic"}};
constexpr HostFace kKaitiSCFaces[] = {
    {"STKaitiSC-Regular", "Regular"}, {"STKaitiSC-Bold", "Bold"}, {"STKaitiSC-Black", "Black"}};
constexpr HostFace kKohinoorDevanagariFaces[] = {{"KohinoorDevanagari-Regular", "Regular"},
                                                 {"KohinoorDevanagari-Light", "Light"},
                                                 {"KohinoorDevanagari-Medium", "Medium"},
                                                 {"KohinoorDevanagari-Semibold", "Semibold"},
                                                 {"KohinoorDevanagari-Bold", "Bold"}};
constexpr HostFace kLibianSCFaces[] = {{"STLibianSC-Regular", "Regular"}};
constexpr HostFace kLucidaGrandeFaces[] = {{"LucidaGrande", "Regular"},
                                           {"LucidaGrande-Bold", "Bold"},
                                           {".LucidaGrandeUI", "Regular"},
                                           {".LucidaGrandeUI-Bold", "Bold"}};
constexpr HostFace kLuminariFaces[] = {{"Luminari-Regular", "Regular"}};
constexpr HostFace kMarkerFeltFaces[] = {{"MarkerFelt-Thin", "Thin"}, {"MarkerFelt-Wide", "Bold"}};
constexpr HostFace kMenloFaces[] = {{"Menlo-Regular", "Regular"},
                                    {"Menlo-Italic", "Italic"},
                                    {"Menlo-Bold", "Bold"},
                                    {"Menlo-BoldItalic", "Bold Italic"}};
constexpr HostFace kMicrosoftYaHeiFaces[] = {{"MicrosoftYaHei", "Regular"},
                                             {"MicrosoftYaHei-Bold", "Bold"}};
constexpr HostFace kMonacoFaces[] = {{"Monaco", "Regular"}};
constexpr HostFace kNewCenturySchoolbookFaces[] = {{"NewCenturySchlbk-Roman", "Regular"},
                                                   {"NewCenturySchlbk-Italic", "Italic"},
                                                   {"NewCenturySchlbk-Bold", "Bold"},
                                                   {"NewCenturySchlbk-BoldItalic", "Bold Italic"}};
constexpr HostFace kNoteworthyFaces[] = {{"Noteworthy-Light", "Light"},
                                         {"Noteworthy-Bold", "Bold"}};
constexpr HostFace kOptimaFaces[] = {{"Optima-Regular", "Regular"},
                                     {"Optima-Italic", "Italic"},
                                     {"Optima-Bold", "Bold"},
                                     {"Optima-BoldItalic", "Bold Italic"},
                                     {"Optima-ExtraBlack", "ExtraBlack"}};
constexpr HostFace kPalatinoFaces[] = {{"Palatino-Roman", "Regular"},
                                       {"Palatino-Italic", "Italic"},
                                       {"Palatino-Bold", "Bold"},
                                       {"Palatino-BoldItalic", "Bold Italic"}};
constexpr HostFace kPapyrusFaces[] = {{"Papyrus", "Regular"}, {"Papyrus-Condensed", "Condensed"}};
constexpr HostFace kPartyLETFaces[] = {{"PartyLetPlain", "Plain"}};
constexpr HostFace kPhosphateFaces[] = {{"Phosphate-Inline", "Black"},
                                        {"Phosphate-Solid", "Black"}};
constexpr HostFace kPingFangHKFaces[] = {
    {"PingFangHK-Regular", "Regular"}, {"PingFangHK-Ultralight", "Ultralight"},
    {"PingFangHK-Thin", "Thin"},       {"PingFangHK-Light", "Light"},
    {"PingFangHK-Medium", "Medium"},   {"PingFangHK-Semibold", "Semibold"}};
constexpr HostFace kPingFangSCFaces[] = {
    {"PingFangSC-Regular", "Regular"}, {"PingFangSC-Ultralight", "Ultralight"},
    {"PingFangSC-Thin", "Thin"},       {"PingFangSC-Light", "Light"},
    {"PingFangSC-Medium", "Medium"},   {"PingFangSC-Semibold", "Semibold"},
    {".PingFangSC-Regular", "Regular"}};
constexpr HostFace kPingFangTCFaces[] = {
    {"PingFangTC-Regular", "Regular"}, {"PingFangTC-Ultralight", "Ultralight"},
    {"PingFangTC-Thin", "Thin"},       {"PingFangTC-Light", "Light"},
    {"PingFangTC-Medium", "Medium"},   {"PingFangTC-Semibold", "Semibold"}};
constexpr HostFace kRockwellFaces[] = {{"Rockwell-Regular", "Regular"},
                                       {"Rockwell-Italic", "Italic"},
                                       {"Rockwell-Bold", "Bold"},
                                       {"Rockwell-BoldItalic", "Bold Italic"}};
constexpr HostFace kSFMonoFaces[] = {
    {"SFMono-Regular", "Regular"},   {"SFMono-Light", "Light"}, {"SFMono-Medium", "Medium"},
    {"SFMono-Semibold", "Semibold"}, {"SFMono-Bold", "Bold"},   {"SFMono-Heavy", "Heavy"},
    {".SFNSMono-Regular", "Regular"}};
constexpr HostFace kSFProFaces[] = {{"SFPro-Regular", "Regular"},
                                    {"SFPro-Ultralight", "Ultralight"},
                                    {"SFPro-Thin", "Thin"},
                                    {"SFPro-Light", "Light"},
                                    {"SFPro-Medium", "Medium"},
                                    {"SFPro-Semibold", "Semibold"},
                                    {"SFPro-Bold", "Bold"},
                                    {"SFPro-Heavy", "Heavy"},
                                    {"SFPro-Black", "Black"},
                                    {"SFPro-RegularItalic", "Italic"},
                                    {"SFPro-LightItalic", "Light Italic"},
                                    {"SFPro-MediumItalic", "Medium Italic"},
                                    {"SFPro-SemiboldItalic", "Semibold Italic"},
                                    {"SFPro-BoldItalic", "Bold Italic"},
                                    {"SFPro-HeavyItalic", "Heavy Italic"},
                                    {"SFPro-BlackItalic", "Black Italic"}};
constexpr HostFace kSFProDisplayFaces[] = {{"SFProDisplay-Regular", "Regular"},
                                           {"SFProDisplay-Ultralight", "Ultralight"},
                                           {"SFProDisplay-Thin", "Thin"},
                                           {"SFProDisplay-Light", "Light"},
                                           {"SFProDisplay-Medium", "Medium"},
                                           {"SFProDisplay-Semibold", "Semibold"},
                                           {"SFProDisplay-Bold", "Bold"},
                                           {"SFProDisplay-Heavy", "Heavy"},
                                           {"SFProDisplay-Black", "Black"},
                                           {"SFProDisplay-RegularItalic", "Italic"},
                                           {"SFProDisplay-LightItalic", "Light Italic"},
                                           {"SFProDisplay-MediumItalic", "Medium Italic"},
                                           {"SFProDisplay-SemiboldItalic", "Semibold Italic"},
                                           {"SFProDisplay-BoldItalic", "Bold Italic"},
                                           {"SFProDisplay-HeavyItalic", "Heavy Italic"},
                                           {"SFProDisplay-BlackItalic", "Black Italic"}};
constexpr HostFace kSFProRoundedFaces[] = {
    {"SFProRounded-Regular", "Regular"}, {"SFProRounded-Ultralight", "Ultralight"},
    {"SFProRounded-Thin", "Thin"},       {"SFProRounded-Light", "Light"},
    {"SFProRounded-Medium", "Medium"},   {"SFProRounded-Semibold", "Semibold"},
    {"SFProRounded-Bold", "Bold"},       {"SFProRounded-Heavy", "Heavy"},
    {"SFProRounded-Black", "Black"}};
constexpr HostFace kSFProTextFaces[] = {{"SFProText-Regular", "Regular"},
                                        {"SFProText-Ultralight", "Ultralight"},
                                        {"SFProText-Thin", "Thin"},
                                        {"SFProText-Light", "Light"},
                                        {"SFProText-Medium", "Medium"},
                                        {"SFProText-Semibold", "Semibold"},
                                        {"SFProText-Bold", "Bold"},
                                        {"SFProText-Heavy", "Heavy"},
                                        {"SFProText-Black", "Black"},
                                        {"SFProText-RegularItalic", "Italic"},
                                        {"SFProText-LightItalic", "Light Italic"},
                                        {"SFProText-MediumItalic", "Medium Italic"},
                                        {"SFProText-SemiboldItalic", "Semibold Italic"},
                                        {"SFProText-BoldItalic", "Bold Italic"},
                                        {"SFProText-HeavyItalic", "Heavy Italic"},
                                        {"SFProText-BlackItalic", "Black Italic"}};
constexpr HostFace kSTKaitiFaces[] = {{"STKaiti", "Regular"}};
constexpr HostFace kSTSongFaces[] = {{"STSong", "Regular"}};
constexpr HostFace kSavoyeLETFaces[] = {{"SavoyeLetPlain", "Plain"}};
constexpr HostFace kSignPainterFaces[] = {{"SignPainter-HouseScript", "Regular"},
                                          {"SignPainter-HouseScriptSemibold", "Semibold"}};
constexpr HostFace kSnellRoundhandFaces[] = {{"SnellRoundhand", "Regular"},
                                             {"SnellRoundhand-Bold", "Bold"},
                                             {"SnellRoundhand-Black", "Black"}};
constexpr HostFace kSongtiSCFaces[] = {{"STSongti-SC-Regular", "Regular"},
                                       {"STSongti-SC-Light", "Light"},
                                       {"STSongti-SC-Bold", "Bold"},
                                       {"STSongti-SC-Black", "Black"}};
constexpr HostFace kStencilFaces[] = {{"Stencil", "Black"}};
constexpr HostFace kSuperclarendonFaces[] = {
    {"Superclarendon-Regular", "Regular"}, {"Superclarendon-Italic", "Italic"},
    {"Superclarendon-Light", "Light"},     {"Superclarendon-LightItalic", "Light Italic"},
    {"Superclarendon-Bold", "Bold"},       {"Superclarendon-BoldItalic", "Bold Italic"},
    {"Superclarendon-Black", "Black"},     {"Superclarendon-BlackItalic", "Black Italic"}};
constexpr HostFace kSymbolFaces[] = {{"Symbol", "Regular"}};
constexpr HostFace kTahomaFaces[] = {{"Tahoma", "Regular"}, {"Tahoma-Bold", "Bold"}};
constexpr HostFace kThonburiFaces[] = {
    {"Thonburi", "Regular"}, {"Thonburi-Light", "Light"}, {"Thonburi-Bold", "Bold"}};
constexpr HostFace kTimesFaces[] = {{"Times-Roman", "Regular"},
                                    {"Times-Italic", "Italic"},
                                    {"Times-Bold", "Bold"},
                                    {"Times-BoldItalic", "Bold Italic"}};
constexpr HostFace kTimesNewRomanFaces[] = {{"TimesNewRomanPSMT", "Regular"},
                                            {"TimesNewRomanPS-ItalicMT", "Italic"},
                                            {"TimesNewRomanPS-BoldMT", "Bold"},
                                            {"TimesNewRomanPS-BoldItalicMT", "Bold Italic"}};
constexpr HostFace kTrattatelloFaces[] = {{"Trattatello", "Regular"}};
constexpr HostFace kTrebuchetMSFaces[] = {{"TrebuchetMS", "Regular"},
                                          {"TrebuchetMS-Italic", "Italic"},
                                          {"TrebuchetMS-Bold", "Bold"},
                                          {"Trebuchet-BoldItalic", "Bold Italic"}};
constexpr HostFace kVerdanaFaces[] = {{"Verdana", "Regular"},
                                      {"Verdana-Italic", "Italic"},
                                      {"Verdana-Bold", "Bold"},
                                      {"Verdana-BoldItalic", "Bold Italic"}};
constexpr HostFace kWawatiSCFaces[] = {{"DFWaWaSC-W5", "Regular"}};
constexpr HostFace kWebdingsFaces[] = {{"Webdings", "Regular"}};
constexpr HostFace kWingdingsFaces[] = {{"Wingdings-Regular", "Regular"}};
constexpr HostFace kXingkaiSCFaces[] = {{"STXingkaiSC-Light", "Regular"}};
constexpr HostFace kYuantiSCFaces[] = {{"STYuanti-SC-Regular", "Regular"}};
constexpr HostFace kZapfDingbatsFaces[] = {{"ZapfDingbatsITC", "Regular"}};
constexpr HostFace kZapfinoFaces[] = {{"Zapfino", "Regular"}};

constexpr double kEm2048 = 2048;
constexpr HostMetrics kOfStandIn;

constexpr HostFamily kFamilies[] = {
    {".AppleSystemUIFont", {0.9521, 0.2412, 0}, kAppleSystemUIFontFaces, kSystem},
    {"American Typewriter", kOfStandIn, kAmericanTypewriterFaces, kTypewriter},
    {"Andale Mono", kOfStandIn, kAndaleMonoFaces, kLikeMenlo, HostFontKind::fixedPitch},
    {"Apple Chancery", kOfStandIn, kAppleChanceryFaces, kChancery},
    {"Apple Color Emoji", kOfStandIn, kAppleColorEmojiFaces, kEmoji},
    {"Apple SD Gothic Neo", kOfStandIn, kAppleSDGothicNeoFaces, kKorean},
    {"Apple Symbols", kOfStandIn, kAppleSymbolsFaces, kSymbols},
    {"AppleGothic", kOfStandIn, kAppleGothicFaces, kKorean},
    {"Arial", {1854 / kEm2048, 434 / kEm2048, 67 / kEm2048}, kArialFaces, kLikeArial},
    {"Arial Black", {2254 / kEm2048, 634 / kEm2048, 0}, kArialBlackFaces, kLikeArialBlack},
    {"Arial Hebrew", kOfStandIn, kArialHebrewFaces, kHebrew},
    {"Arial Narrow", kOfStandIn, kArialNarrowFaces, kLikeArialNarrow},
    {"Arial Rounded MT Bold", kOfStandIn, kArialRoundedMTBoldFaces, kRounded},
    {"Arial Unicode MS", {2189 / kEm2048, 555 / kEm2048, 0}, kArialUnicodeMSFaces, kLikeArial},
    {"Athelas", kOfStandIn, kAthelasFaces, kLikeCharter},
    {"Avenir", {1, 0.366, 0}, kAvenirFaces, kLikeAvenir},
    {"Avenir Next", {1, 0.366, 0}, kAvenirNextFaces, kLikeAvenir},
    {"Ayuthaya", kOfStandIn, kAyuthayaFaces, kThai},
    {"Baoli SC", kOfStandIn, kBaoliSCFaces, kChineseSimplified},
    {"Baskerville", {0.898, 0.247, 0}, kBaskervilleFaces, kLikeBaskerville},
    {"Big Caslon", kOfStandIn, kBigCaslonFaces, kLikeGaramond},
    {"Bodoni 72", kOfStandIn, kBodoni72Faces, kLikeBodoni},
    {"Book Antiqua", kOfStandIn, kBookAntiquaFaces, kLikePalatino},
    {"Bookman Old Style", kOfStandIn, kBookmanOldStyleFaces, kLikeBookman},
    {"Bradley Hand", {0.8545, 0.392, 0}, kBradleyHandFaces, kHandwriting},
    {"Brush Script MT", {0.8887, 0.3379, 0}, kBrushScriptMTFaces, kBrush},
    {"Calibri", {1536 / kEm2048, 512 / kEm2048, 452 / kEm2048}, kCalibriFaces, kLikeCalibri},
    {"Cambria", {1946 / kEm2048, 455 / kEm2048, 0}, kCambriaFaces, kLikeCambria},
    {"Century", kOfStandIn, kCenturyFaces, kLikeCentury},
    {"Century Gothic", kOfStandIn, kCenturyGothicFaces, kGeometric},
    {"Century Schoolbook", kOfStandIn, kCenturySchoolbookFaces, kLikeCentury},
    {"Chalkboard", kOfStandIn, kChalkboardFaces, kChalk},
    {"Chalkboard SE", kOfStandIn, kChalkboardSEFaces, kChalk},
    {"Chalkduster", {0.988, 0.2886, 0}, kChalkdusterFaces, kChalk},
    {"Charter", kOfStandIn, kCharterFaces, kLikeCharter},
    {"Cochin", {0.897, 0.2505, 0}, kCochinFaces, kLikeGaramond},
    {"Comic Sans MS", {1.102, 0.291, 0}, kComicSansMSFaces, kLikeComicSans},
    {"Consolas",
     {1521 / kEm2048, 527 / kEm2048, 350 / kEm2048},
     kConsolasFaces,
     kLikeMenlo,
     HostFontKind::fixedPitch},
    {"Copperplate",
     {0.763, 0.248, 0},
     kCopperplateFaces,
     kLikeCopperplate,
     HostFontKind::ordinary,
     LegacyLeading::none,
     SmallLetters::capitals},
    {"Courier",
     {0.754, 0.246, 0},
     kCourierFaces,
     kLikeCourier,
     HostFontKind::fixedPitch,
     LegacyLeading::added},
    {"Courier New",
     {1705 / kEm2048, 615 / kEm2048, 0},
     kCourierNewFaces,
     kLikeCourierNew,
     HostFontKind::fixedPitch},
    {"DIN Alternate", kOfStandIn, kDINAlternateFaces, kGeometric},
    {"DIN Condensed", kOfStandIn, kDINCondensedFaces, kLikeImpact},
    {"Didot", kOfStandIn, kDidotFaces, kLikeDidot},
    {"Futura", {1.039, 0.26, 0}, kFuturaFaces, kLikeFutura},
    {"Garamond", kOfStandIn, kGaramondFaces, kLikeGaramond},
    {"Geeza Pro", kOfStandIn, kGeezaProFaces, kArabic},
    {"Geneva", {1, 0.25, 0}, kGenevaFaces, kLikeVerdana},
    {"Georgia", {1878 / kEm2048, 449 / kEm2048, 0}, kGeorgiaFaces, kLikeGeorgia},
    {"Gill Sans", {0.918, 0.2305, 0}, kGillSansFaces, kLikeGillSans},
    {"Haettenschweiler", kOfStandIn, kHaettenschweilerFaces, kLikeImpact},
    {"Hannotate SC", kOfStandIn, kHannotateSCFaces, kChineseSimplified},
    {"HanziPen SC", kOfStandIn, kHanziPenSCFaces, kChineseSimplified},
    {"Heiti SC", kOfStandIn, kHeitiSCFaces, kChineseSimplified},
    {"Heiti TC", kOfStandIn, kHeitiTCFaces, kChineseTraditional},
    {"Helvetica",
     {1577 / kEm2048, 471 / kEm2048, 0},
     kHelveticaFaces,
     kLikeHelvetica,
     HostFontKind::ordinary,
     LegacyLeading::added},
    {"Helvetica Neue", {0.952, 0.213, 0.028}, kHelveticaNeueFaces, kLikeHelveticaNeue},
    {"Herculanum", kOfStandIn, kHerculanumFaces, kAntique},
    {"Hiragino Kaku Gothic Pro", kOfStandIn, kHiraginoKakuGothicProFaces, kJapaneseGothic},
    {"Hiragino Kaku Gothic ProN", kOfStandIn, kHiraginoKakuGothicProNFaces, kJapaneseGothic},
    {"Hiragino Mincho ProN", kOfStandIn, kHiraginoMinchoProNFaces, kJapaneseMincho},
    {"Hiragino Sans", kOfStandIn, kHiraginoSansFaces, kJapaneseGothic},
    {"Hiragino Sans GB", kOfStandIn, kHiraginoSansGBFaces, kChineseSimplified},
    {"Hoefler Text", {0.72, 0.28, 0}, kHoeflerTextFaces, kLikeGaramond},
    {"ITC Avant Garde Gothic", kOfStandIn, kITCAvantGardeGothicFaces, kGeometric},
    {"Impact", {1.009, 0.21, 0}, kImpactFaces, kLikeImpact},
    {"Iowan Old Style", kOfStandIn, kIowanOldStyleFaces, kLikeCharter},
    {"Kaiti SC", kOfStandIn, kKaitiSCFaces, kKai},
    {"Kohinoor Devanagari", kOfStandIn, kKohinoorDevanagariFaces, kDevanagari},
    {"Libian SC", kOfStandIn, kLibianSCFaces, kChineseSimplified},
    {"Lucida Grande", {1980 / kEm2048, 432 / kEm2048, 0}, kLucidaGrandeFaces, kLikeLucidaGrande},
    {"Luminari", kOfStandIn, kLuminariFaces, kChancery},
    {"Marker Felt", {0.829, 0.257, 0}, kMarkerFeltFaces, kHandwriting},
    {"Menlo",
     {1901 / kEm2048, 483 / kEm2048, 0},
     kMenloFaces,
     kLikeMenlo,
     HostFontKind::fixedPitch},
    {"Microsoft YaHei", kOfStandIn, kMicrosoftYaHeiFaces, kChineseSimplified},
    {"Monaco", {1, 0.25, 0}, kMonacoFaces, kLikeMenlo, HostFontKind::fixedPitch},
    {"New Century Schoolbook", kOfStandIn, kNewCenturySchoolbookFaces, kLikeCentury},
    {"Noteworthy", kOfStandIn, kNoteworthyFaces, kHandwriting},
    {"Optima", {0.919, 0.268, 0}, kOptimaFaces, kLikeOptima},
    {"Palatino", {0.732, 0.283, 0}, kPalatinoFaces, kLikePalatino},
    {"Papyrus", {0.9385, 0.604, 0}, kPapyrusFaces, kAntique},
    {"Party LET", kOfStandIn, kPartyLETFaces, kBrush},
    {"Phosphate", kOfStandIn, kPhosphateFaces, kHeavyDisplay},
    {"PingFang HK", {1.06, 0.34, 0}, kPingFangHKFaces, kChineseHongKong},
    {"PingFang SC", {1.06, 0.34, 0}, kPingFangSCFaces, kChineseSimplified},
    {"PingFang TC", {1.06, 0.34, 0}, kPingFangTCFaces, kChineseTraditional},
    {"Rockwell", kOfStandIn, kRockwellFaces, kSlab},
    {"SF Mono", kOfStandIn, kSFMonoFaces, kLikeMenlo, HostFontKind::fixedPitch},
    {"SF Pro", {0.9521, 0.2412, 0}, kSFProFaces, kSystem},
    {"SF Pro Display", {0.9521, 0.2412, 0}, kSFProDisplayFaces, kSystem},
    {"SF Pro Rounded", {0.9521, 0.2412, 0}, kSFProRoundedFaces, kRounded},
    {"SF Pro Text", {0.9521, 0.2412, 0}, kSFProTextFaces, kSystem},
    {"STKaiti", kOfStandIn, kSTKaitiFaces, kKai},
    {"STSong", kOfStandIn, kSTSongFaces, kSong},
    {"Savoye LET", kOfStandIn, kSavoyeLETFaces, kBrush},
    {"SignPainter", kOfStandIn, kSignPainterFaces, kHandwriting},
    {"Snell Roundhand", kOfStandIn, kSnellRoundhandFaces, kChancery},
    {"Songti SC", kOfStandIn, kSongtiSCFaces, kSong},
    {"Stencil", kOfStandIn, kStencilFaces, kHeavyDisplay},
    {"Superclarendon", kOfStandIn, kSuperclarendonFaces, kSlab},
    {"Symbol", kOfStandIn, kSymbolFaces, kSymbol},
    {"Tahoma", {2049 / kEm2048, 423 / kEm2048, 0}, kTahomaFaces, kLikeTahoma},
    {"Thonburi", kOfStandIn, kThonburiFaces, kThai},
    {"Times",
     {0.75, 0.25, 0},
     kTimesFaces,
     kLikeTimes,
     HostFontKind::ordinary,
     LegacyLeading::added},
    {"Times New Roman",
     {1825 / kEm2048, 443 / kEm2048, 87 / kEm2048},
     kTimesNewRomanFaces,
     kLikeTimesNewRoman},
    {"Trattatello", kOfStandIn, kTrattatelloFaces, kChancery},
    {"Trebuchet MS", {1923 / kEm2048, 455 / kEm2048, 0}, kTrebuchetMSFaces, kLikeTrebuchet},
    {"Verdana", {2059 / kEm2048, 430 / kEm2048, 0}, kVerdanaFaces, kLikeVerdana},
    {"Wawati SC", kOfStandIn, kWawatiSCFaces, kChineseSimplified},
    {"Webdings", kOfStandIn, kWebdingsFaces, kDingbats},
    {"Wingdings", kOfStandIn, kWingdingsFaces, kDingbats},
    {"Xingkai SC", kOfStandIn, kXingkaiSCFaces, kChineseSimplified},
    {"Yuanti SC", kOfStandIn, kYuantiSCFaces, kChineseSimplified},
    {"Zapf Dingbats", kOfStandIn, kZapfDingbatsFaces, kDingbats},
    {"Zapfino", {1.8755, 1.5015, 0}, kZapfinoFaces, kChancery},
};

// The first hint found in a name counts.
constexpr HostNameHint kNameHints[] = {
    {"Mono", "Menlo"},
    {"Code", "Menlo"},
    {"Sans", "Helvetica"},
    {"Serif", "Times"},
    {"Roman", "Times"},
    {"Slab", "Rockwell"},
    {"Song", "Songti SC"},
    {"Mincho", "Hiragino Mincho ProN"},
    {"Ming", "Songti SC"},
    {"Hand", "Apple Chancery"},
    {"Script", "Apple Chancery"},
    {"Brush", "Brush Script MT"},
};

constexpr HostScriptFace kScriptFaces[] = {
    {"Hira", "HiraginoSans-W3"},
    {"Kana", "HiraginoSans-W3"},
    {"Hang", "AppleSDGothicNeo-Regular"},
    {"Bopo", "PingFangTC-Regular"},
    {"Arab", "GeezaPro"},
    {"Hebr", "ArialHebrew"},
    {"Thai", "Thonburi"},
    {"Deva", "KohinoorDevanagari-Regular"},
};

}  // namespace

const std::span<const HostFamily> kHostFamilies = kFamilies;
const std::span<const HostNameHint> kHostNameHints = kNameHints;
const std::span<const HostScriptFace> kHostScriptFaces = kScriptFaces;
