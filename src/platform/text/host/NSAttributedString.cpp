#include "platform/text/host/NSAttributedString.h"

#include <algorithm>
#include <optional>

#include "platform/foundation/NSException.h"
#include "platform/foundation/Unicode.h"
#include "platform/foundation/collections/NSArray.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSData.h"
#include "platform/foundation/values/NSString.h"
#include "platform/graphics/context/NSGraphicsContext.h"
#include "platform/text/drawing/TextDrawing.h"
#include "platform/text/host/NSTextContainer.h"
#include "platform/text/host/TextAttributes.h"
#include "platform/text/layout/TextLayout.h"

namespace {

using Attributes = NSAttributedString::Attributes;

bool equalObjects(const NSObject* a, const NSObject* b) {
  if (a == b) return true;
  return a != nullptr && b != nullptr && a->isEqual(*b);
}

bool equalAttributes(const NSDictionary* a, const NSDictionary* b) {
  if (a == b) return true;
  if (a == nullptr || b == nullptr || a->count() != b->count()) return false;
  for (size_t i = 0; i < a->count(); ++i) {
    const auto value = b->objectForKey(*a->allKeys()[i]);
    if (!equalObjects(a->allValues()[i].get(), value.get())) return false;
  }
  return true;
}

size_t endOf(const NSRange& range) {
  return range.location + range.length;
}

}  // namespace

const NSClass NSAttributedString::kClass{"NSAttributedString", &NSObject::kClass,
                                         NSAllocate<NSAttributedString>};

NSAttributedString::NSAttributedString(std::string_view utf8, Attributes attributes)
    : NSAttributedString(utf16FromUTF8(utf8), std::move(attributes)) {}

NSAttributedString::NSAttributedString(std::u16string units, Attributes attributes) {
  setText(std::move(units), std::move(attributes));
}

void NSAttributedString::setText(std::u16string units, Attributes attributes) {
  units_ = std::move(units);
  runs_.clear();
  if (!units_.empty()) runs_.push_back({units_.size(), std::move(attributes)});
}

std::string NSAttributedString::string() const {
  return utf8FromUTF16(units_);
}

size_t NSAttributedString::runAt(size_t index) const {
  const auto found = std::upper_bound(runs_.begin(), runs_.end(), index,
                                      [](size_t unit, const Run& run) { return unit < run.end; });
  return static_cast<size_t>(found - runs_.begin());
}

void NSAttributedString::checkRange(const NSRange& range) const {
  if (range.location > length() || range.length > length() - range.location) {
    throw NSException(NSRangeException, "range outside the text");
  }
}

Attributes NSAttributedString::attributesAtIndex(size_t index, NSRange* effectiveRange) const {
  if (index >= length()) throw NSException(NSRangeException, "index outside the text");
  const size_t run = runAt(index);
  if (effectiveRange != nullptr) {
    const size_t start = run == 0 ? 0 : runs_[run - 1].end;
    *effectiveRange = {start, runs_[run].end - start};
  }
  return runs_[run].attributes;
}

std::shared_ptr<NSObject> NSAttributedString::attribute(std::string_view name, size_t atIndex,
                                                        NSRange* effectiveRange) const {
  const Attributes attributes = attributesAtIndex(atIndex, effectiveRange);
  return attributes == nullptr ? nullptr : attributes->objectForKey(name);
}

void NSAttributedString::enumerateAttribute(std::string_view name, const NSRange& inRange,
                                            const AttributeVisitor& visit) const {
  checkRange(inRange);
  const auto valueOf = [name](const Run& run) {
    return run.attributes == nullptr ? nullptr : run.attributes->objectForKey(name);
  };
  bool stop = false;
  for (size_t start = inRange.location; start < endOf(inRange) && !stop;) {
    size_t run = runAt(start);
    const std::shared_ptr<NSObject> value = valueOf(runs_[run]);
    size_t end = runs_[run].end;
    while (end < endOf(inRange) && equalObjects(value.get(), valueOf(runs_[++run]).get())) {
      end = runs_[run].end;
    }
    end = std::min(end, static_cast<size_t>(endOf(inRange)));
    visit(value, {start, end - start}, &stop);
    start = end;
  }
}

