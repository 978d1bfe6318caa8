#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <optional>

namespace vantor {

/// What `skintool corpus` was asked to do. Parsing has no side effects.
struct CorpusOptions {
    QString folder;
    QString out;
    bool resume = false;
    std::int64_t timeoutSeconds = 10; ///< 1…86,400
    std::int64_t maxMemoryMiB = 4096; ///< 16…1,048,576
    std::optional<std::int64_t> sample = std::nullopt;
    std::int64_t seed = 1;
    std::optional<QString> manifest = std::nullopt;

    /// `arguments` without the tool's name and the subcommand's. Throws SkintoolOptions::UsageError.
    [[nodiscard]] static CorpusOptions parse(const QStringList &arguments);

    bool operator==(const CorpusOptions &) const = default;
};

/// What `skintool corpus-report` was asked to do.
struct CorpusReportOptions {
    QString results;
    QString markdown;
    QString json;
    std::optional<QString> env = std::nullopt;
    std::int64_t sample = 1000;
    std::int64_t seed = 1;
    std::optional<QString> crashes = std::nullopt;

    /// As CorpusOptions::parse().
    [[nodiscard]] static CorpusReportOptions parse(const QStringList &arguments);

    bool operator==(const CorpusReportOptions &) const = default;
};

} // namespace vantor
