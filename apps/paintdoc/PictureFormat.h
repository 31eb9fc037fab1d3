#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

class NSBitmapImageRep;

enum class PictureFormat : uint8_t { png, jpeg, webp, tiff };

/// The format that the end of a file's name says, in any case: .png, .jpg, .jpeg, .webp, .tif,
/// .tiff; PNG for names without an ending. Nothing for other endings.
std::optional<PictureFormat> pictureFormatOfPath(const std::string& path);

/// The format by one of the endings above, without the dot.
std::optional<PictureFormat> pictureFormatNamed(const std::string& name);

/// What pictureFormatNamed knows, in small letters.
std::vector<std::string> knownPictureFormats();

const char* nameOf(PictureFormat format);

/// The bitmap as a file of the format. JPEG, which has no alpha, shows it over white. `quality`
/// from 0 to 1 counts for JPEG and WebP, whose 1 is lossless. All but WebP say the density, unless
/// it is 0. Empty when the format cannot hold the size or there is no memory.
std::vector<uint8_t> encodePicture(const NSBitmapImageRep& bitmap, PictureFormat format,
                                   double quality, double dotsPerInch);
