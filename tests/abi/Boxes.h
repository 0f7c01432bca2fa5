// Answers every message box with OK, as soon as it opens, and remembers its text.
#pragma once

namespace boxes {

void Install();
void Remove();
int Count();
const char* LastText();

} // namespace boxes
