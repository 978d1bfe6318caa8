#pragma once

#include <QAbstractItemView>

namespace vantor {

/// What all lists of the library make of keys, double clicks and menu requests. Main thread; the view's.
class LibraryViewInput : public QObject {
    Q_OBJECT

  public:
    explicit LibraryViewInput(QAbstractItemView &view);

    /// The rows in which anything is selected, in their order.
    [[nodiscard]] static QList<int> selectedRows(const QAbstractItemView &view);

  Q_SIGNALS:
    void opened(const QModelIndex &index); ///< by a double click or Enter
    void menuAsked(const QPoint &global);  ///< about what is selected

  protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    bool takeKey(QKeyEvent &event);
    void takeMenuRequest(const QContextMenuEvent &event);

    QAbstractItemView &m_view;
};

} // namespace vantor
