#pragma once

#include "Vantor/Windows/PreferencesDialog.h"
#include "tests/Vantor/ServersFixture.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

namespace vantor {

/// The preferences at one of their pages, found and used by what is read there.
class PageFixture : public ServersFixture {
  protected:
    void TearDown() override { delete m_page; }
    void open(PreferencesPage page, NetworkSpeaker *speaker = nullptr) {
        m_page = new PreferencesDialog(m_model, m_library.get(), speaker, nullptr);
        m_page->showPage(page);
        m_page->show();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_page));
    }
    template <class Widget>
    [[nodiscard]] Widget *shown(const QString &name) const {
        for (auto *const widget : m_page->findChildren<Widget *>()) {
            const QString title = widget->property("text").toString().remove(u'&');
            if (widget->isVisible() && (widget->accessibleName() == name || title == name))
                return widget;
        }
        return nullptr;
    }
    void press(const QString &button) const {
        auto *const found = shown<QAbstractButton>(button);
        ASSERT_TRUE(found && found->isEnabled()) << button.toStdString();
        QTest::mouseClick(found, Qt::LeftButton);
    }
    /// The field that belongs to a title.
    [[nodiscard]] QLineEdit *field(const QString &title) const {
        for (const auto *const label : m_page->findChildren<QLabel *>()) {
            if (label->isVisible() && label->text().remove(u'&') == title)
                return qobject_cast<QLineEdit *>(label->buddy());
        }
        return nullptr;
    }
    static void type(QLineEdit *into, const QString &text) {
        ASSERT_TRUE(into);
        into->setFocus();
        into->selectAll();
        QTest::keyClick(into, Qt::Key_Delete);
        QTest::keyClicks(into, text);
    }
    [[nodiscard]] bool says(const QString &text) const {
        return waitFor([&] {
            return std::ranges::any_of(m_page->findChildren<QLabel *>(), [&](const QLabel *label) {
                return label->isVisible() && label->text() == text;
            });
        });
    }

    QPointer<PreferencesDialog> m_page;
};

} // namespace vantor
