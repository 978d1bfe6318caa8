#include "Vantor/Speaker/NetworkSpeaker.h"
#include "Vantor/Speaker/SpeakerGraph.h"
#include "tests/Support/FakeSendspin/FakeSendspin.h"
#include "tests/Vantor/PageFixture.h"

#include <QAccessible>
#include <QCheckBox>
#include <QRegularExpression>
#include <QSpinBox>

using namespace vantor;

namespace {

class SpeakerPageTest : public PageFixture {
  protected:
    void SetUp() override {
        PageFixture::SetUp();
        m_house.tokens.clear();
        ASSERT_TRUE(m_house.listen());
        m_speaker.begin();
    }
    void open() { PageFixture::open(PreferencesPage::speaker, &m_speaker); }
    /// What the server has been told last.
    [[nodiscard]] QJsonObject told() const {
        const auto clients = m_house.clients();
        return clients.empty() ? QJsonObject() : clients.back()->state().value(u"player").toObject();
    }
    [[nodiscard]] QString knownAs() const {
        const auto clients = m_house.clients();
        return clients.empty() ? QString() : clients.back()->hello().value(u"name").toString();
    }

    RealTimeline m_time;
    FakeSendspin m_house{m_time};
    NetworkSpeaker m_speaker{m_player, m_servers, m_settings};
};

} // namespace

TEST_F(SpeakerPageTest, WithoutAServerItLeadsToWhereOneIsAdded) {
    open();
    for (const bool on : {false, true}) {
        shown<QCheckBox>(u"Play on this Mac"_qs)->setChecked(on);
        EXPECT_TRUE(
            says(u"No Music Assistant server is set up yet. This computer can be a speaker of one."_qs));
    }
    EXPECT_FALSE(shown<QPushButton>(u"Click Test"_qs)->isEnabled());
    press(u"Set Up a Server…"_qs);
    EXPECT_TRUE(field(u"Address"_qs));
}

TEST_F(SpeakerPageTest, SwitchNameAndDelayReachTheServerAndComeBack) {
    m_settings.setValue(u"sendspin.server"_qs, m_house.url().toString());
    open();
    QTest::keyClick(m_page, Qt::Key_P, Qt::AltModifier);
    EXPECT_TRUE(waitFor([&] { return m_settings.value(u"sendspin.enabled"_qs).toBool(); }));
    const QString standard = m_speaker.standardName();
    ASSERT_TRUE(says(u"Connected: shows in Music Assistant as "_qs + standard));
    EXPECT_EQ(knownAs(), standard);

    struct Row {
        QString typed;
        QString name;
    };
    for (const Row &row : {Row{u" Desk "_qs, u"Desk"_qs}, Row{QString(), standard}}) {
        type(field(u"Name"_qs), row.typed);
        QTest::keyClick(field(u"Name"_qs), Qt::Key_Return);
        EXPECT_TRUE(waitFor([&] { return knownAs() == row.name; })) << knownAs().toStdString();
        EXPECT_TRUE(says(u"Connected: shows in Music Assistant as "_qs + row.name));
    }

    auto *const delay = shown<QSpinBox>(u"Static delay"_qs);
    const auto isDelay = [&](int wanted) {
        return waitFor([&] { return told().value(u"static_delay_ms").toInt() == wanted; }) &&
               delay->value() == wanted;
    };
    type(delay->findChild<QLineEdit *>(), u"120"_qs);
    EXPECT_EQ(m_speaker.staticDelay(), 0) << "1 and 12 are not meant";
    QTest::keyClick(delay, Qt::Key_Return);
    EXPECT_TRUE(isDelay(120));
    press(u"Later"_qs);
    EXPECT_TRUE(isDelay(125));
    QTest::keyClick(delay, Qt::Key_Down);
    EXPECT_TRUE(isDelay(124));
    m_house.command(u"set_static_delay"_qs, {{u"static_delay_ms"_qs, 30}});
    EXPECT_TRUE(waitFor([&] { return delay->value() == 30; }));

    press(u"Click Test"_qs);
    EXPECT_TRUE(m_speaker.isClicking() && m_player.isStreaming());
    m_page->showPage(PreferencesPage::output);
    EXPECT_FALSE(m_speaker.isClicking() || m_player.isStreaming()) << "unseen it would be a riddle";
}

TEST_F(SpeakerPageTest, TheDetailsTellHowItDoes) {
    m_settings.setValue(u"sendspin.server"_qs, m_house.url().toString());
    m_house.setClock(3'600'000'000, 0);
    m_speaker.setEnabled(true);
    open();
    ASSERT_TRUE(waitFor([&] { return m_speaker.state() == NetworkSpeaker::State::Connected; }));
    EXPECT_TRUE(std::ranges::none_of(m_page->findChildren<SpeakerGraph *>(), &SpeakerGraph::isVisible));
    QTest::keyClick(m_page, Qt::Key_D, Qt::AltModifier);
    const auto graphs = m_page->findChildren<SpeakerGraph *>();
    ASSERT_TRUE(waitFor([&] { return std::ranges::all_of(graphs, &SpeakerGraph::isVisible); }));
    const auto isRead = [&](const QString &pattern) {
        const QRegularExpression wanted(QRegularExpression::anchoredPattern(pattern));
        return waitFor([&] {
            return std::ranges::any_of(graphs, [&](SpeakerGraph *graph) {
                const QAccessibleInterface *const read = QAccessible::queryAccessibleInterface(graph);
                return wanted.match(read->text(QAccessible::Name)).hasMatch();
            });
        });
    };
    EXPECT_TRUE(isRead(u"Clock offset: \\+3,(599\\.9|600\\.0)\\d\\d s"_qs));
    EXPECT_TRUE(isRead(u"Late chunks: 0"_qs));
    EXPECT_TRUE(isRead(u"Sync error: –"_qs)) << "nothing plays";
    m_house.play({});
    EXPECT_TRUE(isRead(u"Sync error: [+−]?\\d+\\.\\d\\d ms"_qs));
}
