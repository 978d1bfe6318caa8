#include "Vantor/Remote/MuteButton.h"

#include "Vantor/Library/LibraryIcons.h"

#include <QStyleOptionToolButton>
#include <QStylePainter>

namespace vantor {

namespace {

constexpr int iconSide = 18;
constexpr int margin = 3;

} // namespace

MuteButton::MuteButton(QWidget *parent) : QToolButton(parent) {
    setCheckable(true);
    setAutoRaise(true);
}

QSize MuteButton::sizeHint() const {
    return {iconSide + 2 * margin, iconSide + 2 * margin};
}

void MuteButton::paintEvent(QPaintEvent *) {
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.state &= ~QStyle::State_On; // the cross says it
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor color = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
    if (isChecked())
        color.setAlphaF(0.62F);
    QRectF place(0, 0, iconSide, iconSide);
    place.moveCenter(QRectF(rect()).center());
    LibraryIcons::drawSpeaker(painter, place, color, !isChecked());
    if (!isChecked())
        return;
    const QRectF cross(place.left() + 0.62 * iconSide, place.top() + 0.36 * iconSide, 0.28 * iconSide,
                       0.28 * iconSide);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap));
    painter.drawLine(cross.topLeft(), cross.bottomRight());
    painter.drawLine(cross.topRight(), cross.bottomLeft());
}

} // namespace vantor
