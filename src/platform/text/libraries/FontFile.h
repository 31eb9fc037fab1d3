#pragma once

#include <hb.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/text/TextLibraries.h"

// Font files as HarfBuzz sees them.

/// Deleters of HarfBuzz's counted objects.
struct HbDestroy {
  void operator()(hb_blob_t* blob) const { hb_blob_destroy(blob); }
  void operator()(hb_face_t* face) const { hb_face_destroy(face); }
  void operator()(hb_font_t* font) const { hb_font_destroy(font); }
  void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};
using HbBlob = std::unique_ptr<hb_blob_t, HbDestroy>;
using HbFace = std::unique_ptr<hb_face_t, HbDestroy>;
using HbFont = std::unique_ptr<hb_font_t, HbDestroy>;
using HbBuffer = std::unique_ptr<hb_buffer_t, HbDestroy>;

/// A face of a mapped file, with its named instance set; null when the file holds no such face or
/// one without outlines or colour bitmaps.
HbFont makeFont(hb_blob_t* file, uint32_t index);

/// Names and style of every usable face in a file, read from its headers. Empty for a file that is
/// not a font.
std::vector<FontFaceInfo> readFontFile(const std::string& path);

/// Opens a face of a file; maps each file once in a process.
std::shared_ptr<const FontFace> openFontFace(const std::string& path, uint32_t index);
