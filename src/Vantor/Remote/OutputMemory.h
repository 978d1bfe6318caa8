#pragma once

#include "MusicBackendKit/OutputDevice.h"

#include <QSettings>

namespace vantor {

/// Where each music source played last, kept in the settings. Main thread; borrows the settings.
class OutputMemory {
  public:
    explicit OutputMemory(QSettings &settings) : m_settings(settings) {}

    struct Entry {
        OutputDevice::ID id;
        QString name; ///< for the time in which the source does not tell it

        bool operator==(const Entry &) const = default;
    };
    [[nodiscard]] std::optional<Entry> of(const QString &sourceID) const;
    void remember(const QString &sourceID, const Entry &entry);

  private:
    QSettings &m_settings;
};

} // namespace vantor
