#include "MusicAssistantKit/Wire/MAReader.h"

namespace vantor {

template <typename T>
T MAReader::required(const std::optional<T> &found) const {
    if (!found)
        fail(m_value.isNull() ? "missing value at " : "type mismatch at ");
    return *found;
}

QString MAReader::string() const {
    return required(m_value.string());
}

bool MAReader::boolean() const {
    return required(m_value.boolean());
}

double MAReader::number() const {
    return required(m_value.number());
}

qint64 MAReader::integer() const {
    return required(m_value.integer());
}

MAReader MAReader::member(const char *name) const {
    if (m_value.kind() != MAJSON::Kind::object)
        fail(m_value.isNull() ? "missing value at " : "type mismatch at ");
    return {this, name, -1, m_value.member(QLatin1StringView(name))};
}

std::optional<QString> MAReader::optionalString(const char *name) const {
    return m_value.member(QLatin1StringView(name)).string();
}

std::optional<bool> MAReader::optionalBoolean(const char *name) const {
    return m_value.member(QLatin1StringView(name)).boolean();
}

std::optional<double> MAReader::optionalNumber(const char *name) const {
    return m_value.member(QLatin1StringView(name)).number();
}

std::optional<qint64> MAReader::optionalInteger(const char *name) const {
    return m_value.member(QLatin1StringView(name)).integer();
}

qsizetype MAReader::size() const {
    if (m_value.kind() != MAJSON::Kind::array)
        fail(m_value.isNull() ? "missing value at " : "type mismatch at ");
    return m_value.size();
}

MAReader MAReader::entry(qsizetype index) const {
    return {this, nullptr, index, m_value.at(index)};
}

void MAReader::failCorrupt() const {
    fail("corrupt data at ");
}

void MAReader::fail(const char *problem) const {
    throw MADecodingError(QLatin1StringView(problem) + path());
}

QString MAReader::path() const {
    if (!m_parent)
        return {};
    const QString own = m_name ? QString::fromLatin1(m_name) : QString::number(m_index);
    const QString before = m_parent->path();
    return before.isEmpty() ? own : before + QLatin1Char('.') + own;
}

} // namespace vantor
