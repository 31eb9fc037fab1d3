#pragma once

#include <string_view>

#include "svg/parse/SVGXMLDocument.h"

namespace SVGNative::xml {

/// What the XML layer takes from libxml2. That lives in a module that is loaded with the first
/// picture: with its own libraries it costs a process 0.8 ms of start-up, which documents without
/// such pictures need not pay. Nothing here may run in two threads at once.
class XMLLibrary {
 public:
  virtual ~XMLLibrary() = default;

  /// A NUL-terminated text as a tree, as far as it can be understood. No network, no files, no
  /// external entities; in values, references to the text's own entities are replaced by what they
  /// stand for. Null when that fails; `lacksMemory` takes whether for want of memory.
  virtual _xmlDoc* read(const char* text, bool* lacksMemory) const = 0;
  /// Frees the tree and what the library keeps between documents. Null is allowed.
  virtual void release(_xmlDoc* document) const = 0;

  /// Elements only. Names come without prefixes.
  virtual _xmlNode* root(_xmlDoc* document) const = 0;
  virtual _xmlNode* firstChild(const _xmlNode* node) const = 0;
  virtual _xmlNode* nextSibling(const _xmlNode* node) const = 0;
  virtual std::string_view name(const _xmlNode* node) const = 0;

  virtual _xmlAttr* firstAttribute(const _xmlNode* node) const = 0;
  virtual _xmlAttr* nextAttribute(const _xmlAttr* attribute) const = 0;
  virtual XMLAttributeText text(const _xmlAttr* attribute) const = 0;
};

/// Name of the module's one exported function, which answers its library.
inline constexpr const char* kXMLLibraryEntry = "paintXMLLibrary";

}  // namespace SVGNative::xml
