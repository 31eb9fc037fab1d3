#include "paintdoc/JsonWriter.h"

#include <charconv>
#include <cmath>

namespace {

/// Length of the UTF-8 sequence at the start of the text; 0 when it is not well formed.
size_t sequenceLength(std::string_view text) {
  const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(0);
  const size_t length = lead < 0x80   ? 1
                        : lead < 0xC2 ? 0
                        : lead < 0xE0 ? 2
                        : lead < 0xF0 ? 3
                        : lead < 0xF5 ? 4
                                      : 0;
  if (length == 0 || length > text.size()) return 0;
  for (size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  if (lead == 0xE0 && byte(1) < 0xA0) return 0;
  if (lead == 0xED && byte(1) >= 0xA0) return 0;  // surrogates
  if (lead == 0xF0 && byte(1) < 0x90) return 0;
  if (lead == 0xF4 && byte(1) >= 0x90) return 0;
  return length;
}

void appendEscaped(std::string& out, std::string_view text) {
  constexpr char kHex[] = "0123456789abcdef";
  while (!text.empty()) {
    const auto c = static_cast<unsigned char>(text[0]);
    size_t length = sequenceLength(text);
    if (c == '"' || c == '\\') {
      out += '\\';
      out += text[0];
    } else if (c < 0x20 || c == 0x7F) {
      out += "\\u00";
      out += kHex[c >> 4];
      out += kHex[c & 15];
    } else if (length == 0) {
      out += "\xEF\xBF\xBD";
      length = 1;
    } else {
      out += text.substr(0, length);
    }
    text.remove_prefix(length);
  }
}

}  // namespace

void JsonWriter::newLine() {
  out_ += '\n';
  out_.append(static_cast<size_t>(depth_) * 2, ' ');
}

void JsonWriter::separate() {
  if (afterKey_) {
    afterKey_ = false;
    return;
  }
  if (!first_) out_ += ',';
  if (depth_ > 0) newLine();
  first_ = false;
}

void JsonWriter::raw(std::string_view text) {
  separate();
  out_ += text;
}

void JsonWriter::beginObject() {
  raw("{");
  ++depth_;
  first_ = true;
}

void JsonWriter::beginArray() {
  raw("[");
  ++depth_;
  first_ = true;
}

void JsonWriter::end(char bracket) {
  --depth_;
  if (!first_) newLine();
  first_ = false;
  out_ += bracket;
}

void JsonWriter::key(std::string_view name) {
  value(name);
  out_ += ": ";
  afterKey_ = true;
}

void JsonWriter::value(std::string_view text) {
  separate();
  out_ += '"';
  appendEscaped(out_, text);
  out_ += '"';
}

void JsonWriter::value(double number) {
  if (!std::isfinite(number)) return null();
  char text[32];
  const auto end = std::to_chars(text, text + sizeof text, number).ptr;
  raw({text, static_cast<size_t>(end - text)});
}

void JsonWriter::value(int64_t number) {
  raw(std::to_string(number));
}

void JsonWriter::value(bool truth) {
  raw(truth ? "true" : "false");
}
