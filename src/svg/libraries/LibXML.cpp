// The module's face to the engine: libxml2 behind it.
#include <libxml/parser.h>
#include <libxml/tree.h>

#include "svg/XMLLibrary.h"

namespace {

// Errors are no news in pictures found in the wild, and this engine writes no log.
constexpr int kOptions = XML_PARSE_RECOVER | XML_PARSE_NONET | XML_PARSE_NOERROR |
                         XML_PARSE_NOWARNING | XML_PARSE_COMPACT;

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

class LibXML : public SVGNative::xml::XMLLibrary {
 public:
  xmlDoc* read(const char* text) const override {
    return xmlReadDoc(reinterpret_cast<const xmlChar*>(text), nullptr, nullptr, kOptions);
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
