#include "svg/parse/SVGViewport.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "svg/parse/SVGScanner.h"

namespace SVGNative {

namespace {

std::optional<Alignment> alignmentNamed(std::string_view name) {
  if (name == "Min") return Alignment::min;
  if (name == "Mid") return Alignment::mid;
  if (name == "Max") return Alignment::max;
  return std::nullopt;
}

std::string_view nextWord(Cursor& cursor) {
  skipSpace(cursor);
  const char* start = cursor.pos;
  while (!cursor.atEnd() && !isSpace(*cursor.pos)) ++cursor.pos;
  return {start, static_cast<size_t>(cursor.pos - start)};
}

// "x" Min|Mid|Max "Y" Min|Mid|Max
void applyAlignment(std::string_view word, AspectRatio& ratio) {
  if (word.size() != 8 || word[0] != 'x' || word[4] != 'Y') return;
  const std::optional<Alignment> x = alignmentNamed(word.substr(1, 3));
  const std::optional<Alignment> y = alignmentNamed(word.substr(5, 3));
  if (!x || !y) return;
  ratio.x = *x;
  ratio.y = *y;
}

float alignedOffset(Alignment alignment, float room) {
  switch (alignment) {
    case Alignment::min:
      return 0.0f;
    case Alignment::mid:
      return room * 0.5f;
    case Alignment::max:
      break;
  }
  return room;
}

bool hasArea(const ViewBox& box) {
  return box.width > 0.0f && box.height > 0.0f;
}

}  // namespace

AspectRatio parseAspectRatio(std::string_view text) {
  Cursor cursor(text);
  std::string_view word = nextWord(cursor);
  if (word == "defer") word = nextWord(cursor);
  AspectRatio ratio;
  if (word == "none") {
    ratio.scaling = AspectRatio::Scaling::stretch;
    return ratio;
  }
  applyAlignment(word, ratio);
  if (nextWord(cursor) == "slice") ratio.scaling = AspectRatio::Scaling::slice;
  return ratio;
}

std::optional<ViewBoxMapping> mapViewBox(const ViewBox& box, const ViewBox& viewport,
                                         const AspectRatio& ratio) {
  if (!hasArea(box) || !hasArea(viewport)) return std::nullopt;
  ViewBoxMapping map;
  map.scaleX = viewport.width / box.width;
  map.scaleY = viewport.height / box.height;
  if (ratio.scaling == AspectRatio::Scaling::meet) {
    map.scaleX = map.scaleY = std::min(map.scaleX, map.scaleY);
  } else if (ratio.scaling == AspectRatio::Scaling::slice) {
    map.scaleX = map.scaleY = std::max(map.scaleX, map.scaleY);
  }
  map.x = viewport.x - box.x * map.scaleX +
          alignedOffset(ratio.x, viewport.width - box.width * map.scaleX);
  map.y = viewport.y - box.y * map.scaleY +
          alignedOffset(ratio.y, viewport.height - box.height * map.scaleY);
  const bool usable = std::isfinite(map.x) && std::isfinite(map.y) && std::isnormal(map.scaleX) &&
                      std::isnormal(map.scaleY);
  return usable ? std::optional(map) : std::nullopt;
}

std::optional<ViewportStyles> viewportStyles(const Viewport& viewport, SVGRenderer& renderer) {
  const ViewBox& frame = viewport.frame;
  const ViewBox box = viewport.box.value_or(ViewBox{0.0f, 0.0f, frame.width, frame.height});
  const std::optional<ViewBoxMapping> map = mapViewBox(box, frame, viewport.ratio);
  if (!map) return std::nullopt;
  std::shared_ptr<Path> outline = renderer.CreatePath();
  outline->Rect(frame.x, frame.y, frame.width, frame.height);
  auto clip = std::make_shared<ClippingPath>();
  clip->path = std::move(outline);
  std::shared_ptr<Transform> transform = renderer.CreateTransform();
  transform->Set(map->scaleX, 0.0f, 0.0f, map->scaleY, map->x, map->y);
  ViewportStyles styles;
  styles.clip.clippingPath = std::move(clip);
  styles.clip.hasSeveralParts = false;
  styles.content.transform = std::move(transform);
  return styles;
}

}  // namespace SVGNative
