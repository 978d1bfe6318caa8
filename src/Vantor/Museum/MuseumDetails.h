#pragma once

#include "SkinMuseum/Wire/MuseumPage.h"

#include <QWidget>

#include <optional>

class QGraphicsOpacityEffect;
class QLabel;
class QProgressBar;
class QPushButton;

namespace vantor {

class MuseumPictures;

/// One skin of the museum: its screenshot, its name, how it stands with it, and what can be done. Main
/// thread; borrows the pictures.
class MuseumDetails : public QWidget {
    Q_OBJECT

  public:
    /// How it stands with the skin.
    struct State {
        bool isOwned = false;
        bool isWorn = false;
        bool isUnderWay = false;             ///< its download
        std::optional<double> progress = {}; ///< of it, 0 … 1; none while it is not known
        QString problem = {};                ///< a sentence
    };

    explicit MuseumDetails(MuseumPictures &pictures, QWidget *parent = nullptr);

    void setSkin(const std::optional<MuseumSkin> &skin, const State &state);
    void setCanGoBack(bool can);

  Q_SIGNALS:
    void wearAsked();
    void downloadAsked();
    void cancelAsked(); ///< the download
    void pageAsked();
    void backAsked();

  private:
    class Picture;

    Picture *m_picture;
    QLabel *m_name;
    QLabel *m_text;
    QGraphicsOpacityEffect *m_lesser; ///< of the text; dark themes do not always have a colour for that
    QProgressBar *m_progress;
    QPushButton *m_wear;
    QPushButton *m_download; ///< or to cancel it
    bool m_isUnderWay = false;
    QPushButton *m_page;
    QPushButton *m_back;
};

} // namespace vantor
