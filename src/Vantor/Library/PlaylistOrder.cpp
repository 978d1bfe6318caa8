#include "Vantor/Library/PlaylistOrder.h"

#include "Vantor/Library/LibraryViewInput.h"
#include "Vantor/Library/TrackTable.h"

#include <QDropEvent>
#include <QKeyEvent>

namespace vantor {

PlaylistOrder::PlaylistOrder(TrackTable &table)
    : QObject(&table), m_table(table), m_gap(new QWidget(table.viewport())) {
    m_gap->setBackgroundRole(QPalette::Highlight);
    m_gap->setAutoFillBackground(true);
    m_gap->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_gap->hide();
    table.viewport()->setAcceptDrops(true);
    table.installEventFilter(this);
    table.viewport()->installEventFilter(this);
}

bool PlaylistOrder::canMove() const {
    return m_editing.testFlag(PlaylistEditingOption::reorder) && !m_table.tracks().sortColumn();
}

bool PlaylistOrder::eventFilter(QObject *watched, QEvent *event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        return takeKey(*static_cast<QKeyEvent *>(event));
    case QEvent::DragEnter:
    case QEvent::DragMove:
        return takeDrag(*static_cast<QDropEvent *>(event));
    case QEvent::DragLeave:
        m_gap->hide();
        return true;
    case QEvent::Drop:
        m_gap->hide();
        drop(*static_cast<QDropEvent *>(event));
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}

bool PlaylistOrder::takeKey(QKeyEvent &event) {
    if (event.key() == Qt::Key_Delete && event.modifiers() == Qt::NoModifier &&
        m_editing.testFlag(PlaylistEditingOption::addRemove)) {
        Q_EMIT removeAsked();
        return true;
    }
    const bool isMove =
        (event.key() == Qt::Key_Up || event.key() == Qt::Key_Down) && event.modifiers() == Qt::AltModifier;
    if (!isMove || !canMove())
        return false;
    const int row = m_table.currentIndex().row();
    const int to = event.key() == Qt::Key_Up ? row - 1 : row + 1;
    if (row >= 0 && to >= 0 && to < m_table.model()->rowCount())
        Q_EMIT moveAsked(row, to);
    return true;
}

// Only its own rows, one at a time.
bool PlaylistOrder::takeDrag(QDropEvent &event) {
    const bool isOwn =
        event.source() == &m_table && canMove() && LibraryViewInput::selectedRows(m_table).size() == 1;
    event.setAccepted(isOwn);
    m_gap->setVisible(isOwn);
    if (!isOwn)
        return true;
    const int row = rowBefore(event.position().toPoint());
    const int y = row < m_table.model()->rowCount()
                      ? m_table.rowViewportPosition(row)
                      : m_table.rowViewportPosition(row - 1) + m_table.rowHeight(row - 1);
    m_gap->setGeometry(0, std::max(0, y - 1), m_table.viewport()->width(), 2);
    return true;
}

int PlaylistOrder::rowBefore(const QPoint &at) const {
    const int row = m_table.rowAt(at.y());
    if (row < 0)
        return m_table.model()->rowCount();
    const bool isLowerHalf = at.y() > m_table.rowViewportPosition(row) + m_table.rowHeight(row) / 2;
    return isLowerHalf ? row + 1 : row;
}

void PlaylistOrder::drop(const QDropEvent &event) {
    const QList<int> rows = LibraryViewInput::selectedRows(m_table);
    if (event.source() != &m_table || rows.size() != 1 || !canMove())
        return;
    const int before = rowBefore(event.position().toPoint());
    const int to = before > rows.first() ? before - 1 : before; // where it has gone from closes up
    if (to != rows.first())
        Q_EMIT moveAsked(rows.first(), to);
}

} // namespace vantor
