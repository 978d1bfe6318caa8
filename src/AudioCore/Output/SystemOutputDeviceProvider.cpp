#include "AudioCore/Output/SystemOutputDeviceProvider.h"

#include "AudioCore/Output/DefaultOutputListener_p.h"
#include "AudioCore/Output/NullAudioOutput.h"
#include "AudioCore/Output/PulseAudioOutput_p.h"

#include <QLoggingCategory>
#include <QTimer>

namespace vantor {

Q_LOGGING_CATEGORY(lcAudioOutput, "co.kelvane.vantor.AudioOutput")

using namespace std::chrono_literals;

// A server on this machine answers in milliseconds. One that hangs may still be waited for, but not by the
// one who pressed play.
static constexpr std::chrono::milliseconds longestWait = 1s;

class SystemOutputDeviceProvider::Private {
  public:
    explicit Private(SystemOutputDeviceProvider &provider) : q(provider) {}

    void take(const DefaultOutputListener::Outputs &now) {
        if (isSettled && now == outputs)
            return;
        if (!isSettled || now.hasServer != outputs.hasServer)
            qCInfo(lcAudioOutput, "%s", now.hasServer ? "the sound server answers" : "no sound server");
        isSettled = true;
        outputs = now;
        Q_EMIT q.changed();
    }

    SystemOutputDeviceProvider &q;
    bool isSettled = false;
    DefaultOutputListener::Outputs outputs;
    DefaultOutputListener listener{[this](const DefaultOutputListener::Outputs &now) { take(now); }};
};

SystemOutputDeviceProvider::SystemOutputDeviceProvider() : d(std::make_unique<Private>(*this)) {
    QTimer::singleShot(longestWait, this, [this] {
        if (!d->isSettled)
            d->take({});
    });
}

SystemOutputDeviceProvider::~SystemOutputDeviceProvider() = default;

bool SystemOutputDeviceProvider::isSettled() const {
    return d->isSettled;
}

std::vector<OutputDeviceDescription> SystemOutputDeviceProvider::devices() const {
    return d->outputs.devices;
}

std::optional<quint32> SystemOutputDeviceProvider::defaultDevice() const {
    return d->outputs.defaultDevice;
}

std::unique_ptr<AudioOutput> SystemOutputDeviceProvider::makeOutput(std::optional<quint32> device) {
    const std::optional<quint32> sought = device ? device : d->outputs.defaultDevice;
    const auto found = std::ranges::find(d->outputs.devices, sought, [](const OutputDeviceDescription &each) {
        return std::optional(each.id);
    });
    if (found == d->outputs.devices.end())
        return std::make_unique<NullAudioOutput>();
    // Where no device is chosen none is named: what the user has arranged for us with the system holds.
    return std::make_unique<PulseAudioOutput>(d->listener.server(), device ? found->key : QString(),
                                              static_cast<int>(found->nominalSampleRate));
}

} // namespace vantor
