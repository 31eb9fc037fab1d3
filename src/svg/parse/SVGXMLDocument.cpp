#include "svg/parse/SVGXMLDocument.h"

#include <new>
#include <utility>

#include "platform/machine/LoadableModule.h"
#include "svg/parse/XMLLibrary.h"

namespace SVGNative::xml {

namespace {

std::mutex& parserMutex() {
  static std::mutex mutex;
  return mutex;
}

// Null when the module cannot be loaded.
const XMLLibrary* library() {
  static const auto* const loaded = loadModuleLibrary<XMLLibrary>("paintxml", kXMLLibraryEntry);
  return loaded;
}

}  // namespace

XMLAttribute XMLAttribute::Next() const {
  return XMLAttribute(library()->nextAttribute(attribute_));
}

XMLAttributeText XMLAttribute::Text() const {
  return library()->text(attribute_);
}

std::string_view XMLNode::Name() const {
  return library()->name(node_);
}

XMLAttribute XMLNode::FirstAttribute() const {
  return XMLAttribute(library()->firstAttribute(node_));
}

std::optional<std::string_view> XMLNode::GetAttribute(std::string_view name,
                                                      std::string_view nameSpace) const {
  for (XMLAttribute attribute = FirstAttribute(); attribute; attribute = attribute.Next()) {
    const XMLAttributeText text = attribute.Text();
    if (text.name == name && text.nameSpace == nameSpace) return text.value;
  }
  return std::nullopt;
}

XMLNode XMLNode::FirstChild() const {
  return XMLNode(library()->firstChild(node_));
}

XMLNode XMLNode::NextSibling() const {
  return XMLNode(library()->nextSibling(node_));
}

std::unique_ptr<XMLDocument> XMLDocument::CreateXMLDocument(const char* text) {
  if (library() == nullptr) return nullptr;
  std::unique_ptr<XMLDocument> document(
      new XMLDocument(std::unique_lock<std::mutex>(parserMutex())));
  bool lacksMemory = false;
  document->document_ = library()->read(text, &lacksMemory);
  if (lacksMemory) throw std::bad_alloc();
  if (document->document_ == nullptr || !document->Root()) return nullptr;
  return document;
}

XMLDocument::~XMLDocument() {
  library()->release(document_);
}

XMLNode XMLDocument::Root() const {
  return XMLNode(library()->root(document_));
}

}  // namespace SVGNative::xml
