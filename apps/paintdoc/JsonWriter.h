#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Writes JSON (RFC 8259) with two-space indentation. Calls must nest properly; keys are given
/// inside objects only.
class JsonWriter {
 public:
  void beginObject();
  void endObject() { end('}'); }
  void beginArray();
  void endArray() { end(']'); }
  void key(std::string_view name);
  /// Bytes that are not UTF-8 are replaced by U+FFFD.
  void value(std::string_view text);
  void value(const char* text) { value(std::string_view(text)); }
  void value(double number);
  void value(int64_t number);
  void value(bool truth);
  void null() { raw("null"); }

  const std::string& text() const { return out_; }

 private:
  void separate();
  void raw(std::string_view text);
  void end(char bracket);
  void newLine();

  std::string out_;
  int depth_ = 0;
  bool first_ = true;
  bool afterKey_ = false;
};
