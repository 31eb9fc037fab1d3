// Attributed strings in archives: the text, the attributes of its runs, and for several runs a
// table of pairs (length of the run, position of its attributes), each number in groups of seven
// bits, the lowest first, with the high bit of a byte saying that more follow.
#include <algorithm>
#include <optional>

#include "platform/foundation/NSArray.h"
#include "platform/foundation/NSCoder.h"
#include "platform/foundation/NSData.h"
#include "platform/foundation/NSString.h"
#include "platform/foundation/Unicode.h"
#include "platform/text/NSAttributedString.h"

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
