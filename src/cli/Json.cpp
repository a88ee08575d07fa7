#include "cli/Json.h"

#include <cstdio>

#include "platform/Utf8.h"

namespace zq::cli {

std::string JsonString(std::string_view text) {
  std::string quoted = "\"";
  while (!text.empty()) {
    const Character character = FirstCharacter(text);
    if (!character.isValid) {
      quoted += "\xEF\xBF\xBD";
    } else if (character.value == '"' || character.value == '\\') {
      quoted += '\\';
      quoted += text.front();
    } else if (character.value < 0x20 || character.value == 0x7F) {
      char escape[8];
      std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(character.value));
      quoted += escape;
    } else {
      quoted += text.substr(0, character.sizeBytes);
    }
    text.remove_prefix(character.sizeBytes);
  }
  quoted += '"';
  return quoted;
}

void JsonWriter::Key(std::string_view key) {
  StartValue();
  text_ += JsonString(key) + ": ";
  needsComma_ = false;
}

void JsonWriter::Open(char bracket) {
  StartValue();
  text_ += bracket;
  needsComma_ = false;
}

void JsonWriter::Close(char bracket) {
  text_ += bracket;
  needsComma_ = true;
}

void JsonWriter::Put(std::string_view value) {
  StartValue();
  text_ += value;
  needsComma_ = true;
}

void JsonWriter::StartValue() {
  if (needsComma_) text_ += ',';
  if (breakLine_) {
    text_ += '\n';
  } else if (needsComma_) {
    text_ += ' ';
  }
  breakLine_ = false;
}

}  // namespace zq::cli
