#include "Vantor/Windows/PreferencesDialog.h"

#include "PlayerFixture.h"
#include "Vantor/Windows/FolderField.h"

#include <QCheckBox>
#include <QLineEdit>
#include <QPointer>
#include <QSignalSpy>
#include <QTest>

using namespace vantor;

TEST_F(PlayerFixture, APreferenceHoldsAtOnceAndFollowsWhatElseChangesIt) {
    QPointer<PreferencesDialog> dialog(new PreferencesDialog(m_model, nullptr));
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
