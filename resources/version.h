// The version, in one place: the about box, the file's properties.
#pragma once

#define ZQ_VERSION_NUMBERS 1, 0, 0, 0
#define ZQ_VERSION_TEXT "1.0"
// In UTC; the packages' files bear it as their time.
#define ZQ_RELEASE_DATE "2026-11-22"
