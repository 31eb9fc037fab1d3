#include "platform/text/libraries/ShapedFace.h"

#include <hb-ot.h>

#include <array>
#include <cmath>
#include <mutex>
#include <new>

#include "platform/machine/AddressSpace.h"
#include "platform/text/libraries/ObjectPool.h"

namespace {

NSPoint point(float x, float y) {
  return {x, y};
}

hb_draw_funcs_t* makeOutlineFunctions() {
  hb_draw_funcs_t* f = hb_draw_funcs_create();
  hb_draw_funcs_set_move_to_func(
      f,
      [](hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
        static_cast<PathData*>(path)->move(point(x, y));
      },
      nullptr, nullptr);
  hb_draw_funcs_set_line_to_func(
      f,
      [](hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
        static_cast<PathData*>(path)->line(point(x, y));
      },
      nullptr, nullptr);
  hb_draw_funcs_set_quadratic_to_func(
      f,
      [](hb_draw_funcs_t*, void* path, hb_draw_state_t*, float cx, float cy, float x, float y,
         void*) { static_cast<PathData*>(path)->quad(point(cx, cy), point(x, y)); },
      nullptr, nullptr);
  hb_draw_funcs_set_cubic_to_func(
      f,
      [](hb_draw_funcs_t*, void* path, hb_draw_state_t*, float ax, float ay, float bx, float by,
         float x, float y,
         void*) { static_cast<PathData*>(path)->cubic(point(ax, ay), point(bx, by), point(x, y)); },
      nullptr, nullptr);
  hb_draw_funcs_set_close_path_func(
      f,
      [](hb_draw_funcs_t*, void* path, hb_draw_state_t*, void*) {
        static_cast<PathData*>(path)->close();
      },
      nullptr, nullptr);
  hb_draw_funcs_make_immutable(f);
  return f;
}

FaceMetrics readMetrics(hb_font_t* font) {
  const auto position = [font](hb_ot_metrics_tag_t tag) {
    hb_position_t value = 0;
    hb_ot_metrics_get_position_with_fallback(font, tag, &value);
    return value;
  };
  FaceMetrics m;
  m.unitsPerEm = static_cast<int32_t>(hb_face_get_upem(hb_font_get_face(font)));
  m.ascent = position(HB_OT_METRICS_TAG_HORIZONTAL_ASCENDER);
  m.descent = std::abs(position(HB_OT_METRICS_TAG_HORIZONTAL_DESCENDER));
  m.leading = std::max(0, position(HB_OT_METRICS_TAG_HORIZONTAL_LINE_GAP));
  m.xHeight = position(HB_OT_METRICS_TAG_X_HEIGHT);
  m.capHeight = position(HB_OT_METRICS_TAG_CAP_HEIGHT);
  m.underlineThickness = position(HB_OT_METRICS_TAG_UNDERLINE_SIZE);
  return m;
}

constexpr hb_feature_t feature(hb_tag_t tag, uint32_t value) {
  return {tag, value, HB_FEATURE_GLOBAL_START, HB_FEATURE_GLOBAL_END};
}

/// The features that differ from HarfBuzz's defaults.
struct FeatureList {
  std::array<hb_feature_t, 3> features;
  unsigned count = 0;

  explicit FeatureList(const ShapingRun& run) {
    if (run.kerning == Kerning::off) add(HB_TAG('k', 'e', 'r', 'n'), 0);
    if (run.ligatures == Ligatures::required) {
      add(HB_TAG('l', 'i', 'g', 'a'), 0);
      add(HB_TAG('c', 'l', 'i', 'g'), 0);
    } else if (run.ligatures == Ligatures::all) {
      add(HB_TAG('d', 'l', 'i', 'g'), 1);
      add(HB_TAG('h', 'l', 'i', 'g'), 1);
    }
  }

 private:
  void add(hb_tag_t tag, uint32_t value) { features[count++] = feature(tag, value); }
};

/// Buffers keep their memory from one use to the next.
ObjectPool<HbBuffer>& shapingBuffers() {
  static auto& pool = *new ObjectPool<HbBuffer>;
  return pool;
}

}  // namespace

