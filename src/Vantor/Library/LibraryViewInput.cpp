#include "Vantor/Library/LibraryViewInput.h"

#include <QContextMenuEvent>

#include <set>

namespace vantor {

LibraryViewInput::LibraryViewInput(QAbstractItemView &view) : QObject(&view), m_view(view) {
    view.installEventFilter(this);
    view.viewport()->installEventFilter(this); // which a mouse asks for menus
    connect(&view, &QAbstractItemView::doubleClicked, this, &LibraryViewInput::opened);
}

QList<int> LibraryViewInput::selectedRows(const QAbstractItemView &view) {
    std::set<int> rows;
    for (const QItemSelectionRange &range : view.selectionModel()->selection()) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.insert(row);
    }
    return {rows.begin(), rows.end()};
}

bool LibraryViewInput::eventFilter(QObject *watched, QEvent *event) {
    if (event->type() == QEvent::KeyPress)
        return takeKey(*static_cast<QKeyEvent *>(event));
    if (event->type() != QEvent::ContextMenu)
        return QObject::eventFilter(watched, event);
    takeMenuRequest(*static_cast<QContextMenuEvent *>(event));
    return true;
}

bool LibraryViewInput::takeKey(QKeyEvent &event) {
    const bool isEnter = event.key() == Qt::Key_Return || event.key() == Qt::Key_Enter;
    if (!isEnter && event.key() != Qt::Key_Backspace)
        return false;
    const QModelIndex current = m_view.currentIndex();
    const bool isPlain = (event.modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (isEnter && isPlain && current.isValid())
        Q_EMIT opened(current);
    else
        event.ignore(); // the window's
    return true;
}

void LibraryViewInput::takeMenuRequest(const QContextMenuEvent &event) {
    if (event.reason() == QContextMenuEvent::Keyboard)
        Q_EMIT menuAsked(m_view.viewport()->mapToGlobal(m_view.visualRect(m_view.currentIndex()).center()));
    else if (m_view.indexAt(event.pos()).isValid())
        Q_EMIT menuAsked(event.globalPos());
}

} // namespace vantor
