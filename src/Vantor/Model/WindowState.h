#pragma once

#include "WindowDocking/WindowKind.h"

#include <QObject>

#include <array>
#include <functional>

class QSettings;

namespace vantor {

/// What the user has done to the skinned windows, kept in the settings: which are open, which are rolled up
/// to their title, their common size and whether they stay on top. Main thread. Borrows the settings.
class WindowState : public QObject {
    Q_OBJECT

  public:
    explicit WindowState(QSettings &settings, QObject *parent = nullptr);

    /// One of them always is; every run begins with the main window.
    [[nodiscard]] bool isOpen(WindowKind kind) const { return of(kind).open; }
    [[nodiscard]] bool isShaded(WindowKind kind) const { return of(kind).shaded; }
    [[nodiscard]] bool isDoubleSize() const { return m_doubleSize; }
    [[nodiscard]] bool isAlwaysOnTop() const { return m_alwaysOnTop; }

    void setOpen(WindowKind kind, bool open);
    void setShaded(WindowKind kind, bool shaded);
    void setDoubleSize(bool doubled);
    void setAlwaysOnTop(bool onTop);

    /// What runs around changed(), during which all windows take their new sizes: it is given the emission
    /// and calls it once.
    void setTransition(std::function<void(const std::function<void()> &)> transition) {
        m_transition = std::move(transition);
    }

  Q_SIGNALS:
    void changed();

  private:
    struct Window {
        bool open = false;
        bool shaded = false;
    };

    [[nodiscard]] const Window &of(WindowKind kind) const {
        return m_windows.at(static_cast<std::size_t>(kind));
    }
    [[nodiscard]] Window &of(WindowKind kind) { return m_windows.at(static_cast<std::size_t>(kind)); }
    void tell();
    void set(bool &state, bool value, const QString &key);

    QSettings &m_settings;
    std::function<void(const std::function<void()> &)> m_transition;
    std::array<Window, 3> m_windows;
    bool m_doubleSize = false;
    bool m_alwaysOnTop = false;
};

} // namespace vantor
