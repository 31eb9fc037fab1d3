#include "platform/text/libraries/FontFile.h"

#include <hb-ot.h>
#include <sys/stat.h>

#include <cmath>
#include <map>
#include <mutex>

#include "platform/machine/AddressSpace.h"
#include "platform/text/libraries/ShapedFace.h"

namespace {

constexpr hb_tag_t kHeaderTable = HB_TAG('h', 'e', 'a', 'd');
constexpr hb_tag_t kPostScriptTable = HB_TAG('p', 'o', 's', 't');
constexpr size_t kRevisionOffset = 4;     // fontRevision in 'head'
constexpr size_t kFixedPitchOffset = 12;  // isFixedPitch in 'post'

/// A 32-bit field of a table, 0 when the table is shorter.
uint32_t tableField(hb_face_t* face, hb_tag_t table, size_t offset) {
  const HbBlob blob(hb_face_reference_table(face, table));
  unsigned length = 0;
  const auto* bytes = reinterpret_cast<const uint8_t*>(hb_blob_get_data(blob.get(), &length));
  if (bytes == nullptr || offset + 4 > length) return 0;
  bytes += offset;
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

std::string nameOf(hb_face_t* face, hb_ot_name_id_t id) {
  char text[256];
  unsigned size = sizeof text;
  hb_ot_name_get_utf8(face, id, HB_LANGUAGE_INVALID, &size, text);
  return std::string(text, size);
}

std::string nameOf(hb_face_t* face, hb_ot_name_id_t preferred, hb_ot_name_id_t otherwise) {
  std::string name = nameOf(face, preferred);
  return name.empty() ? nameOf(face, otherwise) : name;
}

FontFaceInfo describe(hb_font_t* font, const std::string& path, uint32_t index) {
  hb_face_t* face = hb_font_get_face(font);
  FontFaceInfo info;
  info.file = path;
  info.index = index;
  info.postScriptName = nameOf(face, HB_OT_NAME_ID_POSTSCRIPT_NAME);
  info.family = nameOf(face, HB_OT_NAME_ID_TYPOGRAPHIC_FAMILY, HB_OT_NAME_ID_FONT_FAMILY);
  info.style = nameOf(face, HB_OT_NAME_ID_TYPOGRAPHIC_SUBFAMILY, HB_OT_NAME_ID_FONT_SUBFAMILY);
  info.weight = static_cast<int>(std::lround(hb_style_get_value(font, HB_STYLE_TAG_WEIGHT)));
  info.width = static_cast<int>(hb_style_get_value(font, HB_STYLE_TAG_WIDTH));
  info.italic = hb_style_get_value(font, HB_STYLE_TAG_ITALIC) != 0 ||
                hb_style_get_value(font, HB_STYLE_TAG_SLANT_ANGLE) != 0;
  info.fixedPitch = tableField(face, kPostScriptTable, kFixedPitchOffset) != 0;
  info.version = static_cast<int32_t>(tableField(face, kHeaderTable, kRevisionOffset));
  return info;
}

bool drawable(hb_face_t* face) {
  for (const hb_tag_t table : {HB_TAG('g', 'l', 'y', 'f'), HB_TAG('C', 'F', 'F', ' '),
                               HB_TAG('C', 'F', 'F', '2'), HB_TAG('C', 'B', 'D', 'T')}) {
    const HbBlob blob(hb_face_reference_table(face, table));
    if (hb_blob_get_length(blob.get()) > 0) return true;
  }
  return false;
}

/// A file mapped; empty when it cannot be read.
HbBlob mapFile(const std::string& path) {
  HbBlob file(hb_blob_create_from_file_or_fail(path.c_str()));
  if (file != nullptr) return file;
  struct stat status {};
  const bool isThere = stat(path.c_str(), &status) == 0;
  requireAddressSpace(kLibraryTables + (isThere ? static_cast<size_t>(status.st_size) : 0));
  return HbBlob(hb_blob_get_empty());
}

/// Maps of font files; a map stays for the rest of the process.
hb_blob_t* sharedFontFile(const std::string& path) {
  static std::mutex mutex;
  static auto* const files = new std::map<std::string, HbBlob>;
  const std::lock_guard lock(mutex);
  const auto known = files->find(path);
  if (known != files->end()) return known->second.get();
  return files->emplace(path, mapFile(path)).first->second.get();
}

}  // namespace

HbFont makeFont(hb_blob_t* file, uint32_t index) {
  // HarfBuzz goes on with empty tables in the place of those that it could not allocate.
  requireAddressSpace(kLibraryTables);
  const uint32_t number = index & 0xffff;
  if (number >= hb_face_count(file)) return nullptr;
  const HbFace face(hb_face_create(file, number));
  if (hb_face_get_glyph_count(face.get()) == 0 || !drawable(face.get())) return nullptr;
  HbFont font(hb_font_create(face.get()));
  if (index >> 16 != 0) hb_font_set_var_named_instance(font.get(), (index >> 16) - 1);
  hb_font_make_immutable(font.get());
  return font;
}

std::vector<FontFaceInfo> readFontFile(const std::string& path) {
  const HbBlob file = mapFile(path);
  std::vector<FontFaceInfo> faces;
  const unsigned count = hb_face_count(file.get());
  for (unsigned i = 0; i < count; ++i) {
    const HbFont font = makeFont(file.get(), i);
    if (font != nullptr) faces.push_back(describe(font.get(), path, i));
  }
  return faces;
}

std::shared_ptr<const FontFace> openFontFace(const std::string& path, uint32_t index) {
  HbFont font = makeFont(sharedFontFile(path), index);
  return font == nullptr ? nullptr : std::make_shared<ShapedFace>(std::move(font));
}
