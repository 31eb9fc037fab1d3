#pragma once

#include <memory>

#include "helper/PictureLibrary.h"
#include "platform/pictures/HelperProtocol.h"

/// What reads and draws pictures of a kind; loaded with the first of them. Null when it is not
/// installed. Throws std::bad_alloc when there is no memory for it.
const PictureLibrary* pictureLibrary(PictureKind kind);
