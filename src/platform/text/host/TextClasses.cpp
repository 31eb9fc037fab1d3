#include "platform/text/host/TextClasses.h"

#include "platform/text/fonts/NSFont.h"
#include "platform/text/fonts/NSFontDescriptor.h"
#include "platform/text/host/NSAttributedString.h"
#include "platform/text/host/NSTextAttachment.h"
#include "platform/text/host/NSTextStorage.h"
#include "platform/text/layout/NSParagraphStyle.h"
#include "platform/text/layout/NSTextTab.h"

namespace {

/// Names under which some coders leave the classes that the host really makes.
constexpr NSClass kConcreteClasses[] = {
    {"NSConcreteAttributedString", &NSAttributedString::kClass, NSAllocate<NSAttributedString>},
    {"NSConcreteMutableAttributedString", &NSMutableAttributedString::kClass,
     NSAllocate<NSMutableAttributedString>},
    {"NSConcreteTextStorage", &NSTextStorage::kClass, NSAllocate<NSTextStorage>}};

}  // namespace

void registerTextClasses() {
  static const bool registered = [] {
    static constexpr const NSClass* kClasses[] = {&NSFont::kClass,
                                                  &NSFontDescriptor::kClass,
                                                  &NSParagraphStyle::kClass,
                                                  &NSMutableParagraphStyle::kClass,
                                                  &NSTextTab::kClass,
                                                  &NSTextAttachment::kClass,
                                                  &NSAttributedString::kClass,
                                                  &NSMutableAttributedString::kClass,
                                                  &NSTextStorage::kClass,
                                                  &kConcreteClasses[0],
                                                  &kConcreteClasses[1],
                                                  &kConcreteClasses[2]};
    NSRegisterClasses(kClasses);
    return true;
  }();
  static_cast<void>(registered);
}
