// How the family's programs stand on the desktop: their names, their version, their icon.
#pragma once

namespace owb {

// A screen that closes does not end the program: the next one opens, or start-up goes on.
void prepareDesktop(const char* programName);

}  // namespace owb
