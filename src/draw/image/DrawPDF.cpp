#include "draw/image/DrawPDF.h"

const NSClass DrawPDF::kClass{"DrawPDF", &DrawImage2::kClass, NSAllocate<DrawPDF>};
