#pragma once

#include <QToolButton>

namespace vantor {

/// Silences a speaker while it is down, and shows it: a loudspeaker, with a cross instead of its sound. Main
/// thread.
class MuteButton : public QToolButton {
    Q_OBJECT

  public:
    explicit MuteButton(QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent *event) override;
};

} // namespace vantor
