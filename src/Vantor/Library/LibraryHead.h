#pragma once

#include "LibraryBrowser/LibraryBrowser.h"

#include <QWidget>

class QAction;
class QLineEdit;
class QToolButton;

namespace vantor {

/// The bar above the Library window's lists: the way back and forth, and the search. Main thread; borrows the
/// browser.
class LibraryHead : public QWidget {
    Q_OBJECT

  public:
    explicit LibraryHead(LibraryBrowser &browser, QWidget *parent = nullptr);

    void showSteps(bool canGoBack, bool canGoForward);
    /// Tells nobody.
    void showSearch(const QString &text);
    void setSearchEnabled(bool enabled);
    /// For typing; what is there is selected.
    void focusSearch();

  Q_SIGNALS:
    void backAsked();
    void forwardAsked();
    void searchTyped(const QString &text);
    void searchLeft();   ///< for what is below it
    void resultsAsked(); ///< for what it found

  protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

  private:
    void takeColors();
    void takeSource();

    LibraryBrowser &m_browser;
    QToolButton *m_back;
    QToolButton *m_forward;
    QLineEdit *m_search;
    QAction *m_searchIcon;
    bool m_isShowing = false;
};

} // namespace vantor
