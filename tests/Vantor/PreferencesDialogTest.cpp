#include "Vantor/Windows/PreferencesDialog.h"

#include "PlayerFixture.h"
#include "Vantor/Windows/DialogPlace.h"
#include "Vantor/Windows/FolderField.h"
#include "Vantor/Windows/WelcomeDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QSignalSpy>
#include <QTest>

using namespace vantor;

TEST_F(PlayerFixture, APreferenceHoldsAtOnceAndFollowsWhatElseChangesIt) {
    QPointer<PreferencesDialog> dialog(new PreferencesDialog(m_model, nullptr, nullptr, nullptr));
    dialog->show();
    const auto boxes = dialog->findChildren<QCheckBox *>();
    const auto doubled = std::ranges::find(boxes, u"&Double size"_qs, &QCheckBox::text);
    ASSERT_NE(doubled, boxes.end());
    (*doubled)->click();
    EXPECT_TRUE(m_model.windows().isDoubleSize());
    m_model.windows().setDoubleSize(false);
    EXPECT_FALSE((*doubled)->isChecked());
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(waitFor([&] { return dialog.isNull(); }));
}

TEST_F(PlayerFixture, AFolderIsTakenOnlyIfItIsThere) {
    FolderField field(u"Music"_qs, {});
    const QSignalSpy chosen(&field, &FolderField::chosen);
    field.show();
    auto *const edit = field.findChild<QLineEdit *>();
    ASSERT_TRUE(edit);
    QStringList taken;
    const std::pair<QString, QStringList> rows[] = {{u"/no/such/folder"_qs, {}},
                                                    {u"relative"_qs, {}},
                                                    {m_folder.path(), {m_folder.path()}},
                                                    {m_folder.path("settings.ini"), {m_folder.path()}},
                                                    {QString(), {m_folder.path(), QString()}}};
    for (const auto &[text, expected] : rows) {
        edit->clear();
        QTest::keyClicks(edit, text);
        QTest::keyClick(edit, Qt::Key_Return);
        taken.clear();
        for (const QList<QVariant> &arguments : chosen)
            taken.append(arguments.first().toString());
        EXPECT_EQ(taken, expected) << text.toStdString();
    }
}

TEST_F(PlayerFixture, ADialogStaysOpenOverAFolderThatIsNone) {
    for (QDialog *const made :
         {static_cast<QDialog *>(new WelcomeDialog(m_model, nullptr)),
          static_cast<QDialog *>(new PreferencesDialog(m_model, nullptr, nullptr, nullptr))}) {
        QPointer<QDialog> dialog(made);
        SCOPED_TRACE(dialog->windowTitle().toStdString());
        dialog->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(dialog));
        const auto edits = dialog->findChildren<QLineEdit *>();
        const auto found = std::ranges::find(edits, u"Music folder"_qs, &QLineEdit::accessibleName);
        ASSERT_NE(found, edits.end());
        QLineEdit *const edit = *found;
        QPushButton *const button =
            dialog->findChild<QDialogButtonBox *>()->findChildren<QPushButton *>().first();
        edit->setText(u"/no/such/folder"_qs);
        button->click();
        ASSERT_TRUE(dialog && dialog->isVisible());
        EXPECT_TRUE(edit->hasFocus());
        QCoreApplication::processEvents();
        EXPECT_GE(edit->height(), edit->minimumSizeHint().height());
        edit->setText(m_folder.path());
        button->click();
        EXPECT_TRUE(waitFor([&] { return dialog.isNull(); }));
        EXPECT_EQ(m_model.preferences().libraryFolder(), m_folder.path());
        m_model.preferences().setLibraryFolder({});
    }
}

TEST_F(PlayerFixture, ADialogOpensBesideTheWindowsWhereThereIsRoom) {
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const auto at = [&](int x, int y) { return QRect(screen.topLeft() + QPoint(x, y), QSize(275, 232)); };
    const int right = screen.width() - 275;
    const QList<QRect> rows[] = {{at(0, 0)},
                                 {at(right, 0)},
                                 {at(right / 2, 0)},
                                 {at(right / 2, screen.height() - 232)},
                                 {at(0, 0), at(0, 232)},
                                 {at(-200, 0)}};
    for (const QList<QRect> &windows : rows) {
        QWidget dialog;
        dialog.resize(400, 300);
        DialogPlace::beside(dialog, windows);
        EXPECT_TRUE(screen.contains(dialog.geometry()));
        for (const QRect &window : windows)
            EXPECT_FALSE(dialog.geometry().intersects(window)) << dialog.x() << ' ' << dialog.y();
    }
}
