#include "Vantor/Model/WindowState.h"

#include <QSettings>

#include <algorithm>

namespace vantor {

namespace {

// The main window was there first and has no prefix.
QString keyOf(WindowKind kind, const char *name) {
    switch (kind) {
    case WindowKind::main:
        return QLatin1String(name);
    case WindowKind::equalizer:
        return QStringLiteral("equalizer.") + QLatin1String(name);
    case WindowKind::playlist:
        return QStringLiteral("playlist.") + QLatin1String(name);
    }
    return {};
}

constexpr const char *doubleSizeKey = "doubleSize";
constexpr const char *alwaysOnTopKey = "alwaysOnTop";

} // namespace

WindowState::WindowState(QSettings &settings, QObject *parent) : QObject(parent), m_settings(settings) {
    for (const WindowKind kind : {WindowKind::main, WindowKind::equalizer, WindowKind::playlist}) {
        of(kind).open = kind == WindowKind::main || settings.value(keyOf(kind, "open")).toBool();
        of(kind).shaded = settings.value(keyOf(kind, "shaded")).toBool();
    }
    m_doubleSize = settings.value(QLatin1String(doubleSizeKey)).toBool();
    m_alwaysOnTop = settings.value(QLatin1String(alwaysOnTopKey)).toBool();
}

void WindowState::setOpen(WindowKind kind, bool open) {
    if (of(kind).open == open)
        return;
    of(kind).open = open;
    if (kind != WindowKind::main)
        m_settings.setValue(keyOf(kind, "open"), open);
    if (std::ranges::none_of(m_windows, &Window::open))
        of(WindowKind::main).open = true; // or there would be no way back
    Q_EMIT changed();
}

void WindowState::setShaded(WindowKind kind, bool shaded) {
    set(of(kind).shaded, shaded, keyOf(kind, "shaded"));
}

void WindowState::setDoubleSize(bool doubled) {
    set(m_doubleSize, doubled, QLatin1String(doubleSizeKey));
}

void WindowState::setAlwaysOnTop(bool onTop) {
    set(m_alwaysOnTop, onTop, QLatin1String(alwaysOnTopKey));
}

void WindowState::set(bool &state, bool value, const QString &key) {
    if (state == value)
        return;
    state = value;
    m_settings.setValue(key, value);
    Q_EMIT changed();
}

} // namespace vantor
