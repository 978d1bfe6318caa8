#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

#include <optional>

namespace vantor {

/// Small pictures of skins: the main window as the skin draws it, in its idle state.
///
/// Made in the background from the archive, kept on disk under the skin's content hash and in memory up to a
/// limit. What was asked for last is made first, since that is what is in view. Main thread; nothing blocks.
class ThumbnailCache : public QObject {
    Q_OBJECT
  public:
    static constexpr QSize size{275, 116}; ///< in pixels of the skin; views scale it

    /// `folder` is made when the first picture is kept. It is trimmed to `diskLimit` bytes, oldest use first.
    explicit ThumbnailCache(const QString &folder, qint64 diskLimit = qint64(512) << 20,
                            QObject *parent = nullptr);
    ~ThumbnailCache() override;

    /// The picture when it is in memory; otherwise none, and ready() or failed() follows.
    /// `path` is where the archive lies, in NativePath's form.
    [[nodiscard]] std::optional<QImage> picture(const QString &hash, const QString &path);
    /// Forgets what was asked for and not begun: its rows have left the view.
    void forgetRequests();

  signals:
    void ready(const QString &hash);
    void failed(const QString &hash); ///< no picture can be made of this skin; not asked again in this run
};

} // namespace vantor
