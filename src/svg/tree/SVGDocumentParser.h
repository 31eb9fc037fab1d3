#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "svg/SVGDocumentImpl.h"
#include "svg/draw/SVGRenderer.h"
#include "svg/parse/SVGAttributes.h"
#include "svg/parse/SVGLength.h"
#include "svg/parse/SVGNameMap.h"
#include "svg/parse/SVGXMLDocument.h"
#include "svg/tree/SVGClipParser.h"
#include "svg/tree/SVGElement.h"
#include "svg/tree/SVGGradientParser.h"
#include "svg/tree/SVGStyleParser.h"

namespace SVGNative {

/// "viewBox"; nothing unless it has exactly four numbers.
std::optional<ViewBox> parseViewBox(const AttributeSet& attributes);

/// "x", "y", "width" and "height", each with its own default.
ViewBox parseFrame(const AttributeSet& attributes, const LengthContext& lengths,
                   const ViewBox& defaults);

/// Turns XML elements into the tree that is drawn. Elements that are only drawn where something
/// refers to them (inside "defs" and clip paths, and symbols) are reachable through the map of ids
/// alone.
class SVGDocumentParser {
 public:
  /// Elements are made in `memory`, which must outlive them. Every one with an id enters
  /// `elements`; the first of an id counts.
  SVGDocumentParser(SVGRenderer& renderer, ElementMemory& memory, ElementMap& elements,
                    const LengthContext& lengths);

  std::shared_ptr<const Group> ParseRoot(xml::XMLNode root, const AttributeSet& attributes);

  /// What the attributes of an element and all in it say.
  struct Text {
    size_t bytes = 0;
    bool hasPercentages = false;
  };

 private:
  using Handler = void (SVGDocumentParser::*)(xml::XMLNode, const AttributeSet&);
  static Handler handlerFor(std::string_view name);

  /// A viewport that says nothing of its own units: percentages inside it are of whatever size a
  /// reference gives it.
  struct Resizable {
    xml::XMLNode node;
    size_t bytes = 0;
    bool isOpen = false;  ///< its content is being parsed
  };

  void declareReferences(xml::XMLNode parent, int depth, const Text* outer);
  const Text* declareViewport(xml::XMLNode node, int depth, const Text* outer, Text& own);
  void ParseChildren(xml::XMLNode parent, const std::shared_ptr<Group>& group);
  void ParseChild(xml::XMLNode node);
  void parseGroup(xml::XMLNode node, const AttributeSet& attributes);
  void parseViewportGroup(xml::XMLNode node, const AttributeSet& attributes);
  std::shared_ptr<Group> parseViewport(xml::XMLNode node, const AttributeSet& attributes,
                                       const Reference* reference);
  void parseContent(Reference& reference);
  void parseDefs(xml::XMLNode node, const AttributeSet& attributes);
  void parseUse(xml::XMLNode node, const AttributeSet& attributes);
  void parseImage(xml::XMLNode node, const AttributeSet& attributes);
  void parseGradient(xml::XMLNode node, const AttributeSet& attributes);
  void parseClipPath(xml::XMLNode node, const AttributeSet& attributes);
  void ParseShape(xml::XMLNode node, const AttributeSet& attributes);

  void ParseGraphic(Element& element, const AttributeSet& attributes);
  void enterId(const std::shared_ptr<Element>& element, const AttributeSet& attributes);
  void AddChildToCurrentGroup(std::shared_ptr<const Element> element);

  SVGRenderer& renderer_;
  ElementMemory& memory_;
  ElementMap& elements_;
  LengthContext lengths_;
  SVGGradientParser gradients_;
  SVGClipParser clips_;
  NameMap<Resizable> resizables_;
  bool isCopy_ = false;  // of something that has its ids already
  size_t copiedBytes_ = 0;
  std::vector<std::shared_ptr<Group>> groupStack_;
  WindingRule clipRule_ = WindingRule::nonZero;  // inherited
  std::shared_ptr<const Color> currentColor_;    // inherited; null for black
  int64_t elementCount_ = 0;
};

}  // namespace SVGNative
