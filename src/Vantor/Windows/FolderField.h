#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace vantor {

/// A folder that can be typed or chosen in a dialog. An address that is no folder is not taken, and the field
/// says so. Main thread.
class FolderField : public QWidget {
    Q_OBJECT

  public:
    /// `purpose`: the title of the dialog and the field's spoken name.
    FolderField(const QString &purpose, const QString &folder, QWidget *parent = nullptr);

  Q_SIGNALS:
    void chosen(const QString &folder); ///< one that exists, or empty for none

  private:
    void browse();
    void take(const QString &path);

    QString m_purpose;
    QString m_folder;
    QLineEdit *m_edit;
    QLabel *m_problem;
};

} // namespace vantor
