#include "Vantor/Remote/SpeakerRow.h"

#include "Vantor/Remote/OutputMenu.h"

#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <QSlider>
#include <QToolButton>

#include <cmath>

namespace vantor {

namespace {

constexpr int percent = 100;
constexpr int volumeWidth = 120;

} // namespace

SpeakerRow::SpeakerRow(Speakers &speakers, const Speakers::Row &row, QWidget *parent)
    : QWidget(parent), m_speakers(speakers), m_name(new QRadioButton), m_status(new QLabel),
      m_volume(new QSlider(Qt::Horizontal)), m_more(new QToolButton) {
    m_name->setAutoExclusive(false); // the rows have different parents
    m_name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_status->setForegroundRole(QPalette::PlaceholderText);
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    m_volume->setRange(0, percent);
    m_volume->setPageStep(10);
    m_volume->setFixedWidth(volumeWidth);
    m_more->setText(QStringLiteral("⋯"));
    m_more->setAutoRaise(true);
    connect(m_name, &QRadioButton::clicked, this, [this] {
        m_speakers.select(m_row.device);
        take(m_row); // the button has marked itself, whatever came of it
    });
    connect(m_volume, &QSlider::valueChanged, this, [this](int value) {
        m_volume->setToolTip(tr("Volume: %1%").arg(value));
        if (!m_volume->signalsBlocked())
            m_speakers.setVolume(m_row.device.id, static_cast<double>(value) / percent);
    });
    connect(m_more, &QToolButton::clicked, this, &SpeakerRow::popUpMenu);

    auto *const layout = new QGridLayout(this);
    layout->setContentsMargins(12, 6, 8, 6);
    layout->setHorizontalSpacing(8);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(0, 1);
    layout->addWidget(m_name, 0, 0);
    layout->addWidget(m_volume, 0, 1, 2, 1, Qt::AlignVCenter);
    layout->addWidget(m_more, 0, 2, 2, 1, Qt::AlignVCenter);
    layout->addWidget(m_status, 1, 0);
    take(row);
}

void SpeakerRow::take(const Speakers::Row &row) {
    m_row = row;
    const QString name = OutputMenu::nameOf(row.device);
    m_name->setText(OutputMenu::label(name));
    m_name->setChecked(row.isSelected);
    m_name->setEnabled(row.device.isAvailable || row.isSelected);
    m_status->setContentsMargins(m_name->iconSize().width() + 8, 0, 0, 0);
    const bool hasVolume = row.playing.volume && row.device.kind == OutputDevice::Kind::remote;
    m_volume->setVisible(hasVolume && row.device.isAvailable);
    m_volume->setAccessibleName(tr("Volume of %1").arg(name));
    if (hasVolume && !m_volume->isSliderDown()) {
        const QSignalBlocker quiet(m_volume);
        m_volume->setValue(static_cast<int>(std::lround(*row.playing.volume * percent)));
        m_volume->setToolTip(tr("Volume: %1%").arg(m_volume->value()));
    }
    m_more->setAccessibleName(tr("More about %1").arg(name));
    m_more->setVisible(row.device.kind == OutputDevice::Kind::remote && row.device.isAvailable);
    showStatus();
}

void SpeakerRow::showStatus() {
    const QString status = Speakers::statusOf(m_row);
    const int room = m_status->width() - m_status->contentsMargins().left();
    m_status->setText(m_status->fontMetrics().elidedText(status, Qt::ElideRight, room));
    m_status->setToolTip(m_status->text() == status ? QString() : status);
}

void SpeakerRow::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    showStatus();
}

void SpeakerRow::popUpMenu() {
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Move the Music Here"), this, [this] { m_speakers.takeMusic(m_row.device); })
        ->setEnabled(m_speakers.canTakeMusic(m_row.device));
    if (m_row.leader) {
        menu->addAction(OutputMenu::label(tr("Leave %1").arg(m_row.leader->name)), this, [this] {
            if (m_row.leader)
                m_speakers.setMember(m_row.leader->id, m_row.device.id, false);
        });
    } else if (!m_row.joinable.isEmpty()) {
        menu->addSection(tr("Plays along"));
        for (const OutputDevice &other : m_row.joinable) {
            const bool isMember = m_row.members.contains(other);
            QAction *const action =
                menu->addAction(OutputMenu::label(other.name), this, [this, id = other.id, isMember] {
                    m_speakers.setMember(m_row.device.id, id, !isMember);
                });
            action->setCheckable(true);
            action->setChecked(isMember);
        }
    }
    menu->popup(m_more->mapToGlobal(QPoint(0, m_more->height())));
}

} // namespace vantor
