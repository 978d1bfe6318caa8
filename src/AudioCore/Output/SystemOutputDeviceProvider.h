#pragma once

#include "AudioCore/Output/OutputDeviceProvider.h"

namespace vantor {

/// The devices of the PulseAudio server, to which it connects in the background as soon as it is made; when
/// the server ends it waits for the next one. Throws std::bad_alloc when not even a thread can be had.
class SystemOutputDeviceProvider final : public OutputDeviceProvider {
    Q_OBJECT

  public:
    SystemOutputDeviceProvider();
    ~SystemOutputDeviceProvider() override;

    [[nodiscard]] bool isSettled() const override;
    [[nodiscard]] std::vector<OutputDeviceDescription> devices() const override;
    [[nodiscard]] std::optional<quint32> defaultDevice() const override;
    [[nodiscard]] std::unique_ptr<AudioOutput> makeOutput(std::optional<quint32> device) override;

  private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace vantor
