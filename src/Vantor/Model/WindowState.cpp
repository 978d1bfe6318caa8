#include "Vantor/Model/WindowState.h"

#include "Vantor/Model/StoredValue.h"

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
        of(kind).open =
            kind == WindowKind::main || StoredValue::boolean(settings, keyOf(kind, "open"), false);
        of(kind).shaded = StoredValue::boolean(settings, keyOf(kind, "shaded"), false);
    }
    m_doubleSize = StoredValue::boolean(settings, QLatin1String(doubleSizeKey), false);
    m_alwaysOnTop = StoredValue::boolean(settings, QLatin1String(alwaysOnTopKey), false);
}

void WindowState::setOpen(WindowKind kind, bool open) {
    if (of(kind).open == open)
        return;
    of(kind).open = open;
    if (kind != WindowKind::main)
        m_settings.setValue(keyOf(kind, "open"), open);
    if (std::ranges::none_of(m_windows, &Window::open))
        of(WindowKind::main).open = true; // or there would be no way back
    tell();
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

void WindowState::tell() {
    if (m_transition)
        m_transition([this] { Q_EMIT changed(); });
    else
        Q_EMIT changed();
}

void WindowState::set(bool &state, bool value, const QString &key) {
    if (state == value)
        return;
    state = value;
    m_settings.setValue(key, value);
    tell();
}

} // namespace vantor
