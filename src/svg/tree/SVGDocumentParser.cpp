#include "svg/tree/SVGDocumentParser.h"

#include <algorithm>
#include <cassert>
#include <iterator>
#include <string>
#include <utility>

#include "platform/foundation/Limits.h"
#include "svg/SVGStringParser.h"
#include "svg/parse/SVGScanner.h"
#include "svg/parse/SVGShapeParser.h"
#include "svg/tree/SVGClipParser.h"

namespace SVGNative {

namespace {

bool isGradient(std::string_view name) {
  return name == "linearGradient" || name == "radialGradient";
}

bool isContainer(std::string_view name) {
  return name == "g" || name == "defs" || name == "symbol" || name == "svg";
}

bool isViewport(std::string_view name) {
  return name == "svg" || name == "symbol";
}

struct EncodingPrefix {
  std::string_view prefix;
  ImageEncoding encoding;
};

constexpr EncodingPrefix kEncodingPrefixes[] = {
    {"data:image/png;base64,", ImageEncoding::png},
    {"data:image/jpg;base64,", ImageEncoding::jpeg},
    {"data:image/jpeg;base64,", ImageEncoding::jpeg},
};

// Programs break the text into lines, and XML makes blanks of those.
std::string withoutSpace(std::string_view text) {
  std::string bare;
  bare.reserve(text.size());
  std::copy_if(text.begin(), text.end(), std::back_inserter(bare),
               [](char c) { return !isSpace(c); });
  return bare;
}

// Null for references to anything but a picture inside the text.
std::shared_ptr<ImageData> createImage(std::string_view reference, SVGRenderer& renderer) {
  for (const auto& [prefix, encoding] : kEncodingPrefixes) {
    if (!reference.starts_with(prefix)) continue;
    const std::string_view data = reference.substr(prefix.size());
    if (std::none_of(data.begin(), data.end(), isSpace)) {
      return renderer.CreateImageData(data, encoding);
    }
    return renderer.CreateImageData(withoutSpace(data), encoding);
  }
  return nullptr;
}

// What an element and everything inside it say, from a depth on.
void addTextOf(xml::XMLNode node, int depth, SVGDocumentParser::Text& text) {
  constexpr size_t kBytesOfElement = 64;
  text.bytes += kBytesOfElement;
  for (auto attribute = node.FirstAttribute(); attribute; attribute = attribute.Next()) {
    const std::string_view value = attribute.Text().value.value_or("");
    text.bytes += value.size();
    text.hasPercentages = text.hasPercentages || value.find('%') != std::string_view::npos;
  }
  if (depth == limits::kMaxSvgDepth) return;
  for (node = node.FirstChild(); node; node = node.NextSibling()) addTextOf(node, depth + 1, text);
}

Rect toRect(const ViewBox& box) {
  return Rect::FromSize(box.x, box.y, box.width, box.height);
}

}  // namespace

std::optional<ViewBox> parseViewBox(const AttributeSet& attributes) {
  std::vector<float> numbers;
  if (!SVGStringParser::ParseListOfNumbers(attributes.text(Attribute::viewBox), numbers,
                                           SVGStringParser::Separators::optional) ||
      numbers.size() != 4) {
    return std::nullopt;
  }
  return ViewBox{numbers[0], numbers[1], numbers[2], numbers[3]};
}

ViewBox parseFrame(const AttributeSet& attributes, const LengthContext& lengths,
                   const ViewBox& defaults) {
  const auto length = [&](Attribute attribute, LengthType type, float value) {
    return lengths.ParseLengthFromAttr(attributes, attribute, type, value);
  };
  return {length(Attribute::x, LengthType::horizontal, defaults.x),
          length(Attribute::y, LengthType::vertical, defaults.y),
          length(Attribute::width, LengthType::horizontal, defaults.width),
          length(Attribute::height, LengthType::vertical, defaults.height)};
}

SVGDocumentParser::SVGDocumentParser(SVGRenderer& renderer, ElementMemory& memory,
                                     ElementMap& elements, const LengthContext& lengths)
    : renderer_(renderer),
      memory_(memory),
      elements_(elements),
      lengths_(lengths),
      gradients_(renderer),
      clips_(renderer) {}

SVGDocumentParser::Handler SVGDocumentParser::handlerFor(std::string_view name) {
  using Self = SVGDocumentParser;
  static constexpr std::pair<std::string_view, Handler> kHandlers[] = {
      {"g", &Self::parseGroup},
      {"use", &Self::parseUse},
      {"defs", &Self::parseDefs},
      {"svg", &Self::parseViewportGroup},
      {"symbol", &Self::parseViewportGroup},
      {"image", &Self::parseImage},
      {"linearGradient", &Self::parseGradient},
      {"radialGradient", &Self::parseGradient},
      {"clipPath", &Self::parseClipPath},
  };
  if (isShape(name)) return &Self::ParseShape;
  for (const auto& [handled, handler] : kHandlers) {
    if (handled == name) return handler;
  }
  return nullptr;
}

std::shared_ptr<const Group> SVGDocumentParser::ParseRoot(xml::XMLNode root,
                                                          const AttributeSet& attributes) {
  declareReferences(root, 0, nullptr);
  auto group = memory_.makeShared<Group>();
  ParseGraphic(*group, attributes);
  enterId(group, attributes);
  clipRule_ = parseWindingRule(attributes, Attribute::clipRule).value_or(clipRule_);
  currentColor_ = currentColorAt(attributes, nullptr);
  ParseChildren(root, group);
  gradients_.Complete();
  clips_.Complete(elements_);
  return group;
}

// Gradients, clip paths and viewports may be referred to before they stand in the text. A viewport
// inside another one counts like that one: looking through each would take long.
void SVGDocumentParser::declareReferences(xml::XMLNode parent, int depth, const Text* outer) {
  if (depth == limits::kMaxSvgDepth) return;
  for (xml::XMLNode node = parent.FirstChild(); node; node = node.NextSibling()) {
    const std::string_view name = node.Name();
    if (isContainer(name)) {
      Text text;
      const Text* const inside = declareViewport(node, depth, outer, text);
      declareReferences(node, depth + 1, inside);
    } else if (isGradient(name)) {
      gradients_.Declare(node);
    } else if (name == "clipPath") {
      clips_.Declare(node);
    }
  }
}

// Answers what stands in the nearest viewport that was looked through, in `own` if it is this one.
const SVGDocumentParser::Text* SVGDocumentParser::declareViewport(xml::XMLNode node, int depth,
                                                                  const Text* outer, Text& own) {
  if (!isViewport(node.Name())) return outer;
  const auto id = node.GetAttribute("id");
  if (!id || parseViewBox(AttributeSet(node))) return outer;
  if (outer == nullptr) addTextOf(node, depth, own);
  const Text& text = outer == nullptr ? own : *outer;
  if (text.hasPercentages) resizables_.try_emplace(std::string(*id), Resizable{node, text.bytes});
  return &text;
}

void SVGDocumentParser::ParseChildren(xml::XMLNode parent, const std::shared_ptr<Group>& group) {
  groupStack_.push_back(group);
  for (xml::XMLNode node = parent.FirstChild(); node; node = node.NextSibling()) ParseChild(node);
  groupStack_.pop_back();
  group->style.hasSeveralParts = group->children.size() > 1;
}

void SVGDocumentParser::ParseChild(xml::XMLNode node) {
  if (groupStack_.size() > limits::kMaxSvgDepth || elementCount_ == limits::kMaxSvgElements) return;
  ++elementCount_;
  const Handler handler = handlerFor(node.Name());
  if (handler == nullptr) return;
  const WindingRule outerRule = clipRule_;
  const AttributeSet attributes(node);
  clipRule_ = parseWindingRule(attributes, Attribute::clipRule).value_or(clipRule_);
  if (!attributes.has(Attribute::color)) {
    (this->*handler)(node, attributes);
  } else {
    const auto outerColor = std::exchange(currentColor_, currentColorAt(attributes, currentColor_));
    (this->*handler)(node, attributes);
    currentColor_ = outerColor;
  }
  clipRule_ = outerRule;
}

void SVGDocumentParser::ParseGraphic(Element& element, const AttributeSet& attributes) {
  ParsePresentationAttributes(
      attributes, {lengths_, gradients_.Gradients(), clips_.ClippingPaths(), renderer_, memory_},
      element);
}

void SVGDocumentParser::enterId(const std::shared_ptr<Element>& element,
                                const AttributeSet& attributes) {
  const std::string_view id = attributes.text(Attribute::id);
  if (!id.empty() && !isCopy_) elements_.try_emplace(std::string(id), element);
}

void SVGDocumentParser::AddChildToCurrentGroup(std::shared_ptr<const Element> element) {
  assert(!groupStack_.empty());
  groupStack_.back()->children.push_back(std::move(element));
}

void SVGDocumentParser::parseGroup(xml::XMLNode node, const AttributeSet& attributes) {
  auto group = memory_.makeShared<Group>();
  ParseGraphic(*group, attributes);
  enterId(group, attributes);
  AddChildToCurrentGroup(group);
  ParseChildren(node, group);
}

void SVGDocumentParser::parseViewportGroup(xml::XMLNode node, const AttributeSet& attributes) {
  const std::shared_ptr<Group> group = parseViewport(node, attributes, nullptr);
  if (node.Name() == "svg") AddChildToCurrentGroup(group);
}

// In the size that the reference gives it, if it comes through one.
std::shared_ptr<Group> SVGDocumentParser::parseViewport(xml::XMLNode node,
                                                        const AttributeSet& attributes,
                                                        const Reference* reference) {
  auto group = memory_.makeShared<Group>();
  ParseGraphic(*group, attributes);
  enterId(group, attributes);
  const ViewBox& outer = lengths_.Box();
  ViewBox frame = parseFrame(attributes, lengths_, {0.0f, 0.0f, outer.width, outer.height});
  if (reference != nullptr) {
    frame.width = reference->width.value_or(frame.width);
    frame.height = reference->height.value_or(frame.height);
  }
  const std::optional<ViewBox> box = parseViewBox(attributes);
  group->viewport = std::make_unique<Viewport>(
      Viewport{frame, box, parseAspectRatio(attributes.text(Attribute::preserveAspectRatio))});
  const LengthContext outerLengths = lengths_;
  lengths_.UpdateViewBox(box.value_or(ViewBox{0.0f, 0.0f, frame.width, frame.height}));
  const auto resizable = resizables_.find(attributes.text(Attribute::id));
  const bool isResizable = resizable != resizables_.end();
  const bool wasOpen = isResizable && std::exchange(resizable->second.isOpen, true);
  ParseChildren(node, group);
  if (isResizable) resizable->second.isOpen = wasOpen;
  lengths_ = outerLengths;
  return group;
}

// Its target in the reference's own size, where percentages inside the target depend on it.
void SVGDocumentParser::parseContent(Reference& reference) {
  const auto found = resizables_.find(reference.target);
  if (found == resizables_.end() || found->second.isOpen) return;
  copiedBytes_ += found->second.bytes;
  if (copiedBytes_ > limits::kMaxSvgCopiedBytes) return;
  const bool wasCopy = std::exchange(isCopy_, true);
  const xml::XMLNode node = found->second.node;
  reference.content = parseViewport(node, AttributeSet(node), &reference);
  isCopy_ = wasCopy;
}

// The group that collects the children is dropped: what has no id can never be drawn.
void SVGDocumentParser::parseDefs(xml::XMLNode node, const AttributeSet& attributes) {
  auto group = memory_.makeShared<Group>();
  ParseGraphic(*group, attributes);
  ParseChildren(node, group);
}

void SVGDocumentParser::parseUse(xml::XMLNode /*node*/, const AttributeSet& attributes) {
  auto reference = memory_.makeShared<Reference>();
  ParseGraphic(*reference, attributes);
  reference->style.hasSeveralParts = false;
  reference->style.transform = parsePlacement(attributes, lengths_, renderer_);
  reference->target = referencedId(attributes.text(Attribute::href));
  reference->width = lengths_.ParseLength(attributes, Attribute::width, LengthType::horizontal);
  reference->height = lengths_.ParseLength(attributes, Attribute::height, LengthType::vertical);
  parseContent(*reference);
  enterId(reference, attributes);
  AddChildToCurrentGroup(std::move(reference));
}

void SVGDocumentParser::parseImage(xml::XMLNode /*node*/, const AttributeSet& attributes) {
  auto image = memory_.makeShared<Image>();
  image->image = createImage(attributes.text(Attribute::href), renderer_);
  if (image->image == nullptr) return;
  ParseGraphic(*image, attributes);
  const ViewBox size{0.0f, 0.0f, image->image->Width(), image->image->Height()};
  const ViewBox area = parseFrame(attributes, lengths_, size);
  const AspectRatio ratio = parseAspectRatio(attributes.text(Attribute::preserveAspectRatio));
  const std::optional<ViewBoxMapping> map = mapViewBox(size, area, ratio);
  if (!map) return;
  image->clipArea = toRect(area);
  image->fillArea =
      Rect::FromSize(map->x, map->y, map->scaleX * size.width, map->scaleY * size.height);
  enterId(image, attributes);
  AddChildToCurrentGroup(std::move(image));
}

void SVGDocumentParser::parseGradient(xml::XMLNode node, const AttributeSet& attributes) {
  if (!isCopy_) gradients_.ParseGradient(node, attributes, lengths_, currentColor_);
}

void SVGDocumentParser::parseClipPath(xml::XMLNode node, const AttributeSet& attributes) {
  if (isCopy_) return;
  clips_.ParseClipPath(node, attributes, lengths_, clipRule_);
  // Its shapes may be referred to.
  parseDefs(node, attributes);
}

void SVGDocumentParser::ParseShape(xml::XMLNode node, const AttributeSet& attributes) {
  auto graphic = memory_.makeShared<Graphic>();
  ParseGraphic(*graphic, attributes);
  std::shared_ptr<Path> path = renderer_.CreatePath();
  ParseGeometry(node.Name(), attributes, lengths_, *path);
  graphic->path = std::move(path);
  graphic->pathBytes =
      attributes.text(Attribute::d).size() + attributes.text(Attribute::points).size();
  enterId(graphic, attributes);
  AddChildToCurrentGroup(std::move(graphic));
}

}  // namespace SVGNative
