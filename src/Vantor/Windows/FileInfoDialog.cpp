#include "Vantor/Windows/FileInfoDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>

namespace vantor {

FileInfoDialog::FileInfoDialog(const TrackInfo &info, QWidget *parent) : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("File Info"));
    auto *layout = new QFormLayout(this);
    layout->setHorizontalSpacing(16);
    for (const auto &[label, value] : info.rows()) {
        auto *text = new QLabel(value);
        text->setTextFormat(Qt::PlainText);
        text->setTextInteractionFlags(Qt::TextSelectableByMouse);
        text->setWordWrap(true);
        text->setMinimumWidth(260);
        layout->addRow(label + QLatin1Char(':'), text);
    }
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addRow(buttons);
}

} // namespace vantor
