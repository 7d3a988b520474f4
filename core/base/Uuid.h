#pragma once

#include <string>

namespace lumnara {

/// A fresh random uuid (version 4) in upper-case hexadecimal, "1D2C3B4A-0000-4000-8000-000000000001".
std::string newUuid();

} // namespace lumnara
