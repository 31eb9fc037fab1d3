#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string_view>

// The parser's own names.
// NOLINTBEGIN(bugprone-reserved-identifier)
struct _xmlAttr;
struct _xmlDoc;
struct _xmlNode;
// NOLINTEND(bugprone-reserved-identifier)

/// The little of an XML parser that pictures need. Nothing outside the text is ever read: no
/// network, no files, no external entities. A text's own entities are expanded in values only.
namespace SVGNative::xml {

inline constexpr std::string_view kXLinkNamespace = "http://www.w3.org/1999/xlink";

struct XMLAttributeText {
  std::string_view name;       ///< without its prefix
  std::string_view nameSpace;  ///< the namespace's URI; empty for none
  /// Nothing when the value refers to entities whose texts are too long (limits).
  std::optional<std::string_view> value;
};

/// A view of an attribute; valid as long as its document.
class XMLAttribute {
 public:
  explicit XMLAttribute(_xmlAttr* attribute) : attribute_(attribute) {}
  explicit operator bool() const { return attribute_ != nullptr; }
  XMLAttribute Next() const;
  XMLAttributeText Text() const;

 private:
  _xmlAttr* attribute_;
};

/// A view of an element; valid as long as its document.
class XMLNode {
 public:
  XMLNode() = default;
  explicit XMLNode(_xmlNode* node) : node_(node) {}
  explicit operator bool() const { return node_ != nullptr; }
  bool operator==(const XMLNode&) const = default;
  /// Without its prefix.
  std::string_view Name() const;
  XMLAttribute FirstAttribute() const;
  /// The value of the attribute of that name and namespace (empty for none); nothing when it is
  /// missing, which is not the same as empty.
  std::optional<std::string_view> GetAttribute(std::string_view name,
                                               std::string_view nameSpace = {}) const;
  /// Child elements, text and comments left out.
  XMLNode FirstChild() const;
  XMLNode NextSibling() const;

 private:
  _xmlNode* node_ = nullptr;
};

/// An XML text as a tree. One lives at a time in the process: making one waits until the one before
/// is gone, on whatever thread, because the parser's global state is released with each. A thread
/// therefore must not make a second one while it holds a first.
class XMLDocument {
 public:
  /// `text` is UTF-8 and ends with a NUL. As much is kept as can be made out of a damaged text;
  /// null when there is not a single element.
  static std::unique_ptr<XMLDocument> CreateXMLDocument(const char* text);

  XMLDocument(const XMLDocument&) = delete;
  XMLDocument& operator=(const XMLDocument&) = delete;
  ~XMLDocument();

  XMLNode Root() const;

 private:
  explicit XMLDocument(std::unique_lock<std::mutex> lock) : lock_(std::move(lock)) {}

  std::unique_lock<std::mutex> lock_;
  _xmlDoc* document_ = nullptr;
};

}  // namespace SVGNative::xml
