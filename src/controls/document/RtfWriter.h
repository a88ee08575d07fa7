// RtfWriter: a document as Rich Text Format, version 1.9.
#pragma once

#include <string>

#include "controls/document/Document.h"
#include "controls/document/PageLayout.h"

namespace zq {

// Seven-bit text whatever the document holds, line ends CR LF.
std::string ToRtf(const Document& document, const PageSetup& setup);

}  // namespace zq
