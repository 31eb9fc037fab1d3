#pragma once

#include <memory>
#include <vector>

#include "platform/text/host/NSAttributedString.h"

class NSLayoutManager;

/// A mutable attributed string that layout managers set. It owns them; a layout manager serves one
/// text storage at a time.
class NSTextStorage : public NSMutableAttributedString {
 public:
  static const NSClass kClass;

  using NSMutableAttributedString::NSMutableAttributedString;
  explicit NSTextStorage(const NSAttributedString& text) { setAttributedString(text); }
  NSTextStorage(const NSTextStorage&) = delete;
  NSTextStorage& operator=(const NSTextStorage&) = delete;
  ~NSTextStorage() override;

  const std::vector<std::shared_ptr<NSLayoutManager>>& layoutManagers() const {
    return layoutManagers_;
  }
  /// Takes the layout manager away from the text storage that it served before.
  void addLayoutManager(std::shared_ptr<NSLayoutManager> layoutManager);
  void removeLayoutManager(const std::shared_ptr<NSLayoutManager>& layoutManager);

  const NSClass& classInfo() const override { return kClass; }

 protected:
  void edited() override;

 private:
  std::vector<std::shared_ptr<NSLayoutManager>> layoutManagers_;
};
