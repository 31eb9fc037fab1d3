#pragma once

#include "platform/text/TextLibraries.h"

// Text segmentation and direction by ICU; see TextLibraries for what the functions answer.

void findClusterStarts(std::u16string_view text, std::vector<uint8_t>& starts);
void findLineStarts(std::u16string_view text, std::vector<uint8_t>& breaks);
BidiLevels findBidiLevels(std::u16string_view text, BaseDirection base);
