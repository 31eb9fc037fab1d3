#include "platform/text/TextClasses.h"

#include <array>
#include <string_view>
#include <utility>

#include "platform/text/NSAttributedString.h"
#include "platform/text/NSFont.h"
#include "platform/text/NSFontDescriptor.h"
#include "platform/text/NSParagraphStyle.h"
#include "platform/text/NSTextStorage.h"
#include "platform/text/NSTextTab.h"

namespace {

/// Values of attributes that neither layout nor drawing reads. They are decoded to nothing, so that
/// a text that carries them is still a text.
template <int kNumber>
class UnreadAttribute : public NSObject {
 public:
  static const NSClass kClass;
  const NSClass& classInfo() const override { return kClass; }
};

constexpr std::array kUnreadNames = std::to_array<std::string_view>(
    {"NSTextAttachment", "NSFileWrapper", "NSTextAttachmentCell", "NSCursor", "NSGlyphInfo",
     "NSTextBlock", "NSTextTable", "NSTextTableBlock", "NSTextList", "NSTextAlternatives"});

template <int kNumber>
const NSClass UnreadAttribute<kNumber>::kClass{kUnreadNames[kNumber], &NSObject::kClass,
                                               NSAllocate<UnreadAttribute<kNumber>>};

template <int... kNumbers>
void registerUnread(std::integer_sequence<int, kNumbers...>) {
  static constexpr const NSClass* kClasses[] = {&UnreadAttribute<kNumbers>::kClass...};
  NSRegisterClasses(kClasses);
}

}  // namespace

void registerTextClasses() {
  static const bool registered = [] {
    static constexpr const NSClass* kClasses[] = {&NSFont::kClass,
                                                  &NSFontDescriptor::kClass,
                                                  &NSParagraphStyle::kClass,
                                                  &NSMutableParagraphStyle::kClass,
                                                  &NSTextTab::kClass,
                                                  &NSAttributedString::kClass,
                                                  &NSMutableAttributedString::kClass,
                                                  &NSTextStorage::kClass};
    NSRegisterClasses(kClasses);
    registerUnread(std::make_integer_sequence<int, static_cast<int>(kUnreadNames.size())>());
    return true;
  }();
  static_cast<void>(registered);
}
