// RtfText: reads rich text as a reader does that knows nothing of our writer: groups, control words,
// destinations that are passed over, Unicode with its fallback.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "controls/document/Characters.h"

namespace zq::test {

// The body's text in UTF-8: a line feed for each \par and each \row, a tab for each \cell. Throws for braces
// that don't match, a byte of more than seven bits, a fallback that isn't one character, half a surrogate
// pair.
class RtfText {
 public:
  explicit RtfText(std::string_view rtf) : rtf_(rtf) {
    if (!rtf.starts_with("{\\rtf1")) throw std::runtime_error("no RTF");
    Read();
  }
  const std::string& Text() const { return text_; }
  std::size_t Pictures() const { return pictures_; }

 private:
  static constexpr std::string_view kFallback = "\\'3f";
  struct Group {
    bool passedOver = false;
  };

  void Read() {
    while (at_ < rtf_.size()) {
      const char c = rtf_[at_++];
      if (static_cast<unsigned char>(c) >= 0x80) throw std::runtime_error("a byte of eight bits");
      if (c == '{') {
        groups_.push_back(groups_.empty() ? Group{} : groups_.back());
      } else if (c == '}') {
        if (groups_.empty()) throw std::runtime_error("too many closing braces");
        groups_.pop_back();
      } else if (c == '\\') {
        ReadControl();
      } else if (c != '\r' && c != '\n') {
        Put(static_cast<unsigned char>(c));
      }
    }
    if (!groups_.empty() || highUnit_ != 0) throw std::runtime_error("it ends too soon");
  }

  void ReadControl() {
    if (at_ >= rtf_.size()) throw std::runtime_error("it ends in a control word");
    const auto isLetter = [](char c) { return c >= 'a' && c <= 'z'; };
    if (!isLetter(rtf_[at_])) {
      const char symbol = rtf_[at_++];
      if (symbol == '*') {
        groups_.back().passedOver = true;
      } else if (symbol == '\\' || symbol == '{' || symbol == '}') {
        Put(static_cast<unsigned char>(symbol));
      } else {
        throw std::runtime_error("an unknown symbol");
      }
      return;
    }
    std::string word;
    while (at_ < rtf_.size() && isLetter(rtf_[at_])) word += rtf_[at_++];
    std::string number;
    if (at_ < rtf_.size() && rtf_[at_] == '-') number += rtf_[at_++];
    while (at_ < rtf_.size() && rtf_[at_] >= '0' && rtf_[at_] <= '9') number += rtf_[at_++];
    if (at_ < rtf_.size() && rtf_[at_] == ' ') ++at_;
    for (const char* destination : {"fonttbl", "colortbl", "header", "pict"}) {
      if (word == destination) groups_.back().passedOver = true;
    }
    if (word == "pict") ++pictures_;
    if (word == "u") {
      const int unit = std::atoi(number.c_str());
      if (unit < -32768 || unit > 32767) throw std::runtime_error("a unit of more than 16 bits");
      if (rtf_.substr(at_, kFallback.size()) != kFallback) throw std::runtime_error("no fallback");
      at_ += kFallback.size();
      PutUnit(static_cast<unsigned>(unit) & 0xFFFF);
    } else if (word == "par" || word == "row") {
      Put('\n');
    } else if (word == "cell") {
      Put('\t');
    }
  }

  void Put(char32_t c) {
    if (highUnit_ != 0) throw std::runtime_error("half a surrogate pair");
    if (!groups_.empty() && !groups_.back().passedOver) AppendUtf8(text_, c);
  }

  void PutUnit(unsigned unit) {
    if (unit >= 0xD800 && unit <= 0xDBFF) {
      if (highUnit_ != 0) throw std::runtime_error("half a surrogate pair");
      highUnit_ = unit;
    } else if (unit >= 0xDC00 && unit <= 0xDFFF) {
      if (highUnit_ == 0) throw std::runtime_error("half a surrogate pair");
      const char32_t c = 0x10000 + ((highUnit_ - 0xD800) << 10) + (unit - 0xDC00);
      highUnit_ = 0;
      Put(c);
    } else {
      Put(unit);
    }
  }

  std::string_view rtf_;
  std::size_t at_ = 0;
  std::vector<Group> groups_;
  std::string text_;
  std::size_t pictures_ = 0;
  unsigned highUnit_ = 0;
};

}  // namespace zq::test
