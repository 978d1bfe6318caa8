#include "Vantor/Remote/SpeakersPanel.h"

#include "Vantor/Preferences/SettingsPage.h"
#include "Vantor/Remote/OutputMenu.h"
#include "Vantor/Remote/SpeakerRow.h"
#include "Vantor/Windows/FaintText.h"

#include <QLabel>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace vantor {

namespace {

constexpr int panelWidth = 380;
constexpr int mostHeight = 420;

void popUpPanel(RemoteOutput &selected, QToolButton &button) {
    auto *const popUp = new QFrame(&button, Qt::Popup);
    popUp->setAttribute(Qt::WA_DeleteOnClose);
    popUp->setFrameShape(QFrame::StyledPanel);
    giveFaintText(*popUp);
    auto *const layout = new QVBoxLayout(popUp);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new SpeakersPanel(selected));
    popUp->adjustSize();
    const QPoint corner = button.mapToGlobal(QPoint(button.width(), 0));
    const QRect room = button.screen()->availableGeometry();
    const QPoint wanted = corner - QPoint(popUp->width(), popUp->height());
    popUp->move(std::max(room.left(), wanted.x()), std::max(room.top(), wanted.y()));
    popUp->show();
}

} // namespace

SpeakersPanel::SpeakersPanel(RemoteOutput &selected, QWidget *parent)
    : QScrollArea(parent), m_speakers(selected), m_empty(SettingsPage::makeNote()) {
    auto *const list = new QWidget;
    m_layout = new QVBoxLayout(list);
    m_layout->setContentsMargins(0, 4, 0, 4);
    m_layout->setSpacing(0);
    m_empty->setAlignment(Qt::AlignCenter);
    m_empty->setContentsMargins(24, 24, 24, 24);
    m_layout->addWidget(m_empty);
    m_layout->addStretch();
    setWidget(list);
    setWidgetResizable(true);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    connect(&m_speakers, &Speakers::changed, this, &SpeakersPanel::takeRows);
    takeRows();
}

QSize SpeakersPanel::sizeHint() const {
    return {panelWidth, std::min(mostHeight, widget()->sizeHint().height())};
}

// Rows stay as long as their outputs do: one may be under the pointer.
void SpeakersPanel::takeRows() {
    const QList<Speakers::Row> rows = m_speakers.rows();
    std::erase_if(m_rows, [&](const auto &known) {
        const bool stays = std::ranges::any_of(
            rows, [&](const Speakers::Row &row) { return row.device.id.rawValue == known.first; });
        if (!stays)
            known.second->deleteLater();
        return !stays;
    });
    m_empty->setVisible(rows.isEmpty());
    m_empty->setText(emptyText());
    int place = 0;
    for (const Speakers::Row &row : rows) {
        SpeakerRow *&known = m_rows[row.device.id.rawValue];
        if (known)
            known->take(row);
        else
            known = new SpeakerRow(m_speakers, row);
        if (m_layout->indexOf(known) != place)
            m_layout->insertWidget(place, known);
        ++place;
    }
    updateGeometry();
}

QString SpeakersPanel::emptyText() const {
    const LibraryBrowser *const browser = m_speakers.selected().browser();
    if (browser && browser->state() == LibraryBrowser::State::connecting)
        return tr("Connecting…");
    return browser && browser->failure() ? browser->failure()->sentence : tr("There are no speakers here.");
}

SpeakersDialog::SpeakersDialog(RemoteOutput &selected, QWidget *parent) : QDialog(parent) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Speakers"));
    giveFaintText(*this);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(new SpeakersPanel(selected));
    adjustSize();
}

QToolButton *makeOutputButton(RemoteOutput &selected, QWidget *parent) {
    auto *const button = new QToolButton(parent);
    button->setAutoRaise(true);
    button->setToolTip(SpeakersPanel::tr("Where it plays"));
    button->setAccessibleName(SpeakersPanel::tr("Output"));
    const auto show = [&selected, button] {
        const auto output = selected.browser() ? selected.browser()->output() : std::nullopt;
        const bool isChoice = output && (selected.browser()->outputs().size() > 1 || selected.isSelected());
        button->setVisible(isChoice);
        if (!isChoice)
            return;
        const QString name = OutputMenu::label(OutputMenu::nameOf(*output));
        button->setText(output->isAvailable ? name : SpeakersPanel::tr("%1 (not available)").arg(name));
    };
    if (LibraryBrowser *const browser = selected.browser())
        QObject::connect(browser, &LibraryBrowser::outputsChanged, button, show);
    QObject::connect(&selected, &RemoteOutput::selectionChanged, button, show);
    QObject::connect(button, &QToolButton::clicked, button,
                     [&selected, button] { popUpPanel(selected, *button); });
    show();
    return button;
}

} // namespace vantor
