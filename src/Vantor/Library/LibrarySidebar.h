#pragma once

#include "LibraryBrowser/LibraryBrowser.h"

#include <QWidget>

class QListWidget;
class QVBoxLayout;

namespace vantor {

/// The column at the left of the Library window: the parts of the source that is browsed. Main thread.
class LibrarySidebar : public QWidget {
    Q_OBJECT

  public:
    explicit LibrarySidebar(QWidget *parent = nullptr);

    /// What stands above the sections; the column owns it.
    void setHead(QWidget *head);
    void setSectionsEnabled(bool areEnabled);
    void offer(const QList<LibrarySection> &sections);
    [[nodiscard]] const QList<LibrarySection> &offered() const { return m_sections; }
    /// Where one is; none: nowhere among them.
    void mark(std::optional<LibrarySection> section);

  Q_SIGNALS:
    void chosen(vantor::LibrarySection section);

  protected:
    void changeEvent(QEvent *event) override;

  private:
    void takeColors();

    QList<LibrarySection> m_sections;
    QVBoxLayout *m_layout;
    QListWidget *m_list;
};

} // namespace vantor
