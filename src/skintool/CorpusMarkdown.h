#pragma once

#include <QString>

#include <optional>

namespace vantor {

struct CorpusSummary;

namespace CorpusMarkdown {

/// The report. `crashes`: where the runner copied the archives to whose workers were lost; those that are
/// there are named.
[[nodiscard]] QString report(const CorpusSummary &summary, const std::optional<QString> &crashes);

/// A foreign text as one line of plain text: nothing in it is markup, none of it steers the reader's screen.
/// Bytes that are no UTF-8 show as \xE9; at most 160 characters.
[[nodiscard]] QString escaped(const QString &text);

} // namespace CorpusMarkdown
} // namespace vantor
