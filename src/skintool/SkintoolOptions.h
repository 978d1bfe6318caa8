#pragma once

#include <QString>
#include <QStringList>

#include <exception>
#include <optional>

namespace vantor {

/// What skintool was asked to do. Parsing has no side effects.
struct SkintoolOptions {
    /// The moment of the player that a picture shows; see skinScene().
    enum class State { webamp, idle };

    /// A command line that makes no sense; its description is printed as it stands.
    class UsageError : public std::exception {
      public:
        explicit UsageError(const QString &description)
            : m_description(description), m_what(description.toUtf8()) {}

        [[nodiscard]] const QString &description() const { return m_description; }
        [[nodiscard]] const char *what() const noexcept override { return m_what.constData(); }

      private:
        QString m_description;
        QByteArray m_what;
    };

    bool verbose = false;
    std::optional<QString> png = std::nullopt;
    std::optional<State> state = std::nullopt;
    int scale = 1; ///< at least 1
    std::optional<QString> compare = std::nullopt;
    bool noRegion = false;
    QString input;

    /// `arguments` without the tool's own name. Throws UsageError.
    [[nodiscard]] static SkintoolOptions parse(const QStringList &arguments);

    bool operator==(const SkintoolOptions &) const = default;
};

/// The raw values "webamp" and "idle".
[[nodiscard]] std::optional<SkintoolOptions::State> skintoolStateFromRawValue(const QString &text);

namespace SkintoolUsage {

inline constexpr const char *skintool =
    "usage: skintool [-v|--verbose] [--png <out> [--state webamp|idle] [--scale N] [--compare <refdir>] "
    "[--no-region]] <skin.wsz | folder>";
inline constexpr const char *corpus =
    "usage: skintool corpus <dir> --out <dir> [--resume] [--timeout <s>=10] [--max-memory <MiB>=4096] "
    "[--sample <N>] [--seed <n>=1] [--manifest <file>]";
inline constexpr const char *corpusReport =
    "usage: skintool corpus-report <results.jsonl> --markdown <report.md> --json <summary.json> "
    "[--env <env.json>] [--sample <N>=1000] [--seed <n>=1] [--crashes <dir>]";

} // namespace SkintoolUsage
} // namespace vantor
