#include "svg/draw/Base64.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t kNoDigit = 0xff;

constexpr std::array<uint8_t, 256> makeDigits() {
  std::array<uint8_t, 256> digits{};
  digits.fill(kNoDigit);
  for (size_t i = 0; i < kAlphabet.size(); ++i) {
    digits[static_cast<uint8_t>(kAlphabet[i])] = static_cast<uint8_t>(i);
  }
  return digits;
}

constexpr std::array<uint8_t, 256> kDigits = makeDigits();

uint32_t digitOf(char c) {
  return kDigits[static_cast<uint8_t>(c)];
}

// Four digits, the ones that are missing as zero.
uint32_t groupOf(std::string_view digits) {
  uint32_t group = 0;
  for (size_t i = 0; i < 4; ++i) group = group << 6 | (i < digits.size() ? digitOf(digits[i]) : 0);
  return group;
}

}  // namespace

std::string base64_encode(const uint8_t* bytes, uint32_t length) {
  std::string text;
  text.reserve((size_t{length} + 2) / 3 * 4);
  for (uint32_t i = 0; i < length; i += 3) {
    const uint32_t count = std::min(length - i, 3u);
    uint32_t group = 0;
    for (uint32_t k = 0; k < 3; ++k) group = group << 8 | (k < count ? bytes[i + k] : 0u);
    for (uint32_t k = 0; k < 4; ++k) {
      text += k <= count ? kAlphabet[group >> (18 - 6 * k) & 63] : '=';
    }
  }
  return text;
}

std::string base64_decode(std::string_view text) {
  const auto* end =
      std::find_if(text.begin(), text.end(), [](char c) { return digitOf(c) == kNoDigit; });
  text = text.substr(0, static_cast<size_t>(end - text.begin()));
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3 + 2);
  while (!text.empty()) {
    const std::string_view digits = text.substr(0, 4);
    const uint32_t group = groupOf(digits);
    // Two digits give one byte, three give two, four give three; one alone gives none.
    for (size_t k = 1; k < digits.size(); ++k) {
      bytes += static_cast<char>(group >> (24 - 8 * k) & 255);
    }
    text.remove_prefix(digits.size());
  }
  return bytes;
}
