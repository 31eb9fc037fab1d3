#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/graphics/pixels/outline/PathData.h"

// What the text layer takes from the shaping, Unicode and font-index libraries. Those live in a
// module that is loaded at the first text: merely linking them costs every process about 0.9 ms of
// start-up, more than a small picture-only document needs to be read.

/// One face of a font file, as the index knows it.
struct FontFaceInfo {
  std::string file;
  uint32_t index = 0;  ///< face in a collection; upper half: number of the named instance, from 1
  std::string postScriptName;
  std::string family;
  std::string style;
  int weight = 400;  ///< 1 to 1000, 400 regular, 700 bold
  int width = 100;   ///< percent of the normal width
  bool italic = false;
  bool fixedPitch = false;
  int32_t version = 0;  ///< 16.16 font revision
};

/// The faces that may be used, in a stable order. Immutable.
class FontIndex {
 public:
  virtual ~FontIndex() = default;
  virtual const std::vector<FontFaceInfo>& faces() const = 0;
  /// Whether the face at that position of faces() has a glyph for the character.
  virtual bool covers(size_t face, char32_t character) const = 0;
};

/// Horizontal line metrics and the underline of a face, in font units, y up. Descent is
/// positive downwards.
struct FaceMetrics {
  int32_t unitsPerEm = 1000;
  int32_t ascent = 0;
  int32_t descent = 0;
  int32_t leading = 0;
  int32_t xHeight = 0;
  int32_t capHeight = 0;
  int32_t underlineThickness = 0;
};

/// A glyph as shaping answers it. Distances are in font units.
struct ShapedGlyph {
  uint32_t glyph = 0;
  uint32_t cluster = 0;  ///< index of the first UTF-16 unit of its characters
  int32_t advance = 0;
  int32_t dx = 0;
  int32_t dy = 0;
  bool unsafeToBreak = false;  ///< a line break before its cluster changes the shapes around it
};

enum class Kerning : uint8_t { off, on };
enum class Ligatures : uint8_t { required = 0, standard = 1, all = 2 };
enum class TextDirection : uint8_t { leftToRight, rightToLeft };

/// A stretch of one face, script and direction inside a paragraph; the rest of the paragraph is
/// its context.
struct ShapingRun {
  std::u16string_view paragraph;
  size_t start = 0;
  size_t length = 0;
  uint32_t script = 0;  ///< ISO 15924 code, big-endian packed
  TextDirection direction = TextDirection::leftToRight;
  std::string_view language;  ///< BCP 47, may be empty
  Kerning kerning = Kerning::on;
  Ligatures ligatures = Ligatures::standard;
};

/// A coloured glyph: a PNG file and the rectangle it fills, in font units, y up from the baseline.
struct GlyphBitmap {
  std::vector<uint8_t> png;
  NSRect rect;
};

/// An opened face. Immutable and shared between threads.
class FontFace {
 public:
  virtual ~FontFace() = default;
  virtual const FaceMetrics& metrics() const = 0;
  /// The glyph of a character, 0 when the face has none.
  virtual uint32_t glyphForCharacter(char32_t character) const = 0;
  /// Whether its glyphs are coloured bitmaps rather than outlines.
  virtual bool hasColorBitmaps() const = 0;
  /// The glyph's outline in font units, y up, to be filled by non-zero winding. Read from the font
  /// once and then kept as long as the face; empty for a blank.
  virtual const PathData& outline(uint32_t glyph) const = 0;
  virtual std::optional<GlyphBitmap> colorBitmap(uint32_t glyph) const = 0;
  /// Replaces `glyphs` by the run's glyphs in visual order (left to right in either direction).
  virtual void shape(const ShapingRun& run, std::vector<ShapedGlyph>& glyphs) const = 0;
};

/// Embedding levels of a paragraph, one for each UTF-16 unit: odd ones run right to left.
struct BidiLevels {
  uint8_t paragraph = 0;
  std::vector<uint8_t> units;
};

inline constexpr uint8_t kOverriddenLevel = 0x80;
inline constexpr uint8_t kHighestLevel = 124;

enum class BaseDirection : uint8_t { natural, leftToRight, rightToLeft };
enum class Normalization : uint8_t { composed, decomposed };

/// The libraries themselves. Every function may be called from any thread and throws std::bad_alloc
/// when memory is lacking.
class TextLibraries {
 public:
  virtual ~TextLibraries() = default;

  /// To be called by every thread before anything else here.
  virtual void prepareThread() const = 0;

  /// Faces in the system's, the local and the user's font folders. Uses the font caches that the
  /// system keeps where they are valid and reads the files' headers where they are not; writes
  /// nothing, and needs neither configuration files nor a home folder.
  virtual std::shared_ptr<const FontIndex> installedFonts() const = 0;
  /// Faces of exactly these files; unreadable ones are left out.
  virtual std::shared_ptr<const FontIndex> fontsInFiles(
      std::span<const std::string> files) const = 0;
  /// Opens a face; each file is mapped once in a process. Null when there is no such face.
  virtual std::shared_ptr<const FontFace> openFace(const std::string& file,
                                                   uint32_t index) const = 0;

  /// Sets starts[i] to 1 where an extended grapheme cluster begins, 0 elsewhere.
  virtual void findClusters(std::u16string_view text, std::vector<uint8_t>& starts) const = 0;
  /// Sets breaks[i] to 1 where a line may begin at unit i, 0 elsewhere.
  virtual void findLineBreaks(std::u16string_view text, std::vector<uint8_t>& breaks) const = 0;
  /// Levels by the Unicode bidirectional algorithm; `text` is one paragraph.
  virtual BidiLevels bidiLevels(std::u16string_view text, BaseDirection base) const = 0;
  /// The same with explicit levels for each unit, kOverriddenLevel added where characters run as
  /// the level says. `paragraph` is the level of what has none: levels are at least that.
  virtual BidiLevels bidiLevels(std::u16string_view text, uint8_t paragraph,
                                std::vector<uint8_t> explicitLevels) const = 0;
  /// ISO 15924 code of the character's script, big-endian packed ("Zyyy" common, "Zinh" inherited).
  virtual uint32_t scriptOf(char32_t character) const = 0;
  /// Codes, packed likewise, of the scripts that a common or inherited character is used with;
  /// empty when it is used with any.
  virtual std::vector<uint32_t> scriptExtensions(char32_t character) const = 0;
  /// The text with its letters and marks put together, or taken apart (canonical forms C and D).
  virtual std::u16string normalized(std::u16string_view text, Normalization form) const = 0;
  /// The capital of a small letter that has one of one character; any other character itself.
  virtual char32_t capitalOf(char32_t character) const = 0;
  /// Whether the character alone has another form than its own.
  virtual bool hasCanonicalDecomposition(char32_t character) const = 0;
  /// Drawn as a picture unless a variation selector asks for text.
  virtual bool hasEmojiPresentation(char32_t character) const = 0;
  /// Invisible by itself: joiners, variation selectors, marks of direction.
  virtual bool isDefaultIgnorable(char32_t character) const = 0;
};

/// The libraries, loaded at the first call; null when the module cannot be loaded. Throws
/// std::bad_alloc.
const TextLibraries* textLibraries();

/// Name of the module's one exported function, which answers its library.
inline constexpr const char* kTextLibrariesEntry = "paintTextLibraries";
