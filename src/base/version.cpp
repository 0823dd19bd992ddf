#include "base/version.h"

namespace owb {

const char* programVersion() {
    return OWB_VERSION;
}

}  // namespace owb
