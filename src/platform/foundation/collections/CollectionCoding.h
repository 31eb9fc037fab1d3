#pragma once

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "platform/foundation/values/NSCoder.h"

/// The elements of a collection, stored as one list of references under `listKey` or, by old and
/// foreign coders, one by one under `numberedPrefix` followed by 0, 1, 2... Nothing when an element
/// is nil. Null entries stand for objects still being decoded, which the collection must not own.
std::optional<std::vector<std::shared_ptr<NSObject>>> decodeElements(
    NSCoder& coder, std::string_view listKey, std::string_view numberedPrefix);

/// Writes elements one by one under numbered keys.
void encodeNumberedElements(NSCoder& coder, const std::vector<std::shared_ptr<NSObject>>& objects,
                            std::string_view numberedPrefix);
