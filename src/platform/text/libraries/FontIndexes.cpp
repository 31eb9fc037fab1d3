#include "platform/text/libraries/FontIndexes.h"

#include <dirent.h>
#include <fontconfig/fontconfig.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <new>
#include <system_error>

#include "platform/foundation/Convert.h"
#include "platform/machine/AddressSpace.h"
#include "platform/text/libraries/FontFile.h"

namespace {

namespace fs = std::filesystem;

/// Folders inside each other; real font trees are three deep, and links may form a circle.
constexpr int kMaxFolderDepth = 8;

/// More than the cache of any folder takes; thousands of fonts take some megabytes.
constexpr size_t kMostCacheBytes = size_t{16} << 20;

struct FcDestroy {
  void operator()(FcConfig* config) const { FcConfigDestroy(config); }
  void operator()(FcFontSet* set) const { FcFontSetDestroy(set); }
  void operator()(FcCache* cache) const { FcDirCacheUnload(cache); }
};
using ConfigPtr = std::unique_ptr<FcConfig, FcDestroy>;
using FontSetPtr = std::unique_ptr<FcFontSet, FcDestroy>;
using CachePtr = std::unique_ptr<FcCache, FcDestroy>;

const FcChar8* fcText(const std::string& text) {
  return reinterpret_cast<const FcChar8*>(text.c_str());
}

std::string stringOf(const FcPattern* pattern, const char* object) {
  FcChar8* text = nullptr;
  return FcPatternGetString(pattern, object, 0, &text) == FcResultMatch
             ? reinterpret_cast<const char*>(text)
             : std::string();
}

int integerOf(const FcPattern* pattern, const char* object, int otherwise) {
  int value = otherwise;
  FcPatternGetInteger(pattern, object, 0, &value);
  return value;
}

bool boolOf(const FcPattern* pattern, const char* object) {
  FcBool value = FcFalse;
  return FcPatternGetBool(pattern, object, 0, &value) == FcResultMatch && value != FcFalse;
}

/// Faces that can be shaped and drawn: no Type 1 files, and of variable fonts only the instances.
bool usable(const FcPattern* pattern) {
  const std::string format = stringOf(pattern, FC_FONTFORMAT);
  return (format == "TrueType" || format == "CFF") && !boolOf(pattern, FC_VARIABLE) &&
         (boolOf(pattern, FC_OUTLINE) || boolOf(pattern, FC_COLOR));
}

FontFaceInfo describe(const FcPattern* pattern) {
  FontFaceInfo info;
  info.file = stringOf(pattern, FC_FILE);
  info.index = static_cast<uint32_t>(integerOf(pattern, FC_INDEX, 0));
  info.postScriptName = stringOf(pattern, FC_POSTSCRIPT_NAME);
  info.family = stringOf(pattern, FC_FAMILY);
  info.style = stringOf(pattern, FC_STYLE);
  double weight = FC_WEIGHT_REGULAR;
  FcPatternGetDouble(pattern, FC_WEIGHT, 0, &weight);
  info.weight = roundedHalfUp(FcWeightToOpenTypeDouble(weight));
  info.width = integerOf(pattern, FC_WIDTH, FC_WIDTH_NORMAL);
  info.italic = integerOf(pattern, FC_SLANT, FC_SLANT_ROMAN) != FC_SLANT_ROMAN;
  info.fixedPitch = integerOf(pattern, FC_SPACING, FC_PROPORTIONAL) >= FC_MONO;
  info.version = integerOf(pattern, FC_FONTVERSION, 0);
  return info;
}

/// Faces found in font caches, with the caches' coverage tables, and in font files.
class FaceList : public FontIndex {
 public:
  const std::vector<FontFaceInfo>& faces() const override { return faces_; }

  bool covers(size_t face, char32_t character) const override {
    if (coverage_[face] != nullptr) return FcCharSetHasChar(coverage_[face], character) != FcFalse;
    const auto opened = openFontFace(faces_[face].file, faces_[face].index);
    return opened != nullptr && opened->glyphForCharacter(character) != 0;
  }

  void addFontSet(FontSetPtr set) {
    for (int i = 0; i < set->nfont; ++i) {
      const FcPattern* pattern = set->fonts[i];
      if (!usable(pattern)) continue;
      FcCharSet* coverage = nullptr;
      FcPatternGetCharSet(pattern, FC_CHARSET, 0, &coverage);
      add(describe(pattern), coverage);
    }
    sets_.push_back(std::move(set));
  }

  void addFile(const std::string& path) {
    for (FontFaceInfo& info : readFontFile(path)) add(std::move(info), nullptr);
  }

 private:
  void add(FontFaceInfo info, const FcCharSet* coverage) {
    if (info.postScriptName.empty() || info.family.empty()) return;
    faces_.push_back(std::move(info));
    coverage_.push_back(coverage);
  }

