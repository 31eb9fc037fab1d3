#include "platform/text/TextClasses.h"

#include "platform/text/NSAttributedString.h"
#include "platform/text/NSFont.h"
#include "platform/text/NSFontDescriptor.h"
#include "platform/text/NSParagraphStyle.h"
#include "platform/text/NSTextStorage.h"
#include "platform/text/NSTextTab.h"

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
