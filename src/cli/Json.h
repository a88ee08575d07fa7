// Writes one JSON text (RFC 8259), value after value.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace zq::cli {

// The text in quotes, control characters escaped. A byte that isn't UTF-8 becomes U+FFFD, since JSON has no
// way to say it.
std::string JsonString(std::string_view text);

class JsonWriter {
 public:
  void BeginObject() { Open('{'); }
  void EndObject() { Close('}'); }
  void BeginArray() { Open('['); }
  void EndArray() { Close(']'); }

  // Followed by its value.
  void Key(std::string_view key);
  void Value(std::string_view text) { Put(JsonString(text)); }
  // Or a literal would be taken for a truth value.
  void Value(const char* text) { Value(std::string_view(text)); }
  void Value(std::uint64_t number) { Put(std::to_string(number)); }
  void Value(bool truth) { Put(truth ? "true" : "false"); }

  template <typename T>
  void Member(std::string_view key, const T& value) {
    Key(key);
    Value(value);
  }

  // What comes next begins a line.
  void BreakLine() { breakLine_ = true; }

  const std::string& Text() const { return text_; }
  // The text since the last call, for one that is written in parts.
  std::string TakeText() { return std::exchange(text_, {}); }

 private:
  void Open(char bracket);
  void Close(char bracket);
  void Put(std::string_view value);
  void StartValue();

  std::string text_;
  bool needsComma_ = false;
  bool breakLine_ = false;
};

}  // namespace zq::cli
