#pragma once

#include <cstdint>

#include "platform/foundation/PaintExport.h"

/// Why an embedded picture is not drawn.
enum class PictureFailure : uint8_t {
  none,
  unreadable,        ///< its data is no picture of its kind, or damaged beyond repair
  tooLarge,          ///< more pixels than a canvas may have
  tooMuchTime,       ///< its processor time ran out
  stuck,             ///< no answer in all the time that there is
  tooMuchMemory,     ///< its memory ran out
  crashed,           ///< the program that draws it ended
  nonsense,          ///< the program that draws it answered what no such program answers
  budgetSpent,       ///< the pictures before it took all the time that a document has
  helperMissing,     ///< there is no program that draws it
  helperNotStarted,  ///< the program that draws it cannot be started
  helperOutdated,    ///< the program that draws it is of another version
};

/// One clause for people, such as "it cannot be read".
PAINT_API const char* describe(PictureFailure failure);
