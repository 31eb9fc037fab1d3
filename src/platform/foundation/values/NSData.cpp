#include "platform/foundation/values/NSData.h"

#include <algorithm>
#include <string_view>

#include "platform/foundation/NSException.h"
#include "platform/foundation/files/FileReading.h"
#include "platform/foundation/values/NSCoder.h"
#include "platform/foundation/values/NSURL.h"

const NSClass NSData::kClass{"NSData", &NSObject::kClass, NSAllocate<NSData>};
const NSClass NSMutableData::kClass{"NSMutableData", &NSData::kClass, NSAllocate<NSMutableData>};

std::shared_ptr<NSData> NSData::dataWithBytes(std::span<const uint8_t> bytes) {
  return dataWithVector({bytes.begin(), bytes.end()});
}

std::shared_ptr<NSData> NSData::dataWithVector(std::vector<uint8_t> bytes) {
  auto owner = std::make_shared<const std::vector<uint8_t>>(std::move(bytes));
  return std::make_shared<NSData>(owner, std::span(*owner));
}

std::shared_ptr<NSData> NSData::subdataWithRange(const NSRange& range) const {
  if (range.location > length() || range.length > length() - range.location) {
    throw NSException(NSRangeException, "range outside the data");
  }
  return std::make_shared<NSData>(owner_, bytes_.subspan(range.location, range.length));
}

bool NSData::isEqual(const NSObject& other) const {
  const auto* data = dynamic_cast<const NSData*>(&other);
  return data != nullptr && std::ranges::equal(bytes_, data->bytes_);
}

size_t NSData::hash() const {
  // Long blobs are told apart by their length and beginning.
  const auto head = bytes_.first(std::min<size_t>(bytes_.size(), 80));
  const std::string_view text(reinterpret_cast<const char*>(head.data()), head.size());
  return std::hash<std::string_view>{}(text) ^ bytes_.size();
}

bool NSData::initWithCoder(NSCoder& coder) {
  const char* key = coder.containsValueForKey("NS.data") ? "NS.data" : "NS.bytes";
  if (const auto data = coder.decodeDataForKey(key)) {
    owner_ = data->owner();
    bytes_ = data->bytes();
  }
  return true;
}

void NSData::encodeWithCoder(NSCoder& coder) const {
  coder.encodeInlineData(*this, "NS.data");
}

void NSMutableData::setVector(std::vector<uint8_t> bytes) {
  auto buffer = std::make_shared<std::vector<uint8_t>>(std::move(bytes));
  buffer_ = buffer.get();
  owner_ = std::move(buffer);
  bytes_ = *buffer_;
}

std::vector<uint8_t>& NSMutableData::editableBuffer() {
  if (buffer_ == nullptr || owner_.use_count() > 1) setVector({bytes_.begin(), bytes_.end()});
  return *buffer_;
}

void NSMutableData::appendBytes(std::span<const uint8_t> bytes) {
  std::vector<uint8_t>& buffer = editableBuffer();
  buffer.insert(buffer.end(), bytes.begin(), bytes.end());
  bytes_ = buffer;
}

void NSMutableData::setLength(size_t length) {
  std::vector<uint8_t>& buffer = editableBuffer();
  buffer.resize(length);
  bytes_ = buffer;
}

std::span<uint8_t> NSMutableData::mutableBytes() {
  return editableBuffer();
}

namespace {

std::shared_ptr<NSData> dataOrError(std::error_code failure, FileContents contents,
                                    std::error_code* error) {
  if (error != nullptr) *error = failure;
  if (failure) return nullptr;
  const std::span<const uint8_t> bytes(contents.bytes.get(), contents.size);
  return std::make_shared<NSData>(std::move(contents.bytes), bytes);
}

}  // namespace

std::shared_ptr<NSData> NSData::dataWithContentsOfFile(const std::string& path,
                                                       std::error_code* error) {
  FileContents contents;
  const std::error_code failure = readFile(path, contents);
  return dataOrError(failure, std::move(contents), error);
}

std::shared_ptr<NSData> NSData::dataWithContentsOfDescriptor(int descriptor,
                                                             std::error_code* error) {
  FileContents contents;
  const std::error_code failure = readDescriptor(descriptor, contents);
  return dataOrError(failure, std::move(contents), error);
}

std::shared_ptr<NSData> NSData::dataWithContentsOfURL(const NSURL& url, std::error_code* error) {
  if (url.isFileURL()) return dataWithContentsOfFile(url.path(), error);
  if (error != nullptr) *error = std::make_error_code(std::errc::not_supported);
  return nullptr;
}
