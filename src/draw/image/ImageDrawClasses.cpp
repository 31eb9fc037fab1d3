#include "draw/image/ImageDrawClasses.h"

#include "draw/image/DrawFilter.h"
#include "draw/image/DrawFilter2.h"
#include "draw/image/DrawImage.h"
#include "draw/image/DrawImage2.h"
#include "draw/image/DrawPDF.h"
#include "draw/image/DrawSVG.h"

void registerImageDrawClasses() {
  static const NSClass* const kClasses[] = {&DrawImage::kClass,  &DrawFilter::kClass,
                                            &DrawImage2::kClass, &DrawFilter2::kClass,
                                            &DrawPDF::kClass,    &DrawSVG::kClass};
  NSRegisterClasses(kClasses);
}
