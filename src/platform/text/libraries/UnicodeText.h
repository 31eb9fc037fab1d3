#pragma once

#include "platform/text/TextLibraries.h"

// Text segmentation and direction by ICU; see TextLibraries for what the functions answer.

void findClusterStarts(std::u16string_view text, std::vector<uint8_t>& starts);
void findLineStarts(std::u16string_view text, std::vector<uint8_t>& breaks);
std::vector<uint32_t> findScriptExtensions(char32_t character);
std::u16string normalizeText(std::u16string_view text, Normalization form);
BidiLevels findBidiLevels(std::u16string_view text, BaseDirection base);
BidiLevels findBidiLevels(std::u16string_view text, uint8_t paragraph,
                          std::vector<uint8_t> explicitLevels);
