#pragma once

#include "AudioCore/Queue/SkippedFile.h"
#include "AudioCore/Queue/Track.h"

#include <QList>
#include <QObject>
#include <QThreadPool>
#include <QUrl>

#include <vector>

namespace vantor {

/// Turns files and folders into tracks on a worker thread. Main thread; imports run one after another in the
/// order in which they were asked for. Folders are walked in name order and give the files whose extension is
/// an audio one; files that are named themselves are tried whatever they are called.
class TrackImporter : public QObject {
    Q_OBJECT

  public:
    explicit TrackImporter(QObject *parent = nullptr);
    ~TrackImporter() override;

    /// The import's number, by which its signals name it.
    quint64 import(const QList<QUrl> &urls);

    /// Glob patterns of the audio files that folders give and the file dialog offers ("*.flac" …).
    [[nodiscard]] static const QStringList &patterns();

  Q_SIGNALS:
    /// The next tracks of an import, a few at a time so that the first can play at once.
    void imported(quint64 import, const std::vector<vantor::Track> &tracks);
    void finished(quint64 import, int added, const std::vector<vantor::SkippedFile> &skipped);

  private:
    QThreadPool m_pool;
    quint64 m_last = 0;
    std::shared_ptr<std::atomic_bool> m_cancelled = std::make_shared<std::atomic_bool>(false);
};

} // namespace vantor
