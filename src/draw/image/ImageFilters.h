#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string_view>

class NSBezierPath;
class NSBitmapImageRep;
class NSDictionary;

// Functions that make filtered bitmaps of bitmaps. Arguments never change and results are new,
// except where it is said that the argument itself comes back. A null bitmap gives null, and so
// does a result that is too large for a bitmap. Coordinates are pixels, y upwards from the bitmap's
// lower left corner.

/// Whether a picture goes on beyond its edges with their pixels while it is filtered; the result
/// is then as large as the picture. Otherwise nothing surrounds it, and filters that spread colour
/// give a larger bitmap.
enum class ExtendEdges : uint8_t { no, yes };

/// Blurred by a Gaussian of standard deviation `radius` pixels, edges extended. Null for a radius
/// that is not above 0.
std::shared_ptr<NSBitmapImageRep> ImageBlured(const std::shared_ptr<NSBitmapImageRep>& image,
                                              float radius);

/// Through the platform's filter of that name, with the filter's defaults and then those of the
/// settings (may be null) whose keys the filter has. Null without a name; the argument itself for
/// a name that no filter has.
std::shared_ptr<NSBitmapImageRep> ImageWithFilter(const std::shared_ptr<NSBitmapImageRep>& image,
                                                  std::optional<std::string_view> filterName,
                                                  ExtendEdges extendEdges,
                                                  const NSDictionary* settings);

/// Through several filters one after the other, all with the same settings: the bytes that calling
/// ImageWithFilter for each would give, without the bitmaps between. Filters that nobody has are
/// passed over.
std::shared_ptr<NSBitmapImageRep> ImageWithFilters(const std::shared_ptr<NSBitmapImageRep>& image,
                                                   std::span<const std::string_view> filterNames,
                                                   ExtendEdges extendEdges,
                                                   const NSDictionary* settings);

/// A bitmap of the same size with the pixels inside the path; those that its edge crosses are
/// covered in proportion, all others transparent.
std::shared_ptr<NSBitmapImageRep> ScissorImage(const std::shared_ptr<NSBitmapImageRep>& image,
                                               const NSBezierPath& path);

/// Each colour turned into 1 minus itself, in linear light.
std::shared_ptr<NSBitmapImageRep> ImageInvertedColors(
    const std::shared_ptr<NSBitmapImageRep>& image);
/// Each colour replaced by the grey of its luminance, in linear light.
std::shared_ptr<NSBitmapImageRep> ImageToBlackAndWhite(
    const std::shared_ptr<NSBitmapImageRep>& image);
