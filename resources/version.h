// The version, in one place: the about box, the file's properties.
#pragma once

#define ZQ_VERSION_NUMBERS 1, 0, 0, 0
#define ZQ_VERSION_TEXT "1.0"
