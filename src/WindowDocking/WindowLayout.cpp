#include "WindowDocking/WindowLayout.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace vantor {

namespace {

std::optional<WindowLayout::Entry> entryFrom(const QJsonValue &value) {
    const QJsonValue left = value[QLatin1String("left")];
    const QJsonValue top = value[QLatin1String("top")];
    if (!left.isDouble() || !top.isDouble())
        return {};
    return WindowLayout::Entry{left.toDouble(), top.toDouble()};
}

} // namespace

std::optional<Offset> WindowLayout::topLeft(WindowKind kind) const {
    const auto entry = windows.find(rawValue(kind));
    if (entry == windows.end())
        return {};
    return Offset{entry->second.left, entry->second.top};
}

const QString WindowLayoutStore::defaultKey = QStringLiteral("windowLayout");

WindowLayoutStore::WindowLayoutStore(QSettings &defaults, const QString &key)
    : m_defaults(defaults), m_key(key) {}

std::optional<WindowLayout> WindowLayoutStore::load() const {
    const QByteArray text = m_defaults.value(m_key).toString().toUtf8();
    const QJsonObject root = QJsonDocument::fromJson(text).object();
    const QJsonValue windows = root[QLatin1String("windows")];
    if (root[QLatin1String("version")].toDouble() != WindowLayout::currentVersion || !windows.isObject())
        return {};
    WindowLayout layout;
    const QJsonObject entries = windows.toObject();
    for (auto at = entries.begin(); at != entries.end(); ++at) {
        const std::optional<WindowLayout::Entry> entry = entryFrom(at.value());
        if (!entry)
            return {};
        layout.windows[at.key()] = *entry;
    }
    return layout;
}

void WindowLayoutStore::save(const WindowLayout &layout) {
    QJsonObject windows;
    for (const auto &[name, entry] : layout.windows)
        windows[name] = QJsonObject{{QStringLiteral("left"), entry.left}, {QStringLiteral("top"), entry.top}};
    const QJsonObject root{{QStringLiteral("version"), layout.version}, {QStringLiteral("windows"), windows}};
    m_defaults.setValue(m_key, QString::fromUtf8(QJsonDocument(root).toJson(QJsonDocument::Compact)));
}

} // namespace vantor
