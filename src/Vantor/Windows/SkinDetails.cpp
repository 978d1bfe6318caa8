#include "Vantor/Windows/SkinDetails.h"

#include "Platform/NativePath.h"
#include "SkinBrowser/IndexAnswer.h"
#include "SkinKit/Rendering/EqualizerWindowRenderer.h"
#include "SkinKit/Rendering/MainWindowRenderer.h"
#include "SkinKit/Rendering/PlaylistWindowRenderer.h"
#include "Vantor/Model/SkinSwitcher.h"
#include "Vantor/Windows/ShowInFolder.h"

#include <QEvent>
#include <QFileInfo>
#include <QLocale>
#include <QPainter>
#include <QResizeEvent>
#include <QScrollBar>

namespace vantor {

namespace {

constexpr QSize windowSize{275, 116}; // of each of the three
constexpr QSize pictureSize{windowSize.width(), 3 * windowSize.height()};
constexpr int readmeLength = 20'000; // characters; more is seldom read and slow to lay out
constexpr qsizetype maxWarnings = 100;
constexpr std::size_t maxFiles = 50;
constexpr std::chrono::milliseconds restTime{120};

QString shortened(QString text) {
    text.replace(QLatin1String("\r\n"), QLatin1String("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
    return text.size() <= readmeLength ? text : text.left(readmeLength) + QStringLiteral("\n…");
}

QColor mixed(const QColor &most, const QColor &some) {
    const auto part = [](int a, int b) { return (3 * a + 2 * b) / 5; };
    return {part(most.red(), some.red()), part(most.green(), some.green()), part(most.blue(), some.blue())};
}

QString heading(const QString &text) {
    return QStringLiteral("<h4 style='margin-bottom:2px'>%1</h4>").arg(text.toHtmlEscaped());
}

QString fileHtml(const FileStamp &file) {
    const qsizetype slash = file.path.lastIndexOf(QLatin1Char('/'));
    const QString address = QString::fromLatin1(NativePath::url(file.path).toEncoded());
    return QStringLiteral(
               "<p style='margin:2px 0'><a href=\"%1\">%2</a><br><span class='faint'>%3</span></p>")
        .arg(address.toHtmlEscaped(), file.path.mid(slash + 1).toHtmlEscaped(),
             file.path.left(slash).toHtmlEscaped());
}

MainWindowScene mainScene(const QString &name) {
    MainWindowScene scene;
    scene.marquee = name;
    scene.equalizerOpen = true;
    scene.playlistOpen = true;
    return scene;
}

} // namespace

SkinDetails::SkinDetails(SkinSwitcher &switcher, QWidget *parent)
    : QTextBrowser(parent), m_switcher(switcher) {
    setAccessibleName(tr("About the skin"));
    setOpenLinks(false);
    setFrameShape(NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn); // or the picture would change its size when it comes
    setTabChangesFocus(true);
    document()->setDocumentMargin(12);
    m_loadSoon.setSingleShot(true);
    m_loadSoon.setInterval(restTime);
    m_renderSoon.setSingleShot(true);
    m_renderSoon.setInterval(0);
    connect(this, &QTextBrowser::anchorClicked, this, &showInFolder);
    connect(&m_renderSoon, &QTimer::timeout, this, &SkinDetails::render);
    connect(&m_loadSoon, &QTimer::timeout, this, [this] {
        if (m_texts)
            m_loader.load(NativePath::url(m_texts->skin.primaryPath));
    });
    connect(&m_loader, &SkinLoader::loaded, this,
            [this](const QUrl &, const Skin &skin) { drawPicture(skin); });
    connect(&m_loader, &SkinLoader::refused, this, [this](const QUrl &, const QString &message) {
        m_problem = message;
        m_renderSoon.start();
    });
    take(std::nullopt);
}

void SkinDetails::setSkin(std::optional<std::int64_t> id) {
    if (id == m_id)
        return;
    m_id = id;
    m_loadSoon.stop();
    if (id)
        refresh();
    else
        take(std::nullopt);
}

void SkinDetails::refresh() {
    if (!m_id)
        return;
    using Answer = std::optional<Texts>;
    const auto question = [id = *m_id](SkinIndexStore &store) -> Answer {
        const std::optional<SkinRecord> skin = store.skin(id);
        return skin ? Answer(Texts{*skin, store.files(id)}) : std::nullopt;
    };
    const auto taken = [this, id = *m_id](const Answer &texts) {
        if (m_id == id)
            take(texts);
    };
    whenAnswered(*this, m_switcher.reader().ask<Answer>(question), taken, [](const SkinLibraryError &) {});
}

void SkinDetails::take(const std::optional<Texts> &texts) {
    if (texts && texts == m_texts)
        return;
    const bool isSameSkin = texts && m_texts && texts->skin.hash == m_texts->skin.hash;
    m_texts = texts;
    if (!isSameSkin) {
        m_loader.cancel();
        m_picture = {};
        m_problem.clear();
        verticalScrollBar()->setValue(0);
        if (texts && texts->skin.status != SkinStatus::failed)
            m_loadSoon.start();
    }
    m_renderSoon.start();
}

void SkinDetails::drawPicture(const Skin &skin) {
    QImage picture(pictureSize, QImage::Format_ARGB32_Premultiplied);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    MainWindowRenderer::draw(painter, skin, mainScene(m_texts->skin.name), 1);
    painter.translate(0, windowSize.height());
    EqualizerWindowRenderer::draw(painter, skin, {}, 1);
    painter.translate(0, windowSize.height());
    PlaylistWindowScene list;
    list.rows = {{tr("1. The track that plays"), QStringLiteral("3:45"), true, false},
                 {tr("2. A track that is selected"), QStringLiteral("4:05"), false, true},
                 {tr("3. Another track"), QStringLiteral("2:30"), false, false}};
    PlaylistWindowRenderer::draw(painter, skin, list, 1);
    painter.end();
    m_picture = picture;
    m_renderSoon.start();
}

QSize SkinDetails::shownSize() const {
    const int room = viewport()->width() - 2 * static_cast<int>(document()->documentMargin());
    const int width = std::clamp(room, 80, pictureSize.width());
    return {width, width * pictureSize.height() / pictureSize.width()};
}

QString SkinDetails::pictureHtml() const {
    if (m_texts->skin.status == SkinStatus::failed || !m_problem.isEmpty())
        return {};
    return QStringLiteral("<p align='center'><img src='picture' width='%1' height='%2'></p>")
        .arg(shownSize().width())
        .arg(shownSize().height());
}

QString SkinDetails::html() const {
    if (!m_texts)
        return QStringLiteral("<p class='faint' align='center'>%1</p>")
            .arg(tr("Select a skin to see more of it.").toHtmlEscaped());
    const SkinRecord &skin = m_texts->skin;
    QString html = pictureHtml();
    html += QStringLiteral("<h3 style='margin-bottom:0'>%1</h3>").arg(skin.name.toHtmlEscaped());
    html += QStringLiteral("<p class='faint' style='margin-top:2px'>%1</p>")
                .arg(QLocale().formattedDataSize(skin.size, 0, QLocale::DataSizeTraditionalFormat));
    const QString trouble = m_problem.isEmpty() ? skin.warnings : m_problem;
    if (!trouble.isEmpty()) {
        const bool isFailed = skin.status == SkinStatus::failed || !m_problem.isEmpty();
        html += heading(isFailed ? tr("This skin cannot be read")
                                 : tr("Drawn with stand-ins for what is missing or damaged"));
        const QStringList lines = trouble.split(QLatin1Char('\n'), Qt::SkipEmptyParts).mid(0, maxWarnings);
        for (const QString &line : lines)
            html += QStringLiteral("<p style='margin:2px 0'>%1</p>").arg(line.toHtmlEscaped());
    }
    html += heading(tr("Files", nullptr, static_cast<int>(m_texts->files.size())));
    for (std::size_t i = 0; i < std::min(maxFiles, m_texts->files.size()); ++i)
        html += fileHtml(m_texts->files[i]);
    if (const QString readme = shortened(skin.readme.value_or(QString())).trimmed(); !readme.isEmpty()) {
        html += heading(tr("Read-me"));
        html += QStringLiteral("<pre style='white-space:pre-wrap'>%1</pre>").arg(readme.toHtmlEscaped());
    }
    return html;
}

void SkinDetails::render() {
    const int scrolled = verticalScrollBar()->value();
    document()->setDefaultStyleSheet(
        QStringLiteral(".faint { color: %1 } a { color: %2; text-decoration: none }")
            .arg(mixed(palette().color(QPalette::Text), palette().color(QPalette::Base)).name(),
                 palette().color(QPalette::Link).name()));
    QImage picture = m_picture;
    if (picture.isNull()) { // keeps its place
        picture = QImage(pictureSize, QImage::Format_ARGB32_Premultiplied);
        picture.fill(Qt::transparent);
    }
    // The document itself would scale it coarsely.
    picture =
        picture.scaled(shownSize() * devicePixelRatioF(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    document()->clear();
    document()->addResource(QTextDocument::ImageResource, QUrl(QStringLiteral("picture")), picture);
    setHtml(html());
    verticalScrollBar()->setValue(scrolled);
}

void SkinDetails::resizeEvent(QResizeEvent *event) {
    QTextBrowser::resizeEvent(event);
    if (event->size().width() != event->oldSize().width())
        m_renderSoon.start();
}

void SkinDetails::changeEvent(QEvent *event) {
    QTextBrowser::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        m_renderSoon.start();
}

} // namespace vantor
