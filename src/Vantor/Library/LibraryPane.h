#pragma once

#include "LibraryBrowser/LibraryModel.h"

#include <QTimer>
#include <QWidget>

class QLabel;
class QStackedLayout;

namespace vantor {

class MessagePage;

/// A list with what there is to say while it has nothing to show, or about what went wrong. Main thread;
/// borrows the model.
class LibraryPane : public QWidget {
    Q_OBJECT

  public:
    struct EmptyText {
        QString heading;
        QString text{};
        QString button{}; ///< of what can be done about it; empty for nothing
        std::function<void()> action{};
    };

    /// `list` becomes the pane's.
    LibraryPane(QWidget *list, LibraryModel &model, const EmptyText &empty, QWidget *parent = nullptr);

  private:
    void showState();

    LibraryModel &m_model;
    const EmptyText m_empty;
    QWidget *m_list;
    QWidget *m_trouble; ///< beside rows that are there
    QLabel *m_sentence;
    MessagePage *m_message;
    QStackedLayout *m_stack;
    QTimer m_patience; ///< until it is said that something is loading
};

} // namespace vantor
