#include "controls/document/Utf8.h"

namespace zq {

char32_t NextCodePoint(std::string_view text, std::size_t& at) {
  const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char lead = byte(at);
  ++at;
  if (lead < 0x80) return lead;

  // The least second byte keeps out what a shorter sequence says, the greatest the surrogates and what lies
  // beyond Unicode.
  std::size_t more = 0;
  unsigned char low = 0x80;
  unsigned char high = 0xBF;
  if (lead >= 0xC2 && lead <= 0xDF) {
    more = 1;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    more = 2;
    if (lead == 0xE0) low = 0xA0;
    if (lead == 0xED) high = 0x9F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    more = 3;
    if (lead == 0xF0) low = 0x90;
    if (lead == 0xF4) high = 0x8F;
  }
  if (more == 0 || text.size() - at < more || byte(at) < low || byte(at) > high) return kReplacementCharacter;

  char32_t codePoint = lead & (0x3FU >> more);
  for (std::size_t i = 0; i < more; ++i) {
    if ((byte(at + i) & 0xC0) != 0x80) return kReplacementCharacter;
    codePoint = codePoint << 6 | (byte(at + i) & 0x3FU);
  }
  at += more;
  return codePoint;
}

void AppendUtf8(std::string& text, char32_t codePoint) {
  const auto put = [&text](char32_t value) { text += static_cast<char>(value); };
  if (codePoint < 0x80) {
    put(codePoint);
  } else if (codePoint < 0x800) {
    put(0xC0 | codePoint >> 6);
    put(0x80 | (codePoint & 0x3F));
  } else if (codePoint < 0x10000) {
    put(0xE0 | codePoint >> 12);
    put(0x80 | (codePoint >> 6 & 0x3F));
    put(0x80 | (codePoint & 0x3F));
  } else {
    put(0xF0 | codePoint >> 18);
    put(0x80 | (codePoint >> 12 & 0x3F));
    put(0x80 | (codePoint >> 6 & 0x3F));
    put(0x80 | (codePoint & 0x3F));
  }
}

}  // namespace zq
