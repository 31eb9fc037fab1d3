#pragma once

#include <memory>

class NSBitmapImageRep;
class NSCoder;

/// The first data in the record open on the coder that is a picture, whatever its key: writers
/// differ in where they put one. Null when there is none.
std::shared_ptr<NSBitmapImageRep> pictureInAnyData(NSCoder& coder);
