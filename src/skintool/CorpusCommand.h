#pragma once

#include <QStringList>

namespace vantor {

/// The subcommands, after their words. Both return 0 when all is well, 1 when it is not. Throw
/// SkintoolOptions::UsageError and CorpusError.
namespace CorpusCommand {

/// Needs a QGuiApplication and a process of one thread. 1 also when a worker was lost, a skin differs from
/// the manifest, or the run was interrupted.
[[nodiscard]] int run(const QStringList &arguments);

/// 1 when the results hold lines that are none; the report is written all the same.
[[nodiscard]] int report(const QStringList &arguments);

} // namespace CorpusCommand
} // namespace vantor
