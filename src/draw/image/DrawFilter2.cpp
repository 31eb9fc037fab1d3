#include "draw/image/DrawFilter2.h"

const NSClass DrawFilter2::kClass{"DrawFilter2", &DrawImage2::kClass, NSAllocate<DrawFilter2>};
