#pragma once

#include <QImage>
#include <QObject>
#include <QString>
#include <QThreadPool>

#include <atomic>
#include <functional>
#include <memory>

namespace vantor {

/// Finds the picture of an audio file on a worker thread: the cover embedded in it, else a picture beside it
/// that is called like one. Main thread.
class EmbeddedArtworkLoader : public QObject {
    Q_OBJECT

  public:
    /// Pictures are scaled down to fit; the system shows them small.
    static constexpr int largestSide = 640;
    /// Of a picture as it is stored. What is larger counts as none.
    static constexpr qint64 maxBytes = 16LL << 20;
    static constexpr qint64 maxPixels = 36'000'000;

    EmbeddedArtworkLoader();
    /// Drops the request and waits for what is being read.
    ~EmbeddedArtworkLoader() override;

    // Paths are absolute and in NativePath's form.
    /// Calls back on the main thread if there is a picture, unless another request or cancel() came first.
    void request(const QString &path, std::function<void(const QImage &)> found);
    void cancel();

    /// The same at once. Any thread; a null image when there is none that can be read.
    [[nodiscard]] static QImage load(const QString &path);

  private:
    /// The number of the request that counts; every other is dropped.
    std::shared_ptr<std::atomic<quint64>> m_latest = std::make_shared<std::atomic<quint64>>(0);
    QThreadPool m_pool;
};

} // namespace vantor
