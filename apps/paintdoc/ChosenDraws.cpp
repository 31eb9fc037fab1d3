#include "paintdoc/ChosenDraws.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <optional>
#include <string_view>

#include "document/DrawGroup.h"
#include "document/PaintManager.h"

namespace {

using Draws = std::vector<DrawBase*>;

const DrawArray* drawsIn(const DrawBase& draw) {
  const auto* group = dynamic_cast<const DrawGroup*>(&draw);
  return group == nullptr ? nullptr : &group->draws();
}

/// A number such as 3 or 2.1.4; null when there is no such draw.
DrawBase* drawNumbered(const PaintManager& document, std::string_view number) {
  const DrawArray* list = &document.allDraws();
  const char* at = number.data();
  const char* const end = at + number.size();
  for (;;) {
    size_t place = 0;
    const auto [stop, error] = std::from_chars(at, end, place);
    if (list == nullptr || error != std::errc() || place < 1 || place > list->size()) {
      return nullptr;
    }
    DrawBase* const draw = (*list)[place - 1].get();
    if (stop == end) return draw;
    if (*stop != '.') return nullptr;
    at = stop + 1;
    list = drawsIn(*draw);
  }
}

/// All of a list of numbers; empty when one of them is none.
Draws drawsNumbered(const PaintManager& document, std::string_view numbers) {
  Draws found;
  for (size_t at = 0; at <= numbers.size();) {
    const size_t end = std::min(numbers.find(',', at), numbers.size());
    DrawBase* const draw = drawNumbered(document, numbers.substr(at, end - at));
    if (draw == nullptr) return {};
    found.push_back(draw);
    at = end + 1;
  }
  return found;
}

void findTitled(const DrawArray& draws, const std::string& title, Draws& found) {
  for (const auto& draw : draws) {
    if (draw->title() == title) found.push_back(draw.get());
    if (const DrawArray* inside = drawsIn(*draw)) findTitled(*inside, title, found);
  }
}

/// Hides what is neither chosen nor in a chosen group. Answers whether anything is shown.
bool hideOthers(const DrawArray& draws, const Draws& chosen) {
  bool showsAny = false;
  for (const auto& draw : draws) {
    const bool isChosen = std::find(chosen.begin(), chosen.end(), draw.get()) != chosen.end();
    const DrawArray* const inside = isChosen ? nullptr : drawsIn(*draw);
    const bool shows = isChosen || (inside != nullptr && hideOthers(*inside, chosen));
    draw->setVisible(shows);
    showsAny = showsAny || shows;
  }
  return showsAny;
}

}  // namespace

std::string showOnly(PaintManager& document, const std::vector<std::string>& names) {
  Draws chosen;
  for (const std::string& name : names) {
    Draws found = drawsNumbered(document, name);
    if (found.empty()) findTitled(document.allDraws(), name, found);
    if (found.empty()) return name;
    chosen.insert(chosen.end(), found.begin(), found.end());
  }
  hideOthers(document.allDraws(), chosen);
  document.setBackgroundColor(nullptr);
  return {};
}
