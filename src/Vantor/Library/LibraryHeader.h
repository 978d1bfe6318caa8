#pragma once

#include "Vantor/Library/CoverPainter.h"

#include <QWidget>

class QLabel;
class QPushButton;
class QToolButton;

namespace vantor {

/// The top of the page of an artist, an album or a playlist: its picture, its names, and what can be done
/// with all of it. Main thread; borrows the artwork.
class LibraryHeader : public QWidget {
    Q_OBJECT

  public:
    explicit LibraryHeader(ArtworkCache &artwork, QWidget *parent = nullptr);

    struct Facts {
        MediaKind kind = MediaKind::album;
        QString title;
        QString artist; ///< empty, or who can be gone to
        std::optional<ArtworkRef> artwork{};
        std::optional<bool> isFavorite{}; ///< none: cannot be one

        bool operator==(const Facts &) const = default;
    };
    void show(const Facts &facts);
    void setDetails(const QString &details);

  Q_SIGNALS:
    void artistAsked();
    void playAsked();
    void appendAsked();
    void favoriteAsked(bool on);
    void menuAsked(const QPoint &global); ///< what else can be done with it

  protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    [[nodiscard]] QLayout *makeButtons();
    void takeColors();
    void fitTitle();

    Facts m_facts;
    CoverPainter m_covers;
    QWidget *m_cover;
    QLabel *m_title;
    QLabel *m_artist;
    QLabel *m_details;
    QToolButton *m_favorite;
    QToolButton *m_more;
};

} // namespace vantor
