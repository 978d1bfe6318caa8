#include "Vantor/Windows/SkippedFilesDialog.h"

#include <QDialogButtonBox>
#include <QDir>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace vantor {

SkippedFilesDialog::SkippedFilesDialog(const std::vector<SkippedFile> &files, QWidget *parent)
    : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Skipped Files"));
    auto *list = new QTreeWidget;
    list->setAccessibleName(tr("Skipped files"));
    list->setHeaderLabels({tr("File"), tr("Reason")});
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    QList<QTreeWidgetItem *> items;
    for (const SkippedFile &file : files) {
        auto *const item = new QTreeWidgetItem({file.name(), file.reason});
        item->setToolTip(0, file.url.isLocalFile() ? QDir::toNativeSeparators(file.url.toLocalFile())
                                                   : file.url.toDisplayString());
        items.append(item);
    }
    list->addTopLevelItems(items);
    list->setColumnWidth(0, fontMetrics().averageCharWidth() * 48);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(list);
    layout->addWidget(buttons);
    resize(fontMetrics().averageCharWidth() * 100, fontMetrics().height() * 16);
}

} // namespace vantor
