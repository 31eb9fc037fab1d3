#include "platform/text/host/NSTextContainer.h"

#include "platform/text/host/NSLayoutManager.h"

void NSTextContainer::setContainerSize(const NSSize& size) {
  if (size == size_) return;
  size_ = size;
  changed();
}

void NSTextContainer::setLineFragmentPadding(CGFloat padding) {
  if (padding == padding_) return;
  padding_ = padding;
  changed();
}

void NSTextContainer::changed() {
  if (layoutManager_ != nullptr) layoutManager_->textContainerChangedGeometry();
}
