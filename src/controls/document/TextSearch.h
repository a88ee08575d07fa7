// Finding and copying text in a document.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "controls/document/Document.h"

namespace zq {

struct TextRange {
  std::size_t begin = 0;
  std::size_t end = 0;

  bool Empty() const { return begin >= end; }
  bool operator==(const TextRange&) const = default;
};

// A text with the difference of case taken out, character for character.
using FoldCase = std::function<std::string(std::string_view)>;

// The first occurrence of `needle` that begins at `from` or behind it, or with `backwards` the last that ends
// there or before; where there is none, the search goes on at the document's other end. Case is ignored, and
// an occurrence lies within one paragraph or table.
std::optional<TextRange> FindText(const Document& document, std::string_view needle, std::size_t from,
                                  bool backwards, const FoldCase& fold);

// A part of the document's text as other programs take it: line ends CR LF.
std::string TextToCopy(const Document& document, TextRange range);

}  // namespace zq
