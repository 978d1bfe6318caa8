#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace vantor {

/// Parts under one another, each with a title, that scroll together.
class LibraryScrollPage : public QScrollArea {
    Q_OBJECT

  public:
    explicit LibraryScrollPage(QWidget *parent = nullptr);

  protected:
    /// Adds a part and returns it.
    QWidget *addPart(const QString &title, QWidget *content);
    void removeParts();

  private:
    QVBoxLayout *m_layout;
};

} // namespace vantor
