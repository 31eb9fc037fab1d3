#include "paintdoc/RenderOptions.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>

#include "common/CommandLine.h"
#include "platform/graphics/color/NSColor.h"

namespace {

constexpr int64_t kLargestSize = 16384;
constexpr double kFarthest = 1e9;

std::string inQuotes(const std::string& text) {
  return "\"" + text + "\"";
}

/// A whole text as a number; nothing for other texts, for infinity and what is not a number.
std::optional<double> numberIn(std::string_view text) {
  double number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  const bool isRight = error == std::errc() && stop == end && std::isfinite(number);
  return isRight ? std::optional(number) : std::nullopt;
}

/// So many numbers with a separator between them.
template <size_t count>
std::optional<std::array<double, count>> numbersIn(std::string_view text, char separator) {
  std::array<double, count> numbers{};
  for (size_t i = 0; i < count; ++i) {
    const size_t end = i + 1 < count ? text.find(separator) : text.size();
    if (end == text.npos) return std::nullopt;
    const auto number = numberIn(text.substr(0, end));
    if (!number) return std::nullopt;
    numbers.at(i) = *number;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return numbers;
}

std::optional<PictureBox> boxIn(const std::string& text) {
  const auto sides = numbersIn<2>(text, 'x');
  const auto isSide = [](double side) {
    return side >= 1 && side <= kLargestSize && side == std::trunc(side);
  };
  if (!sides || !isSide((*sides)[0]) || !isSide((*sides)[1])) return std::nullopt;
  return PictureBox{static_cast<int64_t>((*sides)[0]), static_cast<int64_t>((*sides)[1])};
}

std::optional<NSRect> partIn(const std::string& text) {
  const auto numbers = numbersIn<4>(text, ',');
  if (!numbers) return std::nullopt;
  const auto [x, y, width, height] = *numbers;
  const bool isNear = std::abs(x) <= kFarthest && std::abs(y) <= kFarthest && width <= kFarthest &&
                      height <= kFarthest;
  if (!isNear || width <= 0 || height <= 0) return std::nullopt;
  return NSRect{{x, y}, {width, height}};
}

/// #RGB, #RRGGBB or #RRGGBBAA, black, white; null for other texts.
std::shared_ptr<const NSColor> colorIn(const std::string& text) {
  if (text == "black" || text == "white") return colorIn(text == "black" ? "#000" : "#fff");
  std::string digits = text.substr(std::min<size_t>(1, text.size()));
  const bool isHex =
      text.starts_with('#') && digits.find_first_not_of("0123456789abcdefABCDEF") == digits.npos;
  if (digits.size() == 3) {
    for (size_t i = 0; i < 6; i += 2) digits.insert(i, 1, digits[i]);
  }
  if (digits.size() == 6) digits += "ff";
  if (!isHex || digits.size() != 8) return nullptr;
  std::array<double, 4> parts{};
  for (size_t i = 0; i < parts.size(); ++i) {
    parts.at(i) = std::stoi(digits.substr(2 * i, 2), nullptr, 16) / 255.0;
  }
  return NSColor::colorWithSRGBRed(parts[0], parts[1], parts[2], parts[3]);
}

/// The texts that a reader of them understands.
template <class Reader>
CLI::Validator readable(Reader read, const std::string& described, const std::string& mistake) {
  const auto check = [read, mistake](const std::string& text) {
    return read(text) ? "" : inQuotes(text) + " is not " + mistake;
  };
  return {check, described};
}

CLI::Validator number(double least, double most, const std::string& range) {
  const auto read = [least, most](const std::string& text) {
    const auto number = numberIn(text);
    return number && *number >= least && *number <= most;
  };
  return readable(read, range, "a number from " + range);
}

PictureFit fitNamed(const std::string& name) {
  if (name == "cover") return PictureFit::cover;
  return name == "stretch" ? PictureFit::stretch : PictureFit::contain;
}

/// Sizes that contradict each other.
std::string mistakeInSizes(const RenderRequest& request, bool hasFit) {
  const PictureWish& wish = request.wish;
  const bool hasSize = wish.box || !request.sizes.empty();
  if (int{wish.scale > 0} + int{wish.dotsPerInch > 0} + int{wish.box.has_value()} +
          int{!request.sizes.empty()} >
      1) {
    return "one of SIZE, --size, --scale and --dpi says how large the picture is";
  }
  if (hasFit && !wish.box) return "--fit counts with --size only";
  if (wish.enlarges && !hasSize) return "--enlarge counts with SIZE and --size only";
  return {};
}

/// Each size once, in the order in which they were given.
std::vector<int64_t> differentSizes(const std::vector<int64_t>& sizes) {
  std::vector<int64_t> different;
  for (const int64_t size : sizes) {
    const bool isKnown = std::find(different.begin(), different.end(), size) != different.end();
    if (!isKnown) different.push_back(size);
  }
  return different;
}

/// Why the output cannot be written; empty when it can.
std::string mistakeInOutput(const RenderRequest& request) {
  const bool toOutput = request.output == "-";
  if (toOutput && request.report) return "standard output cannot take the picture and the report";
  if (toOutput && request.sizes.size() > 1) return "standard output can take one picture only";
  if (!request.format && !toOutput && !pictureFormatOfPath(request.output)) {
    return "no picture format has this ending; known are " +
           CLI::detail::join(knownPictureFormats(), ", ");
  }
  return {};
}

}  // namespace

void RenderOptions::addTo(CLI::App& command, RenderRequest& request) {
  command.add_option("--format", format_, "Format of the picture; else what OUT ends with")
      ->check(oneOf(knownPictureFormats()))
      ->transform([](const std::string& name) { return CLI::detail::to_lower(name); });
  command.add_option("--quality", request.quality, "Of JPEG and WebP")
      ->check(number(0, 1, "0 to 1"))
      ->capture_default_str();
  addSizes(command, request);
  addContents(command, request);
  command.add_option("FILE", request.input, "Document or SVG picture; - is standard input")
      ->required();
  command
      .add_option("OUT", request.output,
                  "Picture to write; - is standard output, %s the size, %n the name of FILE")
      ->required();
  takesAny(command.add_option("SIZE", request.sizes,
                              "Largest widths and heights; the full size without"))
      ->transform(wholeNumber(1, kLargestSize, ": render takes one FILE, one OUT and then sizes"));
}

void RenderOptions::addSizes(CLI::App& command, RenderRequest& request) {
  command.add_option("--scale", request.wish.scale, "Pixels for each unit of the canvas")
      ->check(number(1e-6, 1e6, "0.000001 to 1000000"));
  command
      .add_option("--dpi", request.wish.dotsPerInch,
                  "Pixels for each inch of the canvas, by its resolution or 72")
      ->check(number(0.01, 1e6, "0.01 to 1000000"));
  command.add_option("--size", box_, "Box for the picture")
      ->check(readable(boxIn, "WxH", "two whole numbers from 1 to 16384 with an x between them"));
  command.add_option("--fit", fit_, "How the picture gets into it; contain without")
      ->check(oneOf({"contain", "cover", "stretch"}));
  command.add_flag("--enlarge", request.wish.enlarges, "Fill sizes beyond the canvas too");
}

void RenderOptions::addContents(CLI::App& command, RenderRequest& request) {
  command
      .add_option("--part", part_, "Part of the canvas, in its units from the lower left corner")
      ->check(readable(partIn, "X,Y,W,H", "four numbers, the last two above 0"));
  const auto keep = [&request](const std::vector<std::string>& names) {
    request.draws = names;
    return true;
  };
  command
      .add_option("--draws", keep,
                  "Paint only draws with these numbers or this title, as info shows them; may be "
                  "given again")
      ->type_name("DRAWS")
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  command.add_option("--background", background_, "Show the picture over a colour")
      ->check(readable([](const std::string& text) { return colorIn(text) != nullptr; }, "COLOR",
                       "#RGB, #RRGGBB, #RRGGBBAA, black or white"));
  command.add_flag("--trim", request.trims, "Cut off transparent edges");
}

std::string RenderOptions::completeRequest(RenderRequest& request) const {
  request.sizes = differentSizes(request.sizes);
  if (!format_.empty()) request.format = pictureFormatNamed(format_);
  if (!box_.empty()) request.wish.box = boxIn(box_);
  if (!part_.empty()) request.wish.part = partIn(part_);
  if (!background_.empty()) request.background = colorIn(background_);
  request.wish.fit = fitNamed(fit_);
  const std::string mistake = mistakeInSizes(request, !fit_.empty());
  return mistake.empty() ? mistakeInOutput(request) : mistake;
}
