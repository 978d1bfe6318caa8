#include "AudioCore/Output/SystemAudioOutput.h"

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Output/NullAudioOutput.h"
#include "AudioCore/Output/PulseAudioOutput.h"

#include <QLoggingCategory>

namespace vantor {

Q_LOGGING_CATEGORY(lcSystemAudioOutput, "co.kelvane.vantor.SystemAudioOutput")

std::unique_ptr<AudioOutput> makeSystemAudioOutput() {
    try {
        return std::make_unique<PulseAudioOutput>();
    } catch (const AudioCoreError &error) {
        qCWarning(lcSystemAudioOutput, "playing silently: %s", error.what());
        return std::make_unique<NullAudioOutput>();
    }
}

} // namespace vantor
