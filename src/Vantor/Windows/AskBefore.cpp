#include "Vantor/Windows/AskBefore.h"

#include <QMessageBox>
#include <QPushButton>

namespace vantor {

void askBefore(QWidget *parent, const QString &question, const QString &more, const QString &yes,
               const std::function<void()> &action) {
    auto *box = new QMessageBox(QMessageBox::Question, {}, question, QMessageBox::Cancel, parent);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setTextFormat(Qt::PlainText);
    box->setInformativeText(more);
    const QPushButton *const button = box->addButton(yes, QMessageBox::AcceptRole);
    box->setDefaultButton(QMessageBox::Cancel);
    QObject::connect(button, &QPushButton::clicked, parent, action);
    box->open();
}

} // namespace vantor
