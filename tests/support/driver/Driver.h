// Everything for driving a program from outside its process.
#pragma once

// IWYU pragma: begin_exports
#include "support/driver/Controls.h"
#include "support/driver/Drop.h"
#include "support/driver/MessageBoxView.h"
#include "support/driver/Picture.h"
#include "support/driver/Program.h"
#include "support/driver/Scratch.h"
#include "support/driver/Wait.h"
#include "support/driver/Window.h"
// IWYU pragma: end_exports
