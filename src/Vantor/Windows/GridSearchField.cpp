#include "Vantor/Windows/GridSearchField.h"

#include "Vantor/Windows/TileGridView.h"

#include <QCoreApplication>
#include <QKeyEvent>

namespace vantor {

namespace {

constexpr int widest = 560; // also in a window as wide as the screen

}

GridSearchField::GridSearchField(const QString &prompt, QWidget *parent) : QLineEdit(parent) {
    setPlaceholderText(prompt);
    setAccessibleName(prompt);
    setClearButtonEnabled(true);
    setMaximumWidth(widest);
}

void GridSearchField::setGrid(TileGridView &grid) {
    m_grid = &grid;
    connect(&grid, &TileGridView::typed, this, [this](const QString &text) {
        setFocus();
        insert(text);
    });
}

void GridSearchField::begin() {
    setFocus(Qt::ShortcutFocusReason);
    selectAll();
}

void GridSearchField::keyPressEvent(QKeyEvent *event) {
    switch (event->key()) {
    case Qt::Key_Up:
    case Qt::Key_Down:
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        m_grid->setFocus();
        QCoreApplication::sendEvent(m_grid, event);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Q_EMIT entered();
    default:
        QLineEdit::keyPressEvent(event);
    }
}

} // namespace vantor
