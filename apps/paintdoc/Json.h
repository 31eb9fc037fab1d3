#pragma once

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <vector>

#include "document/PaintManager.h"
#include "document/UsedFonts.h"

/// Keeps the order of the keys.
using Json = nlohmann::ordered_json;

/// Whole numbers are written without a fraction, and what is no finite number as null.
Json jsonNumber(double number);

/// What was left out of a document.
Json jsonOf(const std::vector<LeftOutPicture>& pictures);

/// Fonts as texts name them, with the faces that draw them.
Json jsonOf(const std::vector<UsedFont>& fonts);

enum class JsonLayout : int { indented = 2, oneLine = -1 };

/// With the end of the line. In ASCII, the rest escaped, so that a terminal obeys nothing in it;
/// bytes that are no UTF-8 become U+FFFD.
std::string textOf(const Json& json, JsonLayout layout);
