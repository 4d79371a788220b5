#include "platform/system_text.h"

#include <sys/utsname.h>

namespace zentaq {

std::string systemText() {
    utsname names{};
    if (uname(&names) != 0) return "an unknown system";
    return std::string(names.sysname) + " " + names.release + " (" + names.machine + ")";
}

}  // namespace zentaq
