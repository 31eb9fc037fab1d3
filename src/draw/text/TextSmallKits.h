#pragma once

#include <memory>

#include "platform/text/host/NSLayoutManager.h"

/// The layout manager that texts are measured and drawn with, over one container without limits
/// and padding: on the main thread always the same one, to be attached to one text at a time; on
/// any other thread a new one for each call.
std::shared_ptr<NSLayoutManager> LayoutManagerForDrawText();

/// Attaches LayoutManagerForDrawText to a text for the length of a scope.
class TextLayoutScope {
 public:
  /// The text must outlive the scope.
  TextLayoutScope(NSTextStorage& text, const NSSize& containerSize);
  TextLayoutScope(const TextLayoutScope&) = delete;
  TextLayoutScope& operator=(const TextLayoutScope&) = delete;
  ~TextLayoutScope();

  NSLayoutManager& manager() { return *manager_; }
  const NSTextContainer& container() const { return *manager_->textContainers().front(); }
  /// The units that have a place in the container.
  NSRange glyphRange() { return manager_->glyphRangeForTextContainer(container()); }

 private:
  NSTextStorage& text_;
  std::shared_ptr<NSLayoutManager> manager_;
};

/// Whether features under trial are in use: wider boxes for scripts whose swashes overhang. Off
/// unless a program switches them on; they change texts when they are edited, not how archived ones
/// look.
bool experimentalFeatures();
void setExperimentalFeatures(bool on);
