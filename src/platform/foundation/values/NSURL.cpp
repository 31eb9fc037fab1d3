#include "platform/foundation/values/NSURL.h"

#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "platform/foundation/values/NSCoder.h"

namespace {

/// Length of the scheme in front of the first ':'; 0 when there is none (RFC 3986, 3.1).
size_t schemeLength(std::string_view text) {
  const auto isLetter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); };
  if (text.empty() || !isLetter(text[0])) return 0;
  size_t i = 1;
  while (i < text.size() && (isLetter(text[i]) || (text[i] >= '0' && text[i] <= '9') ||
                             text[i] == '+' || text[i] == '-' || text[i] == '.')) {
    ++i;
  }
  return i < text.size() && text[i] == ':' ? i : 0;
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

std::string percentDecoded(std::string_view text) {
  std::string out;
  for (size_t i = 0; i < text.size(); ++i) {
    const int high = i + 2 < text.size() && text[i] == '%' ? hexDigit(text[i + 1]) : -1;
    const int low = high >= 0 ? hexDigit(text[i + 2]) : -1;
    if (low >= 0) {
      out.push_back(static_cast<char>(high * 16 + low));
      i += 2;
    } else {
      out.push_back(text[i]);
    }
  }
  return out;
}

std::string percentEncoded(std::string_view path) {
  constexpr std::string_view kPlain =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~/!$&'()*+,:=@";
  constexpr char kDigits[] = "0123456789ABCDEF";
  std::string out;
  for (const char c : path) {
    if (kPlain.find(c) != std::string_view::npos) {
      out.push_back(c);
    } else {
      const auto byte = static_cast<uint8_t>(c);
      out += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
    }
  }
  return out;
}

struct Parts {
  std::string scheme;
  std::string_view authority;
  std::string_view path;
};

Parts split(std::string_view url) {
  Parts parts;
  if (const size_t length = schemeLength(url); length > 0) {
    parts.scheme = url.substr(0, length);
    for (char& c : parts.scheme) c = static_cast<char>(c | 0x20);
    url.remove_prefix(length + 1);
  }
  if (url.starts_with("//")) {
    const size_t end = std::min(url.find('/', 2), url.size());
    parts.authority = url.substr(2, end - 2);
    url.remove_prefix(end);
  }
  parts.path = url.substr(0, url.find_first_of("?#"));
  return parts;
}

}  // namespace

const NSClass NSURL::kClass{"NSURL", &NSObject::kClass, NSAllocate<NSURL>};

std::shared_ptr<NSURL> NSURL::URLWithString(std::string_view text) {
  return std::make_shared<NSURL>(std::string(text));
}

std::shared_ptr<NSURL> NSURL::fileURLWithPath(std::string_view path) {
  std::string absolute(path);
  if (!path.starts_with('/')) {
    const std::unique_ptr<char, void (*)(void*)> folder(getcwd(nullptr, 0), std::free);
    absolute = std::string(folder != nullptr ? folder.get() : "") + "/" + absolute;
  }
  return URLWithString("file://" + percentEncoded(absolute));
}

std::string NSURL::absoluteString() const {
  if (base_ == nullptr || schemeLength(relative_) > 0) return relative_;
  const std::string base = base_->absoluteString();
  const Parts parts = split(base);
  const size_t path =
      parts.path.empty() ? base.size() : static_cast<size_t>(parts.path.data() - base.data());
  if (relative_.starts_with('/')) return base.substr(0, path) + relative_;
  const size_t slash = parts.path.rfind('/');
  const size_t keep = slash == std::string_view::npos ? path : path + slash + 1;
  return base.substr(0, keep) + relative_;
}

bool NSURL::isFileURL() const {
  const std::string text = absoluteString();
  const Parts parts = split(text);
  return parts.scheme == "file" && (parts.authority.empty() || parts.authority == "localhost");
}

std::string NSURL::path() const {
  return percentDecoded(split(absoluteString()).path);
}

bool NSURL::isEqual(const NSObject& other) const {
  const auto* url = dynamic_cast<const NSURL*>(&other);
  if (url == nullptr || url->relative_ != relative_) return false;
  if (url->base_ == base_) return true;
  return url->base_ != nullptr && base_ != nullptr && url->base_->isEqual(*base_);
}

size_t NSURL::hash() const {
  return std::hash<std::string>{}(relative_);
}

bool NSURL::initWithCoder(NSCoder& coder) {
  relative_ = coder.decodeStringForKey("NS.relative").value_or("");
  const auto base = coder.decodeObjectOfClass<NSURL>("NS.base");
  if (base != nullptr && !coder.isDecoding(*base)) base_ = base;
  return true;
}

void NSURL::encodeWithCoder(NSCoder& coder) const {
  coder.encodeObject(base_, "NS.base");
  coder.encodeString(relative_, "NS.relative");
}
