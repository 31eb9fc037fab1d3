#pragma once

#include <memory>
#include <span>
#include <vector>

#include "platform/foundation/NSObject.h"

class NSCoder;
class NSData;

/// The key under which the record of a bitmap holds it as a TIFF file.
inline constexpr const char* kTIFFRepresentation = "NSTIFFRepresentation";

/// The data in the record open on the coder that begin like picture files, that under the usual key
/// first: writers differ in where they put one. Nothing is decoded.
std::vector<std::shared_ptr<const NSData>> pictureFiles(NSCoder& coder);

/// Other representations of pictures that archives name. Those that hold a picture become bitmaps;
/// the rest (pages, drawing code) decode to nil.
std::span<const NSClass* const> otherImageRepClasses();
