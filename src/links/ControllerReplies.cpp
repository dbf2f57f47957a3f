#include "links/ControllerReplies.h"

#include <cstring>

namespace KavroLibrary {

void ControllerIdentifyReply::setFields(const unsigned char* bytes) {
    std::memcpy(Identity, bytes, 8);
    std::memcpy(IdentitySuffix, bytes + 8, 2);
    std::memcpy(PartNumber, bytes + 10, 8);
    std::memcpy(Model, bytes + 18, 4);
    std::memcpy(Version, bytes + 22, 4);
    std::memcpy(VersionSuffix, bytes + 26, 1);
}

}  // namespace KavroLibrary
