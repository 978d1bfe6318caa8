#pragma once

#include "MusicAssistantKit/Wire/MAJSON.h"

#include <exception>

namespace vantor {

/// Why a record could not be made of a JSON value.
class MADecodingError : public std::exception {
  public:
    /// `detail`: what is wrong and where, such as "missing value at items.3.name".
    explicit MADecodingError(const QString &detail) : m_detail(detail), m_what(detail.toUtf8()) {}
    [[nodiscard]] const QString &detail() const { return m_detail; }
    [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

  private:
    QString m_detail;
    QByteArray m_what;
};

/// A JSON value on its way into a record, which knows where in the message it stands. A reader of a member is
/// used while its parent lives. A member that is null counts as missing.
///
/// What a record cannot do without is asked for by the plain functions, which throw MADecodingError. The
/// `optional` ones give none for what is missing or of another type: a newer server may change what this
/// program can do without.
class MAReader {
  public:
    explicit MAReader(const MAJSON &value) : m_value(value) {}

    [[nodiscard]] const MAJSON &value() const { return m_value; }

    // Of this value itself.
    [[nodiscard]] QString string() const;
    [[nodiscard]] bool boolean() const;
    [[nodiscard]] double number() const;
    [[nodiscard]] qint64 integer() const;

    // Members of an object.
    [[nodiscard]] MAReader member(const char *name) const;
    [[nodiscard]] std::optional<QString> optionalString(const char *name) const;
    [[nodiscard]] std::optional<bool> optionalBoolean(const char *name) const;
    [[nodiscard]] std::optional<double> optionalNumber(const char *name) const;
    [[nodiscard]] std::optional<qint64> optionalInteger(const char *name) const;

    // Entries of an array.
    [[nodiscard]] qsizetype size() const; ///< throws when this is no array
    [[nodiscard]] MAReader entry(qsizetype index) const;

    /// For a value of the right type whose content makes no sense.
    [[noreturn]] void failCorrupt() const;

  private:
    MAReader(const MAReader *parent, const char *name, qsizetype index, const MAJSON &value)
        : m_parent(parent), m_name(name), m_index(index), m_value(value) {}
    [[nodiscard]] QString path() const;
    template <typename T>
    [[nodiscard]] T required(const std::optional<T> &found) const;
    [[noreturn]] void fail(const char *problem) const;

    const MAReader *m_parent = nullptr;
    const char *m_name = nullptr; ///< of the member that this is
    qsizetype m_index = -1;       ///< of the entry that this is
    MAJSON m_value;
};

} // namespace vantor
