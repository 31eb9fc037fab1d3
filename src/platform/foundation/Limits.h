#pragma once

#include <cstddef>
#include <cstdint>

/// Every bound that a document may run into, each with its reason.
namespace limits {

/// The format's own limit on a canvas; no bitmap of any kind may be larger.
inline constexpr int64_t kMaxCanvasPixels = 250'000'000;

/// Largest file read. Documents hold pictures, so hundreds of megabytes are legitimate; beyond
/// this 32-bit tools that share the format give up too.
inline constexpr int64_t kMaxFileBytes = int64_t{2} << 30;

/// What decoding may make of an archive: this many bytes for each byte of the archive, plus an
/// allowance for small ones. The densest real record is a one-byte reference that becomes a
/// 16-byte pointer; only an archive that hands out the same bytes again and again needs more.
inline constexpr uint64_t kMaxArchiveExpansion = 16;
inline constexpr uint64_t kArchiveAllowance = uint64_t{16} << 20;

/// Objects being decoded inside each other. Groups, arrays and texts of real documents nest a
/// dozen deep; the limit keeps the stack of a hostile chain of objects bounded.
inline constexpr int kMaxDecodingDepth = 256;

/// Elements of a path that is still drawn. Traced pictures reach some millions; more is refused
/// before any memory is taken for it.
inline constexpr size_t kMaxPathElements = 16'000'000;

/// Vertices of a regular polygon that are built: beyond that it is a circle at any canvas size, and
/// a document may ask for billions.
inline constexpr int64_t kMaxPolygonPoints = 10'000;

/// Width of the widest brush that sprays: a hundred thousand dots a burst. A record may name any.
inline constexpr double kMaxSprayWidth = 1700;

/// Points that the curves of one path may be divided into, all together (17 bytes each): longer
/// paths get fewer chords per curve, one at least.
inline constexpr size_t kMaxFlattenedPoints = 16'000'000;

/// Chords of one curve: full accuracy up to sizes of 100,000 pixels, and a bound on the work
/// that a curve with coordinates of 1e300 can ask for.
inline constexpr int kMaxCurveSteps = 2000;

/// Pixels that all edges of one shape may run through, counted inside the clip: this many, or so
/// many times the pixels of the shape's box if that is more. The densest scribble over the largest
/// canvas crosses each pixel a dozen times, and a second or two of work cover a small canvas with
/// hundreds of layers; a shape beyond that is not drawn.
inline constexpr int64_t kMaxEdgePixels = int64_t{1} << 28;
inline constexpr int64_t kMaxEdgesPerPixel = 16;

/// Edges held back for drawing in bands (512 MiB). Boxes for which that is too many are larger
/// than 60 million pixels; a shape with more edges than this in such a box is not drawn.
inline constexpr size_t kMaxHeldEdges = size_t{1} << 24;

/// Largest colour profile looked at. Profiles of presses with their tables reach some megabytes.
inline constexpr size_t kMaxProfileBytes = size_t{16} << 20;

/// UTF-16 units of one text that are laid out, over three hundred dense pages. Set in one line or
/// one character a line they cost about 100 MB and a second.
inline constexpr size_t kMaxLaidOutUnits = size_t{1} << 20;

/// Marks that the visible part of one dashed path may be cut into; beyond that the pattern is far
/// finer than the pixels and the path is drawn solid.
inline constexpr double kMaxDashes = 2e6;

/// Numbers in a dash pattern (the editors that write them offer ten at most). Counting the pattern
/// on over an invisible segment visits each; longer patterns are drawn solid.
inline constexpr size_t kMaxDashLengths = 256;

/// Longest SVG text. Vector pictures are kilobytes to a few megabytes; the element tree takes up to
/// 16 bytes per byte of text.
inline constexpr int64_t kMaxSvgBytes = int64_t{64} << 20;

/// Bytes that entities may add to the values of an SVG text: each other's texts ten times over and
/// so on would go on for ever. Drawing programs declare addresses and colours.
inline constexpr size_t kMaxSvgEntityBytes = size_t{1} << 20;

/// Elements of an SVG text; what librsvg reads. Further ones are left out.
inline constexpr int64_t kMaxSvgElements = 1'000'000;

/// Elements inside each other, while an SVG text is read and, references followed, while it is
/// drawn. The XML library stops at the same depth; both bound the stack.
inline constexpr int kMaxSvgDepth = 256;

/// References ("use") followed in one drawing of an SVG, and the elements and path bytes drawn
/// through them: ten references to ten references and so on would be drawn for ever. librsvg has
/// the same count of references.
inline constexpr int64_t kMaxSvgReferences = 500'000;
inline constexpr int64_t kMaxSvgReferencedWork = 50'000'000;

/// Bytes of path text that all clip paths may gather through references: they keep copies.
inline constexpr int64_t kMaxSvgReferencedClipBytes = int64_t{1} << 20;

/// Bytes of text that references may have parsed once more, in a size of their own: small symbols,
/// some thousand times. Every element counts some bytes for itself.
inline constexpr size_t kMaxSvgCopiedBytes = size_t{4} << 20;

/// References from gradient to gradient that are followed for what a gradient does not say itself.
/// Drawing programs write one or two; the limit ends circles.
inline constexpr int kMaxSvgGradientChain = 32;

/// Bytes of attribute values that all gradients together take from other gradients. A value is
/// read once more for each, so that a long one with many takers would cost their product.
inline constexpr int64_t kMaxSvgInheritedBytes = int64_t{16} << 20;

/// Groups with an opacity inside each other: each needs a picture of its own while it is drawn.
inline constexpr int kMaxSvgLayers = 50;

/// Widest blur of a filter in pixels, five times what its settings offer: work grows with the
/// picture enlarged by four times the radius on each side.
inline constexpr double kMaxBlurRadius = 200;

/// Widest grid of a filter in pixels; a single cell covers most canvases long before.
inline constexpr double kMaxGridPitch = 1e6;

/// Processor time of one PDF page or SVG picture. Icons take some milliseconds; what takes seconds
/// holds up whoever looks at a folder.
inline constexpr int64_t kPictureProcessorMilliseconds = 5000;

/// Memory of one of them besides its data and pixels. Scans over a page and filters over a drawing
/// take some bitmaps of their size.
inline constexpr uint64_t kPictureMemoryBytes = uint64_t{1} << 30;

/// Elapsed time after which one of them is given up that uses no processor time either: libraries
/// wait for themselves. Six times the processor time leaves room for a busy machine.
inline constexpr int64_t kPictureWallMilliseconds = 30000;

/// Processor time of all of them in one composition. Together with one that waits for itself it
/// stays below the elapsed time that the thumbnailer has.
inline constexpr int64_t kCompositionPictureMilliseconds = 20000;

/// Bytes that a document keeps of what it made of pictures, to be used again: decoded and drawn
/// bitmaps of pictures that are shown several times, and colour conversions. As much as one bitmap
/// of a common camera.
inline constexpr size_t kPictureCacheBytes = size_t{128} << 20;

}  // namespace limits
