// The module's face to the engine: libxml2 behind it.
#include <libxml/parser.h>
#include <libxml/tree.h>

#include <algorithm>
#include <memory>
#include <new>
#include <string>

#include "platform/foundation/Limits.h"
#include "svg/parse/XMLLibrary.h"

namespace {

// Errors are no news in pictures found in the wild, and this engine writes no log.
constexpr int kOptions = XML_PARSE_RECOVER | XML_PARSE_NONET | XML_PARSE_NOERROR |
                         XML_PARSE_NOWARNING | XML_PARSE_COMPACT;

/// Takes what the library reports: the options do not silence what it says of declarations and of
/// "xml:id". Of want of memory it speaks nowhere else, and goes on with the tree that it has.
class Reports {
 public:
  Reports() : handler_(xmlStructuredError), context_(xmlStructuredErrorContext) {
    xmlSetStructuredErrorFunc(this, [](void* reports, auto error) {
      if (error != nullptr && error->code == XML_ERR_NO_MEMORY) {
        static_cast<Reports*>(reports)->lacksMemory_ = true;
      }
    });
  }
  Reports(const Reports&) = delete;
  Reports& operator=(const Reports&) = delete;
  ~Reports() { xmlSetStructuredErrorFunc(context_, handler_); }

  bool lackMemory() const { return lacksMemory_; }

 private:
  bool lacksMemory_ = false;
  xmlStructuredErrorFunc handler_;
  void* context_;
};

std::string_view view(const xmlChar* text) {
  return text == nullptr ? "" : reinterpret_cast<const char*>(text);
}

std::optional<std::string_view> value(const xmlNode* text) {
  if (text == nullptr) return "";
  if (text->type != XML_TEXT_NODE || text->next != nullptr) return std::nullopt;
  return view(text->content);
}

xmlNode* elementFrom(xmlNode* node) {
  while (node != nullptr && node->type != XML_ELEMENT_NODE) node = node->next;
  return node;
}

/// Puts the texts of a document's own entities in the place of references to them, in values and in
/// declarations of namespaces: drawing programs write both. The limit is for the whole document.
class EntityExpander {
 public:
  explicit EntityExpander(xmlDoc* document) : document_(document) {}

  void expandAll() {
    xmlNode* node = xmlDocGetRootElement(document_);
    while (node != nullptr) {
      if (node->type == XML_ELEMENT_NODE) expandElement(*node);
      node = following(node);
    }
  }

 private:
  /// In the order of the text. What entities contain is not entered.
  static xmlNode* following(xmlNode* node) {
    if (node->type == XML_ELEMENT_NODE && node->children != nullptr) return node->children;
    while (node != nullptr && node->next == nullptr) node = node->parent;
    return node == nullptr ? nullptr : node->next;
  }

  void expandElement(xmlNode& element) {
    for (xmlNs* space = element.nsDef; space != nullptr; space = space->next) expandSpace(*space);
    for (xmlAttr* attribute = element.properties; attribute != nullptr;
         attribute = attribute->next) {
      if (!value(attribute->children)) expandAttribute(*attribute);
    }
  }

  void expandAttribute(xmlAttr& attribute) {
    std::string text;
    if (!appendText(attribute.children, 0, text)) return;
    xmlNode* const node = xmlNewDocText(document_, reinterpret_cast<const xmlChar*>(text.c_str()));
    if (node == nullptr) throw std::bad_alloc();
    xmlFreeNodeList(attribute.children);
    attribute.children = attribute.last = node;
    void* const parent = &attribute;
    node->parent = static_cast<xmlNode*>(parent);
  }

  /// A declaration that is nothing but a reference; it comes as it was written.
  void expandSpace(xmlNs& space) {
    const std::string_view reference = view(space.href);
    if (!reference.starts_with('&') || !reference.ends_with(';')) return;
    const std::string name(reference.substr(1, reference.size() - 2));
    const xmlEntity* const entity = internalEntity(reinterpret_cast<const xmlChar*>(name.c_str()));
    if (entity == nullptr || !spend(view(entity->content).size())) return;
    xmlChar* const address = xmlStrdup(entity->content);
    if (address == nullptr) throw std::bad_alloc();
    xmlFree(const_cast<xmlChar*>(space.href));
    space.href = address;
  }

  /// False when the text is too long or its entities too deep in each other.
  bool appendText(const xmlNode* list, int depth, std::string& text) {
    constexpr int kMaxDepth = 40;
    for (const xmlNode* node = list; node != nullptr; node = node->next) {
      const bool isReference = node->type == XML_ENTITY_REF_NODE;
      const std::string_view part = isReference ? "" : view(node->content);
      if (!spend(part.size())) return false;
      text += part;
      const xmlEntity* const entity = isReference ? internalEntity(node->name) : nullptr;
      if (entity == nullptr) continue;
      if (depth == kMaxDepth || !appendText(entity->children, depth + 1, text)) return false;
    }
    return true;
  }

  /// References count too: entities may hold nothing but each other.
  bool spend(size_t bytes) {
    left_ -= std::min(left_, bytes + 1);
    return left_ > 0;
  }

  const xmlEntity* internalEntity(const xmlChar* name) const {
    const xmlEntity* const entity = xmlGetDocEntity(document_, name);
    const bool internal = entity != nullptr && entity->etype == XML_INTERNAL_GENERAL_ENTITY;
    return internal ? entity : nullptr;
  }

  xmlDoc* document_;
  size_t left_ = limits::kMaxSvgEntityBytes;
};

struct FreeDocument {
  void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};

class LibXML : public SVGNative::xml::XMLLibrary {
 public:
  xmlDoc* read(const char* text, bool* lacksMemory) const override {
    const Reports reports;
    std::unique_ptr<xmlDoc, FreeDocument> document(
        xmlReadDoc(reinterpret_cast<const xmlChar*>(text), nullptr, nullptr, kOptions));
    try {
      if (document != nullptr && document->intSubset != nullptr) {
        EntityExpander(document.get()).expandAll();
      }
      *lacksMemory = reports.lackMemory();
    } catch (const std::bad_alloc&) {
      *lacksMemory = true;
    }
    return *lacksMemory ? nullptr : document.release();
  }

  void release(xmlDoc* document) const override {
    xmlFreeDoc(document);
    xmlCleanupParser();
  }

  xmlNode* root(xmlDoc* document) const override {
    return elementFrom(xmlDocGetRootElement(document));
  }
  xmlNode* firstChild(const xmlNode* node) const override { return elementFrom(node->children); }
  xmlNode* nextSibling(const xmlNode* node) const override { return elementFrom(node->next); }
  std::string_view name(const xmlNode* node) const override { return view(node->name); }

  xmlAttr* firstAttribute(const xmlNode* node) const override { return node->properties; }
  xmlAttr* nextAttribute(const xmlAttr* attribute) const override { return attribute->next; }
  SVGNative::xml::XMLAttributeText text(const xmlAttr* attribute) const override {
    return {view(attribute->name), attribute->ns == nullptr ? "" : view(attribute->ns->href),
            value(attribute->children)};
  }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) const SVGNative::xml::XMLLibrary*
paintXMLLibrary() {
  static const LibXML library;
  return &library;
}
