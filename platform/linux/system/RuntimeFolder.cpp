#include "platform/linux/system/RuntimeFolder.h"

#include <cstdlib>

namespace corvane {

std::string RuntimeFolder() {
    const char* folder = std::getenv("NICX_RUNTIME");
    return folder != nullptr && *folder != '\0' ? folder : "/run/nicx";
}

}  // namespace corvane