std::shared_ptr<NSAttributedString> NSAttributedString::attributedSubstringFromRange(
    const NSRange& range) const {
  checkRange(range);
  auto part = std::make_shared<NSAttributedString>();
  part->units_ = units_.substr(range.location, range.length);
  for (size_t run = runAt(range.location), done = 0; done < range.length; ++run) {
    done = std::min<size_t>(runs_[run].end - range.location, range.length);
    part->runs_.push_back({done, runs_[run].attributes});
  }
  return part;
}

TextLayout NSAttributedString::unlimitedLayout(std::u16string_view surroundings) const {
  const NSSize unlimited = NSMakeSize(NSTextContainer::kUnlimited, NSTextContainer::kUnlimited);
  return layoutText(makeStyledText(*this), {unlimited, 0, FontLeading::ignored, surroundings});
}

NSSize NSAttributedString::size() const {
  return unlimitedLayout().used.size;
}

void NSAttributedString::drawAtPoint(NSPoint point) const {
  const auto& context = NSGraphicsContext::currentContext();
  if (context == nullptr) return;
  const TextLayout layout = unlimitedLayout();
  drawTextBackground(layout, {0, length()}, point, *context->graphicsPort());
  drawTextGlyphs(layout, {0, length()}, point, *context->graphicsPort());
}

size_t NSAttributedString::splitRunAt(size_t unit) {
  const size_t run = runAt(unit);
  if (run == runs_.size()) return run;
  const size_t start = run == 0 ? 0 : runs_[run - 1].end;
  if (start == unit) return run;
  runs_.insert(runs_.begin() + static_cast<ptrdiff_t>(run), Run{unit, runs_[run].attributes});
  return run + 1;
}

void NSAttributedString::joinRuns() {
  size_t kept = 0;
  for (size_t i = 0; i < runs_.size(); ++i) {
    if (kept > 0 && equalAttributes(runs_[kept - 1].attributes.get(), runs_[i].attributes.get())) {
      runs_[kept - 1].end = runs_[i].end;
    } else {
      if (kept != i) runs_[kept] = std::move(runs_[i]);
      ++kept;
    }
  }
  runs_.resize(kept);
}

bool NSAttributedString::isEqual(const NSObject& other) const {
  const auto* text = dynamic_cast<const NSAttributedString*>(&other);
  if (text == nullptr || text->units_ != units_) return false;
  for (size_t start = 0; start < length();) {
    const Run& mine = runs_[runAt(start)];
    const Run& theirs = text->runs_[text->runAt(start)];
    if (!equalAttributes(mine.attributes.get(), theirs.attributes.get())) return false;
    start = std::min(mine.end, theirs.end);
  }
  return true;
}

size_t NSAttributedString::hash() const {
  return std::hash<std::u16string>{}(units_);
}

const NSClass NSMutableAttributedString::kClass{"NSMutableAttributedString",
                                                &NSAttributedString::kClass,
                                                NSAllocate<NSMutableAttributedString>};

void NSMutableAttributedString::setAttributedString(const NSAttributedString& other) {
  replaceCharactersInRange({0, length()}, other);
}

void NSMutableAttributedString::replaceCharactersInRange(const NSRange& range,
                                                         std::string_view withString) {
  checkRange(range);
  const std::u16string units = utf16FromUTF8(withString);
  Attributes attributes;
  if (length() > 0) {
    const bool before = range.length == 0 && range.location > 0;
    attributes = runs_[runAt(range.location - (before ? 1 : 0))].attributes;
  }
  std::vector<Run> runs;
  if (!units.empty()) runs.push_back({units.size(), std::move(attributes)});
  replace(range, units, std::move(runs));
}

void NSMutableAttributedString::replaceCharactersInRange(const NSRange& range,
                                                         const NSAttributedString& withString) {
  checkRange(range);
  // Copied first: the text may be put into itself.
  const auto part = withString.attributedSubstringFromRange({0, withString.length()});
  std::vector<Run> runs;
  for (size_t start = 0; start < part->length();) {
    NSRange run;
    Attributes attributes = part->attributesAtIndex(start, &run);
    start = endOf(run);
    runs.push_back({start, std::move(attributes)});
  }
  replace(range, part->units(), std::move(runs));
}

