// The program's version, as CMakeLists.txt tells it.
#pragma once

namespace owb {

const char* programVersion();

}  // namespace owb
