#pragma once

#include <memory>
#include <string_view>

class NSString;

/// The fact of that name ("CFBundleName", "CFBundleShortVersionString", ...) about the program that
/// this engine is part of; null when there is none.
std::shared_ptr<NSString> mainBundleObjectForInfoDictionaryKey(std::string_view key);
