#include "svg/tree/SVGClipParser.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "platform/foundation/Limits.h"
#include "svg/parse/SVGScanner.h"
#include "svg/parse/SVGShapeParser.h"

namespace SVGNative {

namespace {

// Hidden shapes do not take part.
bool isShown(const AttributeSet& attributes) {
  const std::string_view visibility = trimmed(attributes.text(Attribute::visibility));
  return trimmed(attributes.text(Attribute::display)) != "none" && visibility != "hidden" &&
         visibility != "collapse";
}

}  // namespace

// What is gathered for one clip path.
struct SVGClipParser::Content {
  const LengthContext& lengths;
  const ElementMap& elements;
  std::shared_ptr<Path> path;
  std::optional<WindingRule> rule = std::nullopt;  // of the first shape
};

void SVGClipParser::Declare(xml::XMLNode node) {
  const std::optional<std::string_view> id = node.GetAttribute("id");
  if (!id || id->empty() || node.GetAttribute("clipPathUnits") == "objectBoundingBox") return;
  if (!sources_.try_emplace(std::string(*id), Source{node, {}}).second) return;
  auto clip = std::make_shared<ClippingPath>();
  clip->path = renderer_.CreatePath();
  clippingPaths_.emplace(std::string(*id), std::move(clip));
}

void SVGClipParser::ParseClipPath(xml::XMLNode node, const AttributeSet& attributes,
                                  const LengthContext& lengths, WindingRule rule) {
  const auto found = sources_.find(attributes.text(Attribute::id));
  if (found == sources_.end() || found->second.node != node) return;
  found->second.lengths = lengths;
  ClippingPath& clip = *clippingPaths_.find(found->first)->second;
  clip.transform = parseTransformAttr(attributes, Attribute::transform, renderer_);
  clip.clipRule = rule;
}

void SVGClipParser::Complete(const ElementMap& elements) {
  for (const auto& [id, source] : sources_) {
    complete(*clippingPaths_.find(id)->second, source, elements);
  }
}

void SVGClipParser::complete(ClippingPath& clip, const Source& source, const ElementMap& elements) {
  Content content{source.lengths, elements, renderer_.CreatePath()};
  for (xml::XMLNode node = source.node.FirstChild(); node; node = node.NextSibling()) {
    const bool reference = node.Name() == "use";
    if (!reference && !isShape(node.Name())) continue;
    const AttributeSet attributes(node);
    if (!isShown(attributes)) continue;
    if (!content.rule) {
      content.rule = parseWindingRule(attributes, Attribute::clipRule).value_or(clip.clipRule);
    }
    if (reference) {
      addReference(attributes, content);
    } else {
      addShape(node, attributes, content);
    }
  }
  clip.path = std::move(content.path);
  clip.clipRule = content.rule.value_or(clip.clipRule);
}

void SVGClipParser::addShape(xml::XMLNode node, const AttributeSet& attributes, Content& content) {
  const std::shared_ptr<Transform> transform =
      parseTransformAttr(attributes, Attribute::transform, renderer_);
  if (transform == nullptr) {
    ParseGeometry(node.Name(), attributes, content.lengths, *content.path);
    return;
  }
  const std::shared_ptr<Path> shape = renderer_.CreatePath();
  ParseGeometry(node.Name(), attributes, content.lengths, *shape);
  content.path->AddPath(*shape, transform.get());
}

// A "use" in a clip path must lead to a shape directly.
void SVGClipParser::addReference(const AttributeSet& attributes, Content& content) {
  const auto found = content.elements.find(referencedId(attributes.text(Attribute::href)));
  if (found == content.elements.end()) return;
  const auto* graphic = dynamic_cast<const Graphic*>(found->second.get());
  if (graphic == nullptr || !graphic->displayed) return;
  referencedBytes_ += graphic->pathBytes;
  if (referencedBytes_ > limits::kMaxSvgReferencedClipBytes) return;
  std::shared_ptr<Transform> transform = parsePlacement(attributes, content.lengths, renderer_);
  if (transform == nullptr) transform = renderer_.CreateTransform();
  if (graphic->style.transform != nullptr) transform->Concat(*graphic->style.transform);
  content.path->AddPath(*graphic->path, transform.get());
}

std::shared_ptr<Transform> parsePlacement(const AttributeSet& attributes,
                                          const LengthContext& lengths, SVGRenderer& renderer) {
  std::shared_ptr<Transform> transform =
      parseTransformAttr(attributes, Attribute::transform, renderer);
  const float x = lengths.ParseLengthFromAttr(attributes, Attribute::x, LengthType::horizontal, 0);
  const float y = lengths.ParseLengthFromAttr(attributes, Attribute::y, LengthType::vertical, 0);
  if (x == 0.0f && y == 0.0f) return transform;
  if (transform == nullptr) transform = renderer.CreateTransform();
  transform->Translate(x, y);
  return transform;
}

}  // namespace SVGNative
