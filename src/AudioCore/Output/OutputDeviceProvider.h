#pragma once

#include "AudioCore/Output/AudioOutput.h"

#include <QObject>

#include <memory>
#include <vector>

namespace vantor {

/// A device that plays sound.
struct OutputDeviceDescription {
    quint32 id = 0;    ///< as long as it is there; plugged in again it is another
    QString key;       ///< the same in every session: what a choice is remembered by
    QString name;      ///< for people
    QString transport; ///< "Built-in", "USB", "Bluetooth", "HDMI", "FireWire", "Network", "Virtual"
    double nominalSampleRate = 0; ///< Hz
    double latencySeconds = 0;    ///< that it works with at present; 0 when it rests

    bool operator==(const OutputDeviceDescription &) const = default;
};

/// The system's output devices, and outputs that play on them. Main thread; nothing here waits for the sound
/// system.
class OutputDeviceProvider : public QObject {
    Q_OBJECT

  public:
    /// False until it is known, within a second of the start, whether there is a sound system.
    [[nodiscard]] virtual bool isSettled() const = 0;
    /// Empty without a sound system.
    [[nodiscard]] virtual std::vector<OutputDeviceDescription> devices() const = 0;
    /// The one that the system plays on unless told otherwise.
    [[nodiscard]] virtual std::optional<quint32> defaultDevice() const = 0;
    /// An output on one of the devices, or, with none, wherever the system wants it, which is the default
    /// device as a rule. Paced silence when the device or any device is missing. Never null.
    [[nodiscard]] virtual std::unique_ptr<AudioOutput> makeOutput(std::optional<quint32> device) = 0;

  Q_SIGNALS:
    /// Something that this object tells is different now.
    void changed();
};

} // namespace vantor
