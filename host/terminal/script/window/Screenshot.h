// Pictures of the screen.
#pragma once

#include <string>

namespace vesk {

// Saves the whole screen as PNG. The answer is what went wrong, also that the picture is of one colour only;
// empty when all is well.
std::string SaveScreenshot(const std::string& path);

} // namespace vesk
