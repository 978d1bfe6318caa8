#include "Vantor/Model/OutputChoice.h"

#include "AudioCore/Playback/Player.h"

#include <QCoreApplication>
#include <QSettings>

#include <algorithm>

namespace vantor {

namespace {

const QString deviceKey = QStringLiteral("output.device");
const QString nameKey = QStringLiteral("output.deviceName");

QString tr(const char *text) {
    return QCoreApplication::translate("OutputChoice", text);
}

} // namespace

OutputChoice::OutputChoice(Player &player, QSettings &settings) : m_player(player), m_settings(settings) {
    if (const QString key = settings.value(deviceKey).toString(); !key.isEmpty())
        player.chooseOutputDevice(key);
}

std::vector<OutputChoice::Item> OutputChoice::items() const {
    const std::optional<QString> chosen = m_player.chosenOutputDevice();
    std::vector<Item> items{{tr("System Default"), std::nullopt, !chosen}};
    const std::vector<OutputDeviceDescription> devices = m_player.outputDevices();
    for (const OutputDeviceDescription &device : devices) {
        const bool isAlone = std::ranges::count(devices, device.name, &OutputDeviceDescription::name) == 1;
        items.push_back({isAlone ? device.name : QStringLiteral("%1 (%2)").arg(device.name, device.key),
                         device.key, chosen == device.key});
    }
    if (std::ranges::none_of(items, &Item::chosen)) {
        const QString name = m_settings.value(nameKey).toString();
        items.push_back({tr("%1 (not connected)").arg(name.isEmpty() ? *chosen : name), chosen, true});
    }
    return items;
}

std::optional<QString> OutputChoice::problem() const {
    const std::vector<OutputDeviceDescription> devices = m_player.outputDevices();
    const std::optional<QString> chosen = m_player.chosenOutputDevice();
    if (devices.empty())
        return tr("No sound device");
    if (chosen && std::ranges::find(devices, *chosen, &OutputDeviceDescription::key) == devices.end())
        return tr("Sound device not connected");
    return std::nullopt;
}

void OutputChoice::choose(const std::optional<QString> &key) {
    for (const Item &item : items()) {
        if (item.key == key && !item.chosen)
            m_settings.setValue(nameKey, item.label);
    }
    m_settings.setValue(deviceKey, key.value_or(QString()));
    m_player.chooseOutputDevice(key);
}

} // namespace vantor
