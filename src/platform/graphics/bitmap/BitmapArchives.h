#pragma once

#include <memory>
#include <span>
#include <string_view>

#include "platform/foundation/NSObject.h"

class NSBitmapImageRep;
class NSCoder;

/// The picture in the data under a key of the record open on the coder; null when there is none.
std::shared_ptr<NSBitmapImageRep> pictureInData(NSCoder& coder, std::string_view key);

/// The first data in the record open on the coder that is a picture, whatever its key: writers
/// differ in where they put one. Null when there is none.
std::shared_ptr<NSBitmapImageRep> pictureInAnyData(NSCoder& coder);

/// Other representations of pictures that archives name. Those that hold a picture this engine
/// decodes become bitmaps; the rest (pages, drawing code) decode to nil.
std::span<const NSClass* const> otherImageRepClasses();
