#include "MusicAssistantKit/Wire/MAJSON.h"

#include <QJsonDocument>

namespace vantor {

namespace {

/// A parsed value takes many times the memory of its text when it is as small as "[],": the largest library
/// page stays far below this number, a message made to fill the memory does not.
constexpr qsizetype maxValues = 4 << 20;

bool hasTooManyValues(const QByteArray &utf8) {
    if (utf8.size() <= 2 * maxValues) // each value and what divides it from the next take two bytes at least
        return false;
    qsizetype count = 0;
    for (const char c : utf8)
        count += c == ',' || c == '[' || c == '{' ? 1 : 0;
    return count > maxValues;
}

} // namespace

std::optional<MAJSON> MAJSON::parse(const QByteArray &utf8) {
    if (hasTooManyValues(utf8))
        return std::nullopt;
    const auto document = QJsonDocument::fromJson(utf8);
    if (document.isObject())
        return MAJSON(document.object());
    if (document.isArray())
        return MAJSON(document.array());
    return std::nullopt;
}

QByteArray MAJSON::encoded() const {
    const auto document =
        m_value.isArray() ? QJsonDocument(m_value.toArray()) : QJsonDocument(m_value.toObject());
    return document.toJson(QJsonDocument::Compact);
}

MAJSON::Kind MAJSON::kind() const {
    switch (m_value.type()) {
    case QJsonValue::Bool:
        return Kind::boolean;
    case QJsonValue::Double:
        return Kind::number;
    case QJsonValue::String:
        return Kind::string;
    case QJsonValue::Array:
        return Kind::array;
    case QJsonValue::Object:
        return Kind::object;
    case QJsonValue::Null:
    case QJsonValue::Undefined:
        break;
    }
    return Kind::null;
}

std::optional<bool> MAJSON::boolean() const {
    return m_value.isBool() ? std::optional(m_value.toBool()) : std::nullopt;
}

std::optional<double> MAJSON::number() const {
    return m_value.isDouble() ? std::optional(m_value.toDouble()) : std::nullopt;
}

std::optional<qint64> MAJSON::integer() const {
    const qint64 value = m_value.toInteger(0);
    // The default of a value that is no whole number is what one asks for.
    const bool isWhole = value != 0 || m_value.toInteger(1) == 0;
    return isWhole ? std::optional(value) : std::nullopt;
}

std::optional<QString> MAJSON::string() const {
    return m_value.isString() ? std::optional(m_value.toString()) : std::nullopt;
}

qsizetype MAJSON::size() const {
    if (m_value.isArray())
        return m_value.toArray().size();
    return m_value.isObject() ? m_value.toObject().size() : 0;
}

MAJSON MAJSON::at(qsizetype index) const {
    return m_value.isArray() ? MAJSON(m_value.toArray().at(index)) : MAJSON();
}

MAJSON MAJSON::member(QLatin1StringView name) const {
    return m_value.isObject() ? MAJSON(m_value.toObject().value(name)) : MAJSON();
}

bool MAJSON::hasMember(QLatin1StringView name) const {
    return m_value.isObject() && m_value.toObject().contains(name);
}

} // namespace vantor
