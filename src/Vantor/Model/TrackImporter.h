#pragma once

#include "AudioCore/Queue/SkippedFile.h"
#include "AudioCore/Queue/Track.h"

#include <QList>
#include <QObject>
#include <QThreadPool>
#include <QUrl>

#include <stop_token>
#include <vector>

namespace vantor {

/// Turns files, folders, playlists and web addresses into tracks on a worker thread (see TrackLoader). Main
/// thread; imports run one after another in the order in which they were asked for.
class TrackImporter : public QObject {
    Q_OBJECT

  public:
    explicit TrackImporter(QObject *parent = nullptr);
    ~TrackImporter() override;

    /// The import's number, by which its signals name it.
    quint64 import(const QList<QUrl> &urls);
    /// The imports under way and waiting end with what they have.
    void cancel();

  Q_SIGNALS:
    /// The next tracks of an import, a few at a time so that the first can play at once.
    void imported(quint64 import, const std::vector<vantor::Track> &tracks);
    void finished(quint64 import, int added, const std::vector<vantor::SkippedFile> &skipped);

  private:
    QThreadPool m_pool;
    quint64 m_last = 0;
    std::stop_source m_stop; ///< of the imports under way and waiting
};

} // namespace vantor
