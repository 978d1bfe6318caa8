#include "Vantor/Speaker/SpeakerPage.h"

#include "MusicAssistantKit/Servers/MusicAssistantServerList.h"
#include "Vantor/Preferences/SettingsPage.h"
#include "Vantor/Speaker/NetworkSpeaker.h"
#include "Vantor/Speaker/SpeakerFigures.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSpinBox>
#include <QStyle>
#include <QToolButton>

namespace vantor {

using State = NetworkSpeaker::State;

static constexpr int nudge = 5; ///< milliseconds: about what an ear notices in clicks

SpeakerPage::SpeakerPage(NetworkSpeaker &speaker, const MusicAssistantServerList &servers)
    : m_speaker(speaker), m_servers(servers), m_switch(new QCheckBox(tr("&Play on this Mac"))),
      m_sign(new QLabel), m_status(new QLabel), m_setUp(new QPushButton(tr("&Set Up a Server…"))),
      m_name(new QLineEdit), m_delay(new QSpinBox), m_click(new QPushButton(tr("Click &Test"))),
      m_disclosure(new QToolButton), m_figures(new SpeakerFigures(speaker)) {
    m_setUp->setAutoDefault(false);
    m_disclosure->setText(tr("&Details"));
    m_disclosure->setCheckable(true);
    m_disclosure->setAutoRaise(true);
    m_disclosure->setFocusPolicy(Qt::StrongFocus);
    m_disclosure->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_disclosure->setArrowType(Qt::RightArrow);
    m_figures->hide();
    auto *const form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->setContentsMargins(0, 6, 0, 0);
    form->addRow(tr("&Name"), m_name);
    form->addRow(tr("Static d&elay"), makeDelay());
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 0, 0, 0);
    layout->addWidget(m_switch);
    layout->addWidget(makeStatus());
    layout->addLayout(form);
    layout->addWidget(SettingsPage::makeNote(tr("The delay has this computer heard later, for when it is "
                                                "ahead of the other speakers. The test clicks on "
                                                "every whole second of the server: with two computers "
                                                "clicking, change it until you hear one click.")));
    layout->addSpacing(6);
    layout->addWidget(m_disclosure);
    layout->addWidget(m_figures);
    layout->addStretch(1);

    connect(m_switch, &QCheckBox::toggled, &speaker, &NetworkSpeaker::setEnabled);
    connect(m_setUp, &QPushButton::clicked, this, &SpeakerPage::serverWanted);
    connect(m_name, &QLineEdit::editingFinished, this, &SpeakerPage::takeName);
    connect(m_delay, &QSpinBox::valueChanged, &speaker, &NetworkSpeaker::setStaticDelay);
    connect(m_click, &QPushButton::toggled, &speaker, &NetworkSpeaker::setClicking);
    connect(m_disclosure, &QToolButton::toggled, this, [this](bool isOpen) {
        m_disclosure->setArrowType(isOpen ? Qt::DownArrow : Qt::RightArrow);
        m_figures->setVisible(isOpen);
    });
    connect(&speaker, &NetworkSpeaker::changed, this, &SpeakerPage::showState);
    connect(&servers, &MusicAssistantServerList::changed, this, &SpeakerPage::showState);
    showState();
}

QWidget *SpeakerPage::makeStatus() {
    m_status->setWordWrap(true);
    m_status->setTextFormat(Qt::PlainText); // names come from elsewhere
    m_status->setTextInteractionFlags(Qt::TextSelectableByMouse);
    auto *const row = new QWidget;
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_sign);
    layout->addWidget(m_status, 1);
    layout->addWidget(m_setUp);
    // Room for two lines, whatever there is to say: nothing moves under the pointer.
    row->setMinimumHeight(2 * m_status->fontMetrics().lineSpacing());
    return row;
}

QWidget *SpeakerPage::makeDelay() {
    m_delay->setAccessibleName(tr("Static delay"));
    m_delay->setRange(0, SendspinIncoming::maxStaticDelayMs);
    m_delay->setSuffix(tr(" ms"));
    m_delay->setAccelerated(true);
    m_delay->setKeyboardTracking(false); // half a number is none
    m_click->setCheckable(true);
    m_click->setAutoDefault(false);
    auto *const row = new QWidget;
    row->setFocusProxy(m_delay); // the title's letter goes there
    auto *const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_delay);
    for (const int step : {-nudge, nudge}) {
        auto *const button = new QToolButton;
        button->setText(step < 0 ? tr("Sooner") : tr("Later"));
        button->setToolTip(tr("By %1 ms").arg(nudge));
        button->setAutoRepeat(true);
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, m_delay,
                [this, step] { m_delay->setValue(m_delay->value() + step); });
        layout->addWidget(button);
    }
    layout->addStretch(1);
    layout->addWidget(m_click);
    return row;
}

// A test that one has turned away from is over.
void SpeakerPage::hideEvent(QHideEvent *event) {
    if (!event->spontaneous())
        m_click->setChecked(false); // by its signal: when the program ends, the speaker may have gone
    QWidget::hideEvent(event);
}

void SpeakerPage::takeName() {
    if (m_name->isModified())
        m_speaker.setName(m_name->text().trimmed());
    m_name->setModified(false);
    showState();
}

void SpeakerPage::showState() {
    const State state = m_speaker.state();
    m_switch->setChecked(m_speaker.isEnabled());
    showStatus();
    m_name->setPlaceholderText(m_speaker.standardName());
    if (!m_name->isModified())
        m_name->setText(m_speaker.name() == m_speaker.standardName() ? QString() : m_speaker.name());
    // What is being typed stays, unless the delay is another one by now.
    const QSignalBlocker blocker(m_delay);
    if (m_delay->value() != m_speaker.staticDelay())
        m_delay->setValue(m_speaker.staticDelay());
    m_click->setChecked(m_speaker.isClicking());
    m_click->setEnabled(state == State::Connected || m_speaker.isClicking());
}

void SpeakerPage::showStatus() {
    const State state = m_speaker.state();
    const bool lacksServer = m_servers.servers().empty() && (state == State::Off || state == State::NoServer);
    m_setUp->setVisible(lacksServer);
    if (lacksServer)
        m_status->setText(
            tr("No Music Assistant server is set up yet. This computer can be a speaker of one."));
    else if (state == State::Off)
        m_status->setText(tr("Music Assistant can play on this computer, in step with its other speakers."));
    else
        m_status->setText(m_speaker.statusText());
    m_status->setForegroundRole(state == State::Off ? QPalette::PlaceholderText : QPalette::WindowText);
    const bool hasSign = state == State::Connected || state == State::Refused;
    m_sign->setVisible(hasSign);
    if (hasSign) {
        const auto sign =
            state == State::Connected ? QStyle::SP_DialogApplyButton : QStyle::SP_MessageBoxWarning;
        m_sign->setPixmap(style()->standardIcon(sign).pixmap(16));
    }
}

} // namespace vantor
