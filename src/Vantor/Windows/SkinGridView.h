#pragma once

#include "SkinBrowser/SkinListModel.h"
#include "SkinBrowser/ThumbnailCache.h"
#include "Vantor/Windows/TileGridView.h"

#include <QCache>
#include <QElapsedTimer>
#include <QPixmap>

#include <optional>

namespace vantor {

/// The skins of a model as a grid of pictures. Main thread; borrows model and thumbnails.
class SkinGridView : public TileGridView {
    Q_OBJECT

  public:
    SkinGridView(SkinListModel &skins, ThumbnailCache &thumbnails, QWidget *parent = nullptr);

    /// The skin that stands out as the one worn.
    void setWorn(std::optional<std::int64_t> id);

  protected:
    [[nodiscard]] QSize leastCell() const override;
    void beginDrawing() override { m_drawing.start(); }
    void drawTile(QPainter &painter, const QModelIndex &index, const QRect &cell) override;
    void setInView(int first, int last) override;
    void forgetView() override;

  private:
    [[nodiscard]] QPixmap picture(const SkinRecord &skin);

    SkinListModel &m_skins;
    ThumbnailCache &m_thumbnails;
    QCache<QString, QPixmap> m_pictures; ///< in the size of the cells, by hash
    std::optional<std::int64_t> m_worn;
    QElapsedTimer m_drawing; ///< since the present paint event began
};

} // namespace vantor
