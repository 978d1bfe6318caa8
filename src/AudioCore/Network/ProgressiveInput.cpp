#include "AudioCore/Network/ProgressiveInput.h"

namespace vantor {

ProgressiveInput::ProgressiveInput(const QUrl &url, const DownloadTimings &timings)
    : m_url(url), m_buffer(std::make_shared<DownloadBuffer>([this] {
          QMetaObject::invokeMethod(m_downloader, &Downloader::reconsider, Qt::QueuedConnection);
      })) {
    m_downloader = new Downloader(url, m_buffer, timings);
    m_downloader->moveToThread(&m_thread);
    QObject::connect(&m_thread, &QThread::started, m_downloader, &Downloader::start);
    QObject::connect(&m_thread, &QThread::finished, m_downloader, &QObject::deleteLater);
    m_thread.setObjectName(QStringLiteral("network"));
    m_thread.start();
}

ProgressiveInput::~ProgressiveInput() {
    m_thread.quit();
    m_thread.wait();
}

bool ProgressiveInput::takes(const QUrl &url) {
    return (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https")) &&
           !url.host().isEmpty();
}

std::size_t ProgressiveInput::read(std::span<char> bytes) {
    return m_buffer->read(bytes, stopToken());
}

bool ProgressiveInput::seek(qint64 position) {
    return m_buffer->seek(position);
}

DownloadInfo ProgressiveInput::info() {
    return m_buffer->info(stopToken());
}

} // namespace vantor
