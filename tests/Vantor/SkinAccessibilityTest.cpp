#include "Vantor/Windows/SkinAccessibility.h"

#include "PlayerFixture.h"
#include "SkinKit/Layout/MainSliders.h"
#include "Vantor/Windows/MainWindow.h"

#include <QAccessible>
#include <QTest>

using namespace vantor;

namespace {

class SkinAccessibilityTest : public PlayerFixture {
  protected:
    static void SetUpTestSuite() { installSkinAccessibility(); }
    void SetUp() override {
        m_window.show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&m_window));
        m_self = QAccessible::queryAccessibleInterface(&m_window);
        ASSERT_TRUE(m_self);
    }
    [[nodiscard]] QAccessibleInterface *find(const QString &name) const {
        for (int i = 0; i < m_self->childCount(); ++i) {
            if (m_self->child(i)->text(QAccessible::Name) == name)
                return m_self->child(i);
        }
        return nullptr;
    }

    Commands m_commands{m_model};
    MainWindow m_window{m_model, m_commands};
    QAccessibleInterface *m_self = nullptr;
};

} // namespace

TEST_F(SkinAccessibilityTest, EveryControlIsFoundWhereItIsAndSaysWhatItIs) {
    for (int i = 0; i < m_self->childCount(); ++i) {
        QAccessibleInterface *const child = m_self->child(i);
        EXPECT_FALSE(child->text(QAccessible::Name).isEmpty()) << i;
        EXPECT_EQ(m_self->indexOfChild(child), i);
        const QPoint centre = child->rect().center();
        EXPECT_TRUE(m_self->childAt(centre.x(), centre.y())) << i;
    }
    const struct {
        const char *name;
        QAccessible::Role role;
    } rows[] = {
        {"Play", QAccessible::Button}, {"Shuffle", QAccessible::CheckBox}, {"Volume", QAccessible::Slider}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        const QAccessibleInterface *const found = find(QLatin1String(row.name));
        ASSERT_TRUE(found);
        EXPECT_EQ(found->role(), row.role);
    }
    m_model.windows().setShaded(WindowKind::main, true);
    EXPECT_FALSE(find(QStringLiteral("Shuffle")));
    EXPECT_TRUE(find(QStringLiteral("Play")));
}

TEST_F(SkinAccessibilityTest, AToolPressesTogglesAndSlides) {
    QAccessibleInterface *const shuffle = find(QStringLiteral("Shuffle"));
    ASSERT_TRUE(shuffle);
    shuffle->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_TRUE(m_player.isShuffled());
    EXPECT_TRUE(shuffle->state().checked);

    QAccessibleInterface *const volume = find(QStringLiteral("Volume"));
    ASSERT_TRUE(volume);
    volume->valueInterface()->setCurrentValue(40);
    EXPECT_FLOAT_EQ(m_player.volume(), 0.4F);
    volume->actionInterface()->doAction(QAccessibleActionInterface::increaseAction());
    EXPECT_FLOAT_EQ(m_player.volume(), 0.42F);
    volume->valueInterface()->setCurrentValue(4000);
    EXPECT_FLOAT_EQ(m_player.volume(), 1);
    EXPECT_EQ(volume->valueInterface()->currentValue(), 100);
}

TEST_F(SkinAccessibilityTest, TabGoesOverAllControlsAndKeysServeTheOneReached) {
    const auto focused = [&] {
        QAccessibleInterface *const child = m_self->focusChild();
        return child ? child->text(QAccessible::Name) : QString();
    };
    QStringList seen;
    for (int i = 0; i < m_self->childCount(); ++i) {
        QTest::keyClick(&m_window, Qt::Key_Tab);
        if (seen.contains(focused()))
            break;
        seen.append(focused());
    }
    for (const char *name : {"Play", "Shuffle", "Volume", "Balance"})
        EXPECT_TRUE(seen.contains(QLatin1String(name))) << name;

    const auto reach = [&](const char *name) {
        for (int i = 0; i < 40 && focused() != QLatin1String(name); ++i)
            QTest::keyClick(&m_window, Qt::Key_Backtab, Qt::ShiftModifier);
        EXPECT_EQ(focused(), QLatin1String(name));
    };
    reach("Shuffle");
    QTest::keyClick(&m_window, Qt::Key_Space);
    EXPECT_TRUE(m_player.isShuffled());
    reach("Balance");
    QTest::keyClick(&m_window, Qt::Key_Left);
    EXPECT_FLOAT_EQ(m_player.balance(), -0.05F);
    // Back at the mouse, the arrows are the program's again.
    const float volume = m_player.volume();
    QTest::keyClick(&m_window, Qt::Key_Escape);
    QTest::keyClick(&m_window, Qt::Key_Down);
    EXPECT_LT(m_player.volume(), volume);
}
