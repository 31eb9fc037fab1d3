#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Standard base64 (RFC 4648, section 4), padded with "=" to whole groups of four.
std::string base64_encode(const uint8_t* bytes, uint32_t length);

/// The bytes up to the first "=" or the first character that is not of the alphabet, whitespace
/// included. What is left over after whole groups of four gives one byte for two characters, two
/// for three.
std::string base64_decode(std::string_view text);
