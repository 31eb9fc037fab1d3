#include "paintdoc/Json.h"

#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>

Json jsonNumber(double number) {
  constexpr double kAllWholeBelow = 9007199254740992;  // 2 to the power of 53
  const bool isWhole = std::abs(number) < kAllWholeBelow && std::trunc(number) == number;
  return isWhole ? Json(static_cast<int64_t>(number)) : Json(number);
}

Json jsonOf(const std::vector<LeftOutPicture>& pictures) {
  Json list = Json::array();
  for (const LeftOutPicture& picture : pictures) {
    list.push_back({{"title", picture.title}, {"kind", picture.kind}, {"reason", picture.reason}});
  }
  return list;
}

Json jsonOf(const std::vector<UsedFont>& fonts) {
  Json list = Json::array();
  for (const UsedFont& font : fonts) {
    Json sizes = Json::array();
    for (const double size : font.sizes) sizes.push_back(jsonNumber(size));
    list.push_back({{"wanted", font.wanted}, {"faces", font.faces}, {"sizes", sizes}});
  }
  return list;
}

std::string textOf(const Json& json, JsonLayout layout) {
  return json.dump(static_cast<int>(layout), ' ', true, Json::error_handler_t::replace) + "\n";
}
