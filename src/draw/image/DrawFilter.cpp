#include "draw/image/DrawFilter.h"

#include "draw/image/DrawFilter2.h"

const NSClass DrawFilter::kClass{"DrawFilter", &DrawImage::kClass, NSAllocate<DrawFilter>};

std::shared_ptr<DrawImage2> DrawFilter::convertedDraw() const {
  auto draw = std::make_shared<DrawFilter2>();
  draw->init();
  draw->copyCommonAttributesFrom(*this);
  return draw;
}
