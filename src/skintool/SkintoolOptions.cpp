#include "skintool/SkintoolOptions.h"

#include <climits>

namespace vantor {

namespace {

using UsageError = SkintoolOptions::UsageError;

/// The walk over the arguments; the first error ends it.
class Walk {
  public:
    explicit Walk(const QStringList &arguments) : m_arguments(arguments) {}

    SkintoolOptions run() {
        for (; m_next < m_arguments.size(); ++m_next)
            step(m_arguments.at(m_next));
        check();
        m_options.input = m_positionals.first();
        return m_options;
    }

  private:
    void step(const QString &argument);
    void check() const;

    /// The argument after the current one; fails when there is none or it looks like an option.
    QString value(const char *complaint) {
        ++m_next;
        if (m_next >= m_arguments.size() || m_arguments.at(m_next).startsWith(QLatin1Char('-')))
            throw UsageError(QString::fromLatin1(complaint));
        return m_arguments.at(m_next);
    }

    const QStringList &m_arguments;
    qsizetype m_next = 0;
    SkintoolOptions m_options;
    QStringList m_positionals;
    bool m_scaleGiven = false;
};

// Digits alone, with or without a plus: no blanks, no decimal point. What exceeds an int is as good as its
// largest value.
std::optional<int> scaleFrom(const QString &text) {
    const QString digits = text.startsWith(QLatin1Char('+')) ? text.mid(1) : text;
    const bool plain =
        std::ranges::all_of(digits, [](QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); });
    bool fits = false;
    const qlonglong number = digits.toLongLong(&fits);
    if (!plain || !fits || number < 1)
        return std::nullopt;
    return static_cast<int>(std::min<qlonglong>(number, INT_MAX));
}

void Walk::step(const QString &argument) {
    static constexpr auto stateComplaint = "--state must be webamp or idle";
    static constexpr auto scaleComplaint = "--scale needs an integer of 1 or more";
    if (argument == QStringLiteral("-v") || argument == QStringLiteral("--verbose")) {
        m_options.verbose = true;
    } else if (argument == QStringLiteral("--no-region")) {
        m_options.noRegion = true;
    } else if (argument == QStringLiteral("--png")) {
        m_options.png = value("--png needs an output path");
    } else if (argument == QStringLiteral("--compare")) {
        m_options.compare = value("--compare needs a folder");
    } else if (argument == QStringLiteral("--state")) {
        m_options.state = skintoolStateFromRawValue(value(stateComplaint));
        if (!m_options.state)
            throw UsageError(QString::fromLatin1(stateComplaint));
    } else if (argument == QStringLiteral("--scale")) {
        const std::optional<int> scale = scaleFrom(value(scaleComplaint));
        if (!scale)
            throw UsageError(QString::fromLatin1(scaleComplaint));
        m_options.scale = *scale;
        m_scaleGiven = true;
    } else if (argument.startsWith(QLatin1Char('-'))) {
        throw UsageError(QStringLiteral("unknown option: ") + argument);
    } else {
        m_positionals.append(argument);
    }
}

void Walk::check() const {
    if (m_positionals.isEmpty())
        throw UsageError(QStringLiteral("missing <skin.wsz | folder>"));
    if (m_positionals.size() > 1)
        throw UsageError(QStringLiteral("only one <skin.wsz | folder> is accepted"));
    const bool needsPng = m_options.state || m_scaleGiven || m_options.compare || m_options.noRegion;
    if (m_options.png && m_options.compare && m_options.scale != 1)
        throw UsageError(QStringLiteral("--compare needs --scale 1 (the references are 1x)"));
    if (!m_options.png && needsPng)
        throw UsageError(QStringLiteral("--state, --scale, --compare and --no-region need --png"));
}

} // namespace

std::optional<SkintoolOptions::State> skintoolStateFromRawValue(const QString &text) {
    if (text == QStringLiteral("webamp"))
        return SkintoolOptions::State::webamp;
    if (text == QStringLiteral("idle"))
        return SkintoolOptions::State::idle;
    return std::nullopt;
}

SkintoolOptions SkintoolOptions::parse(const QStringList &arguments) {
    return Walk(arguments).run();
}

} // namespace vantor
