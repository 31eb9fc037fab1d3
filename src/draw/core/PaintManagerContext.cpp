#include "draw/core/PaintManagerContext.h"

#include "draw/core/DrawBase.h"
#include "platform/foundation/values/NSCoder.h"

const NSClass PaintManagerContext::kClass{"PaintManagerContext", &NSObject::kClass,
                                          NSAllocate<PaintManagerContext>};

namespace {
constexpr const char* kContextKey = "paintMangerContext";
}

PaintManagerContext::PaintManagerContext()
    : savedVersion_(DrawBase::version()), savedBackingScale_(kMainScreenBackingScale) {}

std::shared_ptr<PaintManagerContext> paintMangerContext(const NSCoder& coder) {
  return std::dynamic_pointer_cast<PaintManagerContext>(coder.associatedObject(kContextKey));
}

void setPaintMangerContext(NSCoder& coder, std::shared_ptr<PaintManagerContext> context) {
  coder.setAssociatedObject(kContextKey, std::move(context));
}
