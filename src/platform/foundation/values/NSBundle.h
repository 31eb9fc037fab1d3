#pragma once

#include <memory>
#include <string>
#include <string_view>

class NSString;

/// The fact of that name ("CFBundleName", "CFBundleShortVersionString", ...) about the program that
/// this engine is part of; null when there is none.
std::shared_ptr<NSString> mainBundleObjectForInfoDictionaryKey(std::string_view key);

/// The text for users of the main bundle's table; there is none, so this answers the value, or the
/// key when the value is empty.
std::string localizedStringForKey(std::string_view key, std::string_view value,
                                  std::string_view table = {});
