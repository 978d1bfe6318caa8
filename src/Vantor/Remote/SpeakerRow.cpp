#include "Vantor/Remote/SpeakerRow.h"

#include "Vantor/Remote/MuteButton.h"
#include "Vantor/Remote/OutputMenu.h"

#include <QGridLayout>
#include <QLabel>
#include <QMenu>
#include <QRadioButton>
#include <QSlider>
#include <QStyle>
#include <QToolButton>

#include <cmath>

namespace vantor {

namespace {

constexpr int percent = 100;
constexpr int volumeWidth = 120;

} // namespace

SpeakerRow::SpeakerRow(Speakers &speakers, const Speakers::Row &row, QWidget *parent)
    : QWidget(parent), m_speakers(speakers), m_name(new QRadioButton), m_status(new QLabel),
      m_mute(new MuteButton), m_volume(new QSlider(Qt::Horizontal)), m_more(new QToolButton) {
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
        m_speakers.selected().select(m_row.device);
        take(m_row); // the button has marked itself, whatever came of it
    });
    connect(m_volume, &QSlider::valueChanged, this, [this](int value) {
        m_volume->setToolTip(tr("Volume: %1%").arg(value));
        if (!m_volume->signalsBlocked())
            m_speakers.setVolume(m_row.device.id, static_cast<double>(value) / percent);
    });
    connect(m_mute, &QToolButton::clicked, this, [this](bool isMuted) {
        m_speakers.setMuted(m_row.device.id, isMuted);
        take(m_row); // the same
    });
    connect(m_more, &QToolButton::clicked, this, &SpeakerRow::popUpMenu);

    auto *const layout = new QGridLayout(this);
    layout->setContentsMargins(12, 6, 8, 6);
    layout->setHorizontalSpacing(8);
    layout->setVerticalSpacing(2);
    layout->setColumnStretch(0, 1);
    layout->addWidget(m_name, 0, 0);
    layout->addWidget(m_mute, 0, 1, 2, 1, Qt::AlignVCenter);
    layout->addWidget(m_volume, 0, 2, 2, 1, Qt::AlignVCenter);
    layout->addWidget(m_more, 0, 3, 2, 1, Qt::AlignVCenter);
    layout->addWidget(m_status, 1, 0);
    take(row);
}

void SpeakerRow::take(const Speakers::Row &row) {
    m_row = row;
    const QString name = OutputMenu::nameOf(row.device);
    m_name->setToolTip(name);
    m_name->setAccessibleName(name);
    m_name->setChecked(row.isSelected);
    m_name->setEnabled(row.device.isAvailable);
    m_status->setEnabled(row.device.isAvailable);
    m_status->setForegroundRole(row.device.isAvailable ? QPalette::PlaceholderText : QPalette::WindowText);
    m_status->setContentsMargins(indent(), 0, 0, 0);
    const bool isThere = row.device.isAvailable && row.device.kind == OutputDevice::Kind::remote;
    const bool isMuted = row.controls.isMuted.value_or(false);
    m_mute->setVisible(isThere && row.controls.isMuted);
    m_mute->setChecked(isMuted);
    m_mute->setAccessibleName((isMuted ? tr("%1 is muted") : tr("Mute %1")).arg(name));
    m_mute->setToolTip(isMuted ? tr("Muted") : tr("Mute"));
    const bool hasVolume = isThere && row.controls.canSetVolume && row.playing.volume;
    m_volume->setVisible(hasVolume);
    m_volume->setAccessibleName(tr("Volume of %1").arg(name));
    if (hasVolume && !m_volume->isSliderDown()) {
        const QSignalBlocker quiet(m_volume);
        m_volume->setValue(static_cast<int>(std::lround(*row.playing.volume * percent)));
        m_volume->setToolTip(tr("Volume: %1%").arg(m_volume->value()));
    }
    for (QWidget *const control : std::initializer_list<QWidget *>{m_mute, m_volume, m_more})
        control->setEnabled(!row.isInterrupted);
    m_more->setAccessibleName(tr("More about %1").arg(name));
    m_more->setVisible(isThere);
    showTexts();
}

/// Where the name begins, behind its mark.
int SpeakerRow::indent() const {
    return style()->pixelMetric(QStyle::PM_ExclusiveIndicatorWidth, nullptr, m_name) +
           style()->pixelMetric(QStyle::PM_RadioButtonLabelSpacing, nullptr, m_name);
}

void SpeakerRow::showTexts() {
    m_name->setText(OutputMenu::label(m_name->fontMetrics().elidedText(
        OutputMenu::nameOf(m_row.device), Qt::ElideRight, m_name->width() - indent())));
    const QString status = Speakers::statusOf(m_row);
    const int room = m_status->width() - m_status->contentsMargins().left();
    m_status->setText(m_status->fontMetrics().elidedText(status, Qt::ElideRight, room));
    m_status->setToolTip(m_status->text() == status ? QString() : status);
}

void SpeakerRow::resizeEvent(QResizeEvent *event) {
    QWidget::resizeEvent(event);
    showTexts();
}

void SpeakerRow::popUpMenu() {
    auto *const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->addAction(tr("Move the Music Here"), this, [this] { m_speakers.takeMusic(m_row.device); })
        ->setEnabled(m_speakers.canTakeMusic(m_row.device));
    if (!m_row.group.leader && !m_row.group.joinable.isEmpty())
        menu->addSection(tr("Plays along"));
    OutputMenu::fillGroup(*menu, m_speakers.selected(), m_row.device);
    menu->popup(m_more->mapToGlobal(QPoint(0, m_more->height())));
}

} // namespace vantor
