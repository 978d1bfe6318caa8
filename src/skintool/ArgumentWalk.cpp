#include "skintool/ArgumentWalk.h"

#include "skintool/SkintoolOptions.h"

#include <algorithm>

namespace vantor {

namespace {

using UsageError = SkintoolOptions::UsageError;

// Digits alone, with or without a plus: no blanks, no decimal point.
std::optional<std::int64_t> wholeNumber(const QString &text) {
    const QString digits = text.startsWith(QLatin1Char('+')) ? text.mid(1) : text;
    const bool plain =
        std::ranges::all_of(digits, [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    bool fits = false;
    const qlonglong number = digits.toLongLong(&fits);
    return plain && fits ? std::optional<std::int64_t>(number) : std::nullopt;
}

} // namespace

QString ArgumentWalk::run(const char *name) {
    for (m_next = 0; m_next < m_arguments.size(); ++m_next)
        step();
    if (m_positionals.isEmpty())
        throw UsageError(QStringLiteral("missing ") + QLatin1String(name));
    if (m_positionals.size() > 1)
        throw UsageError(QStringLiteral("only one %1 is accepted").arg(QLatin1String(name)));
    return m_positionals.first();
}

void ArgumentWalk::step() {
    const QString &argument = m_arguments.at(m_next);
    if (!argument.startsWith(QLatin1Char('-'))) {
        m_positionals.append(argument);
        return;
    }
    const auto option = std::ranges::find_if(
        m_options, [&](const Option &known) { return argument == QLatin1String(known.name); });
    if (option == m_options.end())
        throw UsageError(QStringLiteral("unknown option: ") + argument);
    option->take(*this);
}

QString ArgumentWalk::value(const char *complaint) {
    ++m_next;
    if (m_next >= m_arguments.size() || m_arguments.at(m_next).startsWith(QLatin1Char('-')))
        throw UsageError(QString::fromLatin1(complaint));
    return m_arguments.at(m_next);
}

std::int64_t ArgumentWalk::number(std::int64_t least, std::int64_t most, const char *complaint) {
    const std::optional<std::int64_t> number = wholeNumber(value(complaint));
    if (!number || *number < least || *number > most)
        throw UsageError(QString::fromLatin1(complaint));
    return *number;
}

} // namespace vantor
