#pragma once

#include "AudioCore/AudioCoreError.h"
#include "AudioCore/Network/ProgressiveError.h"

namespace vantor {

/// Why a track did not play, whichever part of the engine says so.
struct PlaybackError {
    QString message;      ///< the sentence for the user
    QByteArray logged;    ///< the same with what else is known
    bool isFatal = false; ///< no other track could play either

    // Implicit: every one of these errors is one.
    PlaybackError(const AudioCoreError &error)
        : message(error.description()), logged(error.what()), isFatal(error.isFatal()) {}
    PlaybackError(const ProgressiveError &error) : message(error.description()), logged(error.what()) {}

    bool operator==(const PlaybackError &) const = default;
};

} // namespace vantor
