#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

/// Texts are kept as UTF-8. A UTF-16 surrogate without its partner, which archives may hold, is
/// kept as the three bytes that its number would have (generalised UTF-8), so that every sequence
/// of UTF-16 units survives the way to UTF-8 and back. Bytes that are not UTF-8 at all become
/// U+FFFD on the way to UTF-16.

/// UTF-8 of big-endian UTF-16 units; an odd last byte is ignored.
std::string utf8FromBigEndianUTF16(std::span<const uint8_t> bytes);
std::string utf8FromUTF16(std::u16string_view units);
std::u16string utf16FromUTF8(std::string_view utf8);
/// Number of units that utf16FromUTF8 would answer.
size_t utf16Length(std::string_view utf8);
/// True when every byte is below 128.
bool isASCII(std::string_view text);
/// True for UTF-8 as the standard has it: no surrogates, no longer forms than needed.
bool isUTF8(std::string_view text);
