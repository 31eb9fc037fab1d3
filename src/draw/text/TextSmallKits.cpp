#include "draw/text/TextSmallKits.h"

#include <unistd.h>

#include <atomic>

#include "platform/text/host/NSTextStorage.h"

namespace {

std::atomic<bool> experimental{false};

std::shared_ptr<NSLayoutManager> makeLayoutManager() {
  auto container = std::make_shared<NSTextContainer>();
  container->setLineFragmentPadding(0);
  auto manager = std::make_shared<NSLayoutManager>();
  manager->addTextContainer(std::move(container));
  return manager;
}

bool onMainThread() {
  return gettid() == getpid();
}

}  // namespace

bool experimentalFeatures() {
  return experimental;
}

void setExperimentalFeatures(bool on) {
  experimental = on;
}

std::shared_ptr<NSLayoutManager> LayoutManagerForDrawText() {
  if (!onMainThread()) return makeLayoutManager();
  static const std::shared_ptr<NSLayoutManager> shared = makeLayoutManager();
  return shared;
}

TextLayoutScope::TextLayoutScope(NSTextStorage& text, const NSSize& containerSize)
    : text_(text), manager_(LayoutManagerForDrawText()) {
  manager_->textContainers().front()->setContainerSize(containerSize);
  text_.addLayoutManager(manager_);
}

TextLayoutScope::~TextLayoutScope() {
  text_.removeLayoutManager(manager_);
}
