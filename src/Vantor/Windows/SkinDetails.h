#pragma once

#include "SkinLibrary/Index/SkinRecord.h"
#include "Vantor/Model/SkinLoader.h"

#include <QTextBrowser>
#include <QTimer>

#include <optional>
#include <vector>

namespace vantor {

class SkinSwitcher;

/// Everything about one skin: its three windows as it draws them, its files, warnings and read-me. Main
/// thread; texts come from the index, the picture from the archive, both in the background. Borrows the
/// switcher.
class SkinDetails : public QTextBrowser {
    Q_OBJECT

  public:
    explicit SkinDetails(SkinSwitcher &switcher, QWidget *parent = nullptr);

    /// What is shown stays until the new skin's texts have come. None: nothing is chosen.
    void setSkin(std::optional<std::int64_t> id);
    /// The index may know something else about the same skin now.
    void refresh();

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

  private:
    struct Texts {
        SkinRecord skin;
        std::vector<FileStamp> files;

        bool operator==(const Texts &) const = default;
    };

    void take(const std::optional<Texts> &texts);
    void drawPicture(const Skin &skin);
    void render();
    [[nodiscard]] QString html() const;
    [[nodiscard]] QString pictureHtml() const;
    /// Of the picture: its own size, or less where there is no room for it.
    [[nodiscard]] QSize shownSize() const;

    SkinSwitcher &m_switcher;
    SkinLoader m_loader;
    QTimer m_loadSoon; ///< the picture, once the selection rests
    QTimer m_renderSoon;
    std::optional<std::int64_t> m_id; ///< asked for
    std::optional<Texts> m_texts;     ///< shown
    QImage m_picture;                 ///< of m_texts' skin; none while it is being drawn
    QString m_problem;                ///< why there is none
};

} // namespace vantor
