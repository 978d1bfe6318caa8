#pragma once

#include "WindowDocking/Box.h"
#include "WindowDocking/WindowKind.h"

#include <QSettings>
#include <QString>

#include <map>
#include <optional>

namespace vantor {

/// Where the windows stand between two runs. Sizes come from the skin and are not kept.
struct WindowLayout {
    static constexpr int currentVersion = 1;

    /// A top-left corner in the desktop space.
    struct Entry {
        double left = 0;
        double top = 0;
        bool operator==(const Entry &) const = default;
    };

    int version = currentVersion;
    std::map<QString, Entry> windows; ///< by the raw value of the kind

    /// None for a window that has no entry.
    [[nodiscard]] std::optional<Offset> topLeft(WindowKind kind) const;

    bool operator==(const WindowLayout &) const = default;
};

/// Keeps the layout in the user's settings as JSON text. Not for two threads at once.
class WindowLayoutStore {
  public:
    static const QString defaultKey;

    /// Borrows the settings.
    explicit WindowLayoutStore(QSettings &defaults, const QString &key = defaultKey);

    /// None when there is no layout, or none that this version understands.
    [[nodiscard]] std::optional<WindowLayout> load() const;
    void save(const WindowLayout &layout);

  private:
    QSettings &m_defaults;
    QString m_key;
};

} // namespace vantor
