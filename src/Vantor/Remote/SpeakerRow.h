#pragma once

#include "Vantor/Remote/Speakers.h"

#include <QWidget>

class QLabel;
class QRadioButton;
class QSlider;
class QToolButton;

namespace vantor {

class MuteButton;

/// One output in the panel: chosen by its name, with what it plays, its volume, and a menu for the rest. Main
/// thread; borrows the speakers.
class SpeakerRow : public QWidget {
    Q_OBJECT

  public:
    SpeakerRow(Speakers &speakers, const Speakers::Row &row, QWidget *parent = nullptr);

    void take(const Speakers::Row &row);

  private:
    void popUpMenu();
    void showTexts();
    [[nodiscard]] int indent() const;
    void resizeEvent(QResizeEvent *event) override;

    Speakers &m_speakers;
    Speakers::Row m_row;
    QRadioButton *m_name;
    QLabel *m_status;
    MuteButton *m_mute;
    QSlider *m_volume;
    QToolButton *m_more;
};

} // namespace vantor