void NSMutableAttributedString::replace(const NSRange& range, std::u16string_view units,
                                        std::vector<Run> runs) {
  const auto first = static_cast<ptrdiff_t>(splitRunAt(range.location));
  const auto last = static_cast<ptrdiff_t>(splitRunAt(endOf(range)));
  for (auto it = runs_.begin() + last; it != runs_.end(); ++it) {
    it->end = it->end - range.length + units.size();
  }
  for (Run& run : runs) run.end += range.location;
  runs_.erase(runs_.begin() + first, runs_.begin() + last);
  runs_.insert(runs_.begin() + first, std::make_move_iterator(runs.begin()),
               std::make_move_iterator(runs.end()));
  units_.replace(range.location, range.length, units);
  joinRuns();
  edited();
}

void NSMutableAttributedString::deleteCharactersInRange(const NSRange& range) {
  checkRange(range);
  replace(range, {}, {});
}

void NSMutableAttributedString::appendAttributedString(const NSAttributedString& other) {
  replaceCharactersInRange({length(), 0}, other);
}

void NSMutableAttributedString::editRuns(const NSRange& range, const EditAttributes& edit) {
  checkRange(range);
  const size_t first = splitRunAt(range.location);
  const size_t last = splitRunAt(endOf(range));
  for (size_t run = first; run < last; ++run) {
    runs_[run].attributes = edit(runs_[run].attributes);
  }
  joinRuns();
  edited();
}

void NSMutableAttributedString::addAttribute(std::string_view name, std::shared_ptr<NSObject> value,
                                             const NSRange& range) {
  NSMutableDictionary one;
  one.setObject(std::move(value), name);
  addAttributes(one, range);
}

void NSMutableAttributedString::addAttributes(const NSDictionary& attributes,
                                              const NSRange& range) {
  editRuns(range, [&attributes](const Attributes& old) {
    auto merged = std::make_shared<NSMutableDictionary>();
    if (old != nullptr) *merged = NSMutableDictionary(*old);
    for (size_t i = 0; i < attributes.count(); ++i) {
      merged->setObject(attributes.allValues()[i], attributes.allKeys()[i]);
    }
    return merged;
  });
}

void NSMutableAttributedString::removeAttribute(std::string_view name, const NSRange& range) {
  const NSString key{std::string(name)};
  editRuns(range, [&key](const Attributes& old) -> Attributes {
    if (old == nullptr || old->objectForKey(key) == nullptr) return old;
    auto rest = std::make_shared<NSMutableDictionary>(*old);
    rest->removeObjectForKey(key);
    return rest;
  });
}

void NSMutableAttributedString::setAttributes(Attributes attributes, const NSRange& range) {
  editRuns(range, [&attributes](const Attributes&) { return attributes; });
}

bool NSMutableAttributedString::initWithCoder(NSCoder& coder) {
  const bool decoded = NSAttributedString::initWithCoder(coder);
  edited();
  return decoded;
}

// --- Archives ---
// Attributed strings in archives: the text, the attributes of its runs, and for several runs a
// table of pairs (length of the run, position of its attributes), each number in groups of seven
// bits, the lowest first, with the high bit of a byte saying that more follow.

namespace {

constexpr const char* kTextKey = "NSString";
constexpr const char* kAttributesKey = "NSAttributes";
constexpr const char* kRunsKey = "NSAttributeInfo";

class RunReader {
 public:
  explicit RunReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  /// Nothing when the table ends before the number does.
  std::optional<uint64_t> number() {
    uint64_t value = 0;
    for (unsigned shift = 0; !bytes_.empty(); shift += 7) {
      const uint8_t byte = bytes_.front();
      bytes_ = bytes_.subspan(1);
      if (shift < 63) value |= uint64_t{byte & 0x7fu} << shift;
      if ((byte & 0x80) == 0) return value;
    }
    return std::nullopt;
  }

