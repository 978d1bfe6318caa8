#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <functional>

namespace vantor {

/// Writes pictures as files that other programs of the user can be shown, on a worker thread. The folder is
/// the user's alone and keeps the last few. Main thread.
class ArtworkFiles : public QObject {
    Q_OBJECT

  public:
    /// What another program may still be about to read.
    static constexpr int mostFiles = 16;

    explicit ArtworkFiles(QString folder);
    /// Waits for what is being written.
    ~ArtworkFiles() override;

    /// Calls back on the main thread with the file's path, which the same picture finds again; an empty one
    /// when it could not be written.
    void write(const QImage &picture, std::function<void(const QString &path)> written);

  private:
    QString m_folder;
    QThreadPool m_pool;
};

} // namespace vantor