ShapedFace::ShapedFace(HbFont font)
    : font_(std::move(font)),
      metrics_(readMetrics(font_.get())),
      hasColorBitmaps_(hb_ot_color_has_png(hb_font_get_face(font_.get()))) {}

uint32_t ShapedFace::glyphForCharacter(char32_t character) const {
  hb_codepoint_t glyph = 0;
  return hb_font_get_nominal_glyph(font_.get(), character, &glyph) ? glyph : 0;
}

const PathData& ShapedFace::outline(uint32_t glyph) const {
  static hb_draw_funcs_t* const functions = makeOutlineFunctions();
  {
    const std::shared_lock lock(outlinesMutex_);
    const auto known = outlines_.find(glyph);
    if (known != outlines_.end()) return known->second;
  }
  PathData path;
  requireAddressSpace(kLibraryTables);
  hb_font_get_glyph_shape(font_.get(), glyph, functions, &path);
  const std::unique_lock lock(outlinesMutex_);
  return outlines_.try_emplace(glyph, std::move(path)).first->second;
}

std::optional<GlyphBitmap> ShapedFace::colorBitmap(uint32_t glyph) const {
  const HbBlob blob(hb_ot_color_glyph_reference_png(font_.get(), glyph));
  unsigned length = 0;
  const auto* bytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(blob.get(), &length));
  hb_glyph_extents_t e{};
  if (length == 0 || !hb_font_get_glyph_extents(font_.get(), glyph, &e)) return std::nullopt;
  GlyphBitmap bitmap;
  bitmap.png.assign(bytes, bytes + length);
  bitmap.rect = NSMakeRect(e.x_bearing, e.y_bearing + e.height, e.width, -e.height);
  return bitmap;
}

/// Tables are read at the first use of a script or a feature, and left out without memory.
void ShapedFace::requireTables(const ShapingRun& run) const {
  const ShapingKind kind{run.script, run.direction, run.kerning, run.ligatures,
                         std::string(run.language)};
  {
    const std::shared_lock lock(shapedMutex_);
    if (shaped_.contains(kind)) return;
  }
  requireAddressSpace(kLibraryTables);
  const std::unique_lock lock(shapedMutex_);
  shaped_.insert(kind);
}

void ShapedFace::shape(const ShapingRun& run, std::vector<ShapedGlyph>& glyphs) const {
  requireTables(run);
  const auto lease = shapingBuffers().take([] { return HbBuffer(hb_buffer_create()); });
  hb_buffer_t* buffer = lease.get();
  hb_buffer_clear_contents(buffer);
  hb_buffer_add_utf16(buffer, reinterpret_cast<const uint16_t*>(run.paragraph.data()),
                      static_cast<int>(run.paragraph.size()), static_cast<unsigned>(run.start),
                      static_cast<int>(run.length));
  hb_buffer_set_direction(
      buffer, run.direction == TextDirection::rightToLeft ? HB_DIRECTION_RTL : HB_DIRECTION_LTR);
  hb_buffer_set_script(buffer, hb_script_from_iso15924_tag(run.script));
  hb_buffer_set_language(
      buffer, hb_language_from_string(run.language.data(), static_cast<int>(run.language.size())));
  const FeatureList list(run);
  hb_shape(font_.get(), buffer, list.features.data(), list.count);
  if (!hb_buffer_allocation_successful(buffer)) throw std::bad_alloc();

  const unsigned count = hb_buffer_get_length(buffer);
  const hb_glyph_info_t* info = hb_buffer_get_glyph_infos(buffer, nullptr);
  const hb_glyph_position_t* position = hb_buffer_get_glyph_positions(buffer, nullptr);
  glyphs.clear();
  glyphs.reserve(count);
  for (unsigned i = 0; i < count; ++i) {
    const bool unsafe =
        (hb_glyph_info_get_glyph_flags(&info[i]) & HB_GLYPH_FLAG_UNSAFE_TO_BREAK) != 0;
    glyphs.push_back({info[i].codepoint, info[i].cluster, position[i].x_advance,
                      position[i].x_offset, position[i].y_offset, unsafe});
  }
}
