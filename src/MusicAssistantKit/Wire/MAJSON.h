#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QString>
#include <QStringList>

#include <optional>

namespace vantor {

/// A JSON value as the server sends or takes it: the form that every message has before records are made of
/// it. A value type, implicitly shared, cheap to copy. Whole numbers keep 64 bits.
class MAJSON {
  public:
    enum class Kind { boolean, number, string, array, object, null };

    MAJSON() = default; ///< null
    explicit MAJSON(bool value) : m_value(value) {}
    explicit MAJSON(int value) : m_value(value) {}
    explicit MAJSON(qint64 value) : m_value(value) {}
    explicit MAJSON(double value) : m_value(value) {}
    explicit MAJSON(const QString &value) : m_value(value) {}
    MAJSON(const char *) = delete; // it would become a boolean
    explicit MAJSON(const QStringList &values) : m_value(QJsonArray::fromStringList(values)) {}
    /// A JSON value of Qt's; `undefined` counts as null.
    explicit MAJSON(const QJsonValue &value) : m_value(value.isUndefined() ? QJsonValue() : value) {}
    explicit MAJSON(const QJsonObject &value) : m_value(value) {}
    explicit MAJSON(const QJsonArray &value) : m_value(value) {}

    /// What `utf8` holds when it is an object or an array, and not made of more values than a message may
    /// have.
    [[nodiscard]] static std::optional<MAJSON> parse(const QByteArray &utf8);
    /// The compact text; of an object or an array.
    [[nodiscard]] QByteArray encoded() const;

    [[nodiscard]] Kind kind() const;
    [[nodiscard]] bool isNull() const { return m_value.isNull(); }
    // None when the value is of another kind.
    [[nodiscard]] std::optional<bool> boolean() const;
    [[nodiscard]] std::optional<double> number() const;
    [[nodiscard]] std::optional<qint64> integer() const; ///< also none for a number with a fraction
    [[nodiscard]] std::optional<QString> string() const;

    /// Of an array or an object, otherwise 0.
    [[nodiscard]] qsizetype size() const;
    /// Of an array; null beyond its end and for every other kind.
    [[nodiscard]] MAJSON at(qsizetype index) const;
    /// Of an object; null when there is no such member and for every other kind.
    [[nodiscard]] MAJSON member(QLatin1StringView name) const;
    [[nodiscard]] bool hasMember(QLatin1StringView name) const;
    /// The same values in Qt's form.
    [[nodiscard]] const QJsonValue &value() const { return m_value; }

    bool operator==(const MAJSON &) const = default;

  private:
    QJsonValue m_value;
};

} // namespace vantor
