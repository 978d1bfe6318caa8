#pragma once

#include "AudioCore/Decoding/AudioInput.h"
#include "AudioCore/Network/Downloader.h"

#include <QThread>

namespace vantor {

/// Music at an http or https address, read while it downloads on a thread of its own: files, also from
/// servers that cannot send parts of them, and radio. Making one does not wait.
class ProgressiveInput final : public AudioInput {
  public:
    explicit ProgressiveInput(const QUrl &url, const DownloadTimings &timings = {});
    ~ProgressiveInput() override;

    /// Whether the address is one for this class.
    [[nodiscard]] static bool takes(const QUrl &url);

    [[nodiscard]] std::size_t read(std::span<char> bytes) override;
    [[nodiscard]] bool seek(qint64 position) override;
    [[nodiscard]] qint64 position() const override { return m_buffer->position(); }
    [[nodiscard]] std::optional<qint64> size() override { return info().size; }
    [[nodiscard]] bool isSeekable() override { return info().isSeekable; }
    [[nodiscard]] QString name() const override { return m_url.fileName(); }
    [[nodiscard]] bool isProgressive() const override { return true; }

    /// Waits for the server's answer, as read() does for bytes.
    [[nodiscard]] DownloadInfo info();
    /// For any thread, also when the input is gone.
    [[nodiscard]] std::shared_ptr<const DownloadBuffer> download() const { return m_buffer; }

  private:
    const QUrl m_url;
    QThread m_thread;
    Downloader *m_downloader = nullptr; ///< lives on the thread and goes with it
    std::shared_ptr<DownloadBuffer> m_buffer;
};

} // namespace vantor
