#include "Vantor/Museum/MuseumDetails.h"

#include "SkinMuseum/Model/MuseumPictures.h"
#include "Vantor/Windows/TileDrawing.h"

#include <QGraphicsOpacityEffect>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace vantor {

namespace {

constexpr QSize ownSize{275, 348}; // of the museum's screenshots

} // namespace

/// The screenshot as large as there is room, but not larger than it is.
class MuseumDetails::Picture : public QWidget {
  public:
    explicit Picture(MuseumPictures &pictures) : m_pictures(pictures) {
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
        setMinimumSize(110, 110);
        connect(&pictures, &MuseumPictures::changed, this, [this](const QString &md5) {
            if (m_skin && m_skin->md5 == md5)
                update();
        });
    }
    [[nodiscard]] QSize sizeHint() const override { return ownSize; }
    void setSkin(const std::optional<MuseumSkin> &skin) {
        m_skin = skin;
        update();
    }

  protected:
    // What is below stands right under it, however narrow it is.
    void resizeEvent(QResizeEvent *) override {
        const int high = ownSize.height() * width() / ownSize.width();
        setMaximumHeight(std::clamp(high, minimumHeight(), ownSize.height()));
    }
    void paintEvent(QPaintEvent *) override {
        QPainter painter(this);
        painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
        const QImage image =
            m_skin ? m_pictures.picture(*m_skin, qRound(ownSize.height() * devicePixelRatioF())) : QImage();
        const QSize shape = image.isNull() ? ownSize : image.size();
        const QSizeF shown = QSizeF(shape).scaled(size().boundedTo(ownSize), Qt::KeepAspectRatio);
        const QRectF place((width() - shown.width()) / 2, 0, shown.width(), shown.height());
        if (image.isNull())
            painter.fillRect(place, TileDrawing::faint(palette().color(QPalette::Text), 0.05));
        else
            painter.drawImage(place, image);
    }

  private:
    MuseumPictures &m_pictures;
    std::optional<MuseumSkin> m_skin;
};

MuseumDetails::MuseumDetails(MuseumPictures &pictures, QWidget *parent)
    : QWidget(parent), m_picture(new Picture(pictures)), m_name(new QLabel), m_text(new QLabel),
      m_lesser(new QGraphicsOpacityEffect(this)), m_progress(new QProgressBar),
      m_wear(new QPushButton(tr("Wear"))), m_download(new QPushButton(tr("Download"))),
      m_page(new QPushButton(tr("Open Museum Page"))),
      m_back(new QPushButton(tr("Back to the Skin Before"))) {
    setAccessibleName(tr("About the skin"));
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);
    for (QLabel *const label : {m_name, m_text}) {
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    }
    QFont font = m_name->font();
    font.setBold(true);
    m_name->setFont(font);
    m_text->setGraphicsEffect(m_lesser);
    m_text->setMinimumHeight(2 * fontMetrics().lineSpacing()); // or the buttons would jump
    m_text->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    m_progress->setTextVisible(false);
    m_progress->setMaximumHeight(8);
    m_progress->setAccessibleName(tr("Progress of the download"));
    QSizePolicy kept = m_progress->sizePolicy();
    kept.setRetainSizeWhenHidden(true);
    m_progress->setSizePolicy(kept);
    m_back->setToolTip(tr("Backspace"));

    auto *const buttons = new QGridLayout;
    buttons->setSpacing(6);
    buttons->addWidget(m_wear, 0, 0);
    buttons->addWidget(m_download, 0, 1);
    buttons->addWidget(m_page, 1, 0, 1, 2);
    buttons->addWidget(m_back, 2, 0, 1, 2);
    auto *const layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 10);
    layout->setSpacing(6);
    layout->addWidget(m_picture, 1);
    layout->addWidget(m_name);
    layout->addWidget(m_text);
    layout->addWidget(m_progress);
    layout->addLayout(buttons);
    layout->addStretch(0);
    connect(m_wear, &QPushButton::clicked, this, &MuseumDetails::wearAsked);
    connect(m_download, &QPushButton::clicked, this,
            [this] { m_isUnderWay ? Q_EMIT cancelAsked() : Q_EMIT downloadAsked(); });
    connect(m_page, &QPushButton::clicked, this, &MuseumDetails::pageAsked);
    connect(m_back, &QPushButton::clicked, this, &MuseumDetails::backAsked);
    setSkin(std::nullopt, {});
    setCanGoBack(false);
}

void MuseumDetails::setCanGoBack(bool can) {
    m_back->setEnabled(can);
}

void MuseumDetails::setSkin(const std::optional<MuseumSkin> &skin, const State &state) {
    m_picture->setSkin(skin);
    m_picture->setAccessibleName(skin ? tr("Screenshot of %1").arg(skin->title()) : QString());
    m_name->setText(skin ? skin->title() : QString());
    m_wear->setEnabled(skin && !state.isWorn);
    m_isUnderWay = state.isUnderWay;
    m_download->setText(m_isUnderWay ? tr("Cancel") : tr("Download"));
    m_download->setAccessibleName(m_isUnderWay ? tr("Cancel the download") : QString());
    m_download->setEnabled(skin && (m_isUnderWay || !state.isOwned));
    m_page->setEnabled(skin.has_value());
    m_progress->setVisible(skin && state.isUnderWay);
    m_progress->setRange(0, state.progress ? 1000 : 0);
    m_progress->setValue(qRound(state.progress.value_or(0) * 1000));
    if (!skin)
        m_text->setText({});
    else if (!state.problem.isEmpty())
        m_text->setText(state.problem);
    else if (state.isUnderWay)
        m_text->setText(tr("Downloading…"));
    else if (state.isWorn)
        m_text->setText(tr("You are wearing this skin."));
    else if (state.isOwned)
        m_text->setText(tr("In your skins folder."));
    else
        m_text->setText(tr("Downloads go to the Museum folder inside the skins folder."));
    m_lesser->setEnabled(state.problem.isEmpty());
}

} // namespace vantor
