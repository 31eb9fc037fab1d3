#include "platform/text/host/NSTextStorage.h"

#include <algorithm>

#include "platform/text/host/NSLayoutManager.h"

const NSClass NSTextStorage::kClass{"NSTextStorage", &NSMutableAttributedString::kClass,
                                    NSAllocate<NSTextStorage>};

NSTextStorage::~NSTextStorage() {
  for (const auto& layoutManager : layoutManagers_) layoutManager->setTextStorage(nullptr);
}

void NSTextStorage::addLayoutManager(std::shared_ptr<NSLayoutManager> layoutManager) {
  NSTextStorage* before = layoutManager->textStorage();
  if (before == this) return;
  if (before != nullptr) before->removeLayoutManager(layoutManager);
  layoutManagers_.push_back(std::move(layoutManager));
  layoutManagers_.back()->setTextStorage(this);
}

void NSTextStorage::removeLayoutManager(const std::shared_ptr<NSLayoutManager>& layoutManager) {
  const auto found = std::find(layoutManagers_.begin(), layoutManagers_.end(), layoutManager);
  if (found == layoutManagers_.end()) return;
  (*found)->setTextStorage(nullptr);
  layoutManagers_.erase(found);
}

void NSTextStorage::edited() {
  for (const auto& layoutManager : layoutManagers_) layoutManager->textStorageDidChange();
}
