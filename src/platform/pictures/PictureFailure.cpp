#include "platform/pictures/PictureFailure.h"

const char* describe(PictureFailure failure) {
  switch (failure) {
    case PictureFailure::none:
      return "it can be drawn";
    case PictureFailure::unreadable:
      return "it cannot be read";
    case PictureFailure::tooLarge:
      return "it is too large";
    case PictureFailure::tooMuchTime:
      return "it takes too much time";
    case PictureFailure::stuck:
      return "it does not come to an end";
    case PictureFailure::tooMuchMemory:
      return "it takes too much memory";
    case PictureFailure::crashed:
      return "paint-picture-helper ended while it drew it";
    case PictureFailure::nonsense:
      return "paint-picture-helper answered nonsense";
    case PictureFailure::budgetSpent:
      return "the pictures before it took all the time";
    case PictureFailure::helperMissing:
      return "paint-picture-helper is not installed";
    case PictureFailure::helperNotStarted:
      return "paint-picture-helper cannot be started";
    case PictureFailure::helperOutdated:
      break;
  }
  return "paint-picture-helper is of another version";
}
