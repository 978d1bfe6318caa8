#pragma once

#include "skintool/CorpusResult.h"

#include <QFile>
#include <QJsonObject>
#include <QSet>

#include <map>
#include <vector>

namespace vantor {

struct CorpusOptions;

/// The folder that a run writes to: env.json, results.jsonl and crashes. One run at a time owns it. One
/// thread. What cannot be read or written throws CorpusError.
class CorpusOutput {
  public:
    /// Begins a run, or goes on with one: then `root` and the options must be those it was begun with, and a
    /// last line that was torn off by a kill is dropped.
    CorpusOutput(const CorpusOptions &options, const QString &root, int workers);

    /// What earlier runs left.
    [[nodiscard]] const QSet<QString> &finishedPaths() const { return m_finished; }
    [[nodiscard]] const std::map<CorpusStatus, std::int64_t> &counts() const { return m_counts; }

    /// Out of the process before it returns, so that a kill loses nothing of it.
    void append(const CorpusResult &result);
    /// Copies the archive to crashes. What keeps it from being copied is no reason to end a run: the sentence
    /// comes back, empty when all went well.
    [[nodiscard]] QString keepCrash(const CorpusResult &result, const QString &root) const;

    /// The name of such a copy: the beginning of its hash, then the archive's own name.
    [[nodiscard]] static QString crashCopyName(const CorpusResult &result);

    /// All results of the run, in the order of the file; returns where they end.
    qint64 readResults(const std::function<void(const CorpusResult &)> &take);

  private:
    void begin(const QJsonObject &environment);
    void resume(const QJsonObject &environment);
    void open();

    QString m_folder;
    QFile m_results;
    QSet<QString> m_finished;
    std::map<CorpusStatus, std::int64_t> m_counts;
};

} // namespace vantor