 private:
  std::span<const uint8_t> bytes_;
};

/// Texts may carry attributes of any class, most of which have no part in how they look.
class AnyAttributeScope {
 public:
  explicit AnyAttributeScope(NSCoder& coder)
      : coder_(coder), before_(coder.setLeavesOutUnknownClasses(true)) {}
  AnyAttributeScope(const AnyAttributeScope&) = delete;
  AnyAttributeScope& operator=(const AnyAttributeScope&) = delete;
  ~AnyAttributeScope() { coder_.setLeavesOutUnknownClasses(before_); }

 private:
  NSCoder& coder_;
  bool before_;
};

std::shared_ptr<NSObject> decodeAttributes(NSCoder& coder) {
  const AnyAttributeScope scope(coder);
  return coder.decodeObjectForKey(kAttributesKey);
}

void appendNumber(std::vector<uint8_t>& bytes, uint64_t value) {
  for (; value >= 0x80; value >>= 7) bytes.push_back(static_cast<uint8_t>(value | 0x80));
  bytes.push_back(static_cast<uint8_t>(value));
}

}  // namespace

bool NSAttributedString::initWithCoder(NSCoder& coder) {
  setText(utf16FromUTF8(coder.decodeStringForKey(kTextKey).value_or(std::string())), nullptr);
  if (units_.empty()) return true;
  const std::shared_ptr<NSObject> stored = decodeAttributes(coder);
  if (auto one = std::dynamic_pointer_cast<NSDictionary>(stored)) {
    runs_.back().attributes = std::move(one);
    return true;
  }
  const auto several = std::dynamic_pointer_cast<NSArray>(stored);
  if (several == nullptr || several->count() == 0) return true;
  const auto attributesAt = [&several](uint64_t index) {
    return index < several->count()
               ? std::dynamic_pointer_cast<NSDictionary>(several->objectAtIndex(index))
               : nullptr;
  };
  const auto table = coder.decodeDataForKey(kRunsKey);
  if (table == nullptr) {
    runs_.back().attributes = attributesAt(0);
    return true;
  }
  runs_.clear();
  RunReader reader(table->bytes());
  size_t end = 0;
  while (end < units_.size()) {
    const auto length = reader.number();
    const auto index = length ? reader.number() : std::nullopt;
    if (!index) break;
    if (*length == 0) continue;
    end += std::min<uint64_t>(*length, units_.size() - end);
    runs_.push_back({end, attributesAt(*index)});
  }
  if (end < units_.size()) runs_.push_back({units_.size(), nullptr});
  joinRuns();
  return true;
}

void NSAttributedString::encodeWithCoder(NSCoder& coder) const {
  if (isKindOfClass(NSMutableAttributedString::kClass)) {
    coder.encodeObject(std::make_shared<NSMutableString>(string()), kTextKey);
  } else {
    coder.encodeString(string(), kTextKey);
  }
  if (runs_.empty() || (runs_.size() == 1 && runs_.front().attributes == nullptr)) return;
  if (runs_.size() == 1) {
    coder.encodeObject(runs_.front().attributes, kAttributesKey);
    return;
  }
  // Runs without attributes refer to an empty dictionary.
  const auto none = std::make_shared<NSDictionary>();
  NSArray::Objects distinct;
  std::vector<uint8_t> table;
  size_t start = 0;
  for (const Run& run : runs_) {
    const std::shared_ptr<NSDictionary> attributes =
        run.attributes == nullptr ? none : std::const_pointer_cast<NSDictionary>(run.attributes);
    const auto known = std::find(distinct.begin(), distinct.end(), attributes);
    appendNumber(table, run.end - start);
    appendNumber(table, static_cast<uint64_t>(known - distinct.begin()));
    if (known == distinct.end()) distinct.push_back(attributes);
    start = run.end;
  }
  coder.encodeObject(NSArray::arrayWithObjects(std::move(distinct)), kAttributesKey);
  coder.encodeObject(std::make_shared<NSMutableData>(std::move(table)), kRunsKey);
}
