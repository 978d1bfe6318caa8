#include "MusicBackendKit/OutputDevice.h"

namespace vantor {

OutputDevice::ID OutputDevice::thisMacID() {
    return {QStringLiteral("this-mac")};
}

OutputDevice OutputDevice::thisMac() {
    return {thisMacID(), QStringLiteral("This Mac"), Kind::thisMac, true, false, std::nullopt};
}

} // namespace vantor
