#pragma once

namespace torvane {

/// Version of the program as in "1.2.3", for --version and the about box.
const char* Version();

}  // namespace torvane
