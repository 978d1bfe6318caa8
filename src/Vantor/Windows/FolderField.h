#pragma once

#include <QWidget>

class QLabel;
class QLineEdit;

namespace vantor {

/// A folder that can be typed or chosen in a dialog. An address that is no folder is not taken, and the field
/// says so; there is always room for that. Main thread.
class FolderField : public QWidget {
    Q_OBJECT

  public:
    /// `purpose`: the title of the dialog and the field's spoken name.
    FolderField(const QString &purpose, const QString &folder, QWidget *parent = nullptr);

    /// Takes what was typed; false if it is no folder, which the field then says.
    [[nodiscard]] bool confirm();

  Q_SIGNALS:
    void chosen(const QString &folder); ///< one that exists, or empty for none

  private:
    void browse();

    QString m_purpose;
    QString m_folder;
    QLineEdit *m_edit;
    QLabel *m_problem;
};

} // namespace vantor