  std::vector<FontFaceInfo> faces_;
  std::vector<const FcCharSet*> coverage_;  // owned by sets_; null: ask the face itself
  std::vector<FontSetPtr> sets_;
};

std::string environment(const char* name) {
  const char* value = std::getenv(name);
  return value == nullptr ? std::string() : value;
}

/// $variable, or a folder below the home folder; empty when neither is known.
std::string userFolder(const char* variable, const char* belowHome) {
  std::string chosen = environment(variable);
  if (!chosen.empty()) return chosen;
  const std::string home = environment("HOME");
  return home.empty() ? std::string() : home + belowHome;
}

std::vector<std::string> fontFolders() {
  std::vector<std::string> folders{"/usr/share/fonts", "/usr/local/share/fonts"};
  const std::string data = userFolder("XDG_DATA_HOME", "/.local/share");
  if (!data.empty()) folders.push_back(data + "/fonts");
  return folders;
}

std::string escaped(const std::string& text) {
  std::string out;
  for (const char c : text) {
    if (c == '&') {
      out += "&amp;";
    } else if (c == '<') {
      out += "&lt;";
    } else {
      out += c;
    }
  }
  return out;
}

/// A configuration that knows where font caches are and nothing else. Reading the system's own
/// configuration would take longer than everything else that a text needs.
ConfigPtr cacheConfiguration() {
  std::string xml = "<fontconfig><cachedir>/var/cache/fontconfig</cachedir>";
  const std::string user = userFolder("XDG_CACHE_HOME", "/.cache");
  if (!user.empty()) xml += "<cachedir>" + escaped(user) + "/fontconfig</cachedir>";
  xml += "</fontconfig>";
  ConfigPtr config(FcConfigCreate());
  if (config == nullptr) throw std::bad_alloc();
  FcConfigParseAndLoadFromMemory(config.get(), fcText(xml), FcFalse);
  return config;
}

/// In the order of their names; none when the folder cannot be read. Without the C++ library's
/// iterator, which ends the process when there is no memory for a name.
std::vector<fs::path> entriesOf(const std::string& folder) {
  std::vector<fs::path> entries;
  const std::unique_ptr<DIR, int (*)(DIR*)> stream(opendir(folder.c_str()), closedir);
  if (stream == nullptr) return entries;
  while (const dirent* entry = readdir(stream.get())) {
    const std::string_view name = entry->d_name;
    if (name != "." && name != "..") entries.push_back(fs::path(folder) / name);
  }
  std::sort(entries.begin(), entries.end());
  return entries;
}

/// Walks font folders, through their caches where these are valid.
class FolderWalk {
 public:
  FolderWalk(FcConfig* config, FaceList& list) : config_(config), list_(list) {}

  void visit(const std::string& folder, int depth = 0) {
    if (depth > kMaxFolderDepth) return;
    // The library answers want of memory like a missing cache, and leaves out fonts.
    requireAddressSpace(kMostCacheBytes);
    const CachePtr cache(FcDirCacheLoad(fcText(folder), config_, nullptr));
    if (cache == nullptr) {
      readFolder(folder, depth);
      return;
    }
    FontSetPtr set(FcCacheCopySet(cache.get()));
    if (set == nullptr) throw std::bad_alloc();
    list_.addFontSet(std::move(set));
    for (int i = 0; i < FcCacheNumSubdir(cache.get()); ++i) {
      visit(reinterpret_cast<const char*>(FcCacheSubdir(cache.get(), i)), depth + 1);
    }
  }

 private:
  void readFolder(const std::string& folder, int depth) {
    std::error_code error;
    for (const fs::path& entry : entriesOf(folder)) {
      if (fs::is_directory(entry, error)) {
        visit(entry, depth + 1);
      } else if (isFontFile(entry)) {
        list_.addFile(entry);
      }
    }
  }

  static bool isFontFile(const fs::path& path) {
    std::string suffix = path.extension();
    std::transform(suffix.begin(), suffix.end(), suffix.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return suffix == ".ttf" || suffix == ".otf" || suffix == ".ttc" || suffix == ".otc";
  }

  FcConfig* config_;
  FaceList& list_;
};

}  // namespace

std::shared_ptr<const FontIndex> indexInstalledFonts() {
  const auto list = std::make_shared<FaceList>();
  const ConfigPtr config = cacheConfiguration();
  FolderWalk walk(config.get(), *list);
  for (const std::string& folder : fontFolders()) walk.visit(folder);
  return list;
}

std::shared_ptr<const FontIndex> indexFontFiles(std::span<const std::string> files) {
  const auto list = std::make_shared<FaceList>();
  for (const std::string& file : files) list->addFile(file);
  return list;
}
