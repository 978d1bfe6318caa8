#include "Vantor/Model/SkinLoader.h"

#include "Platform/NativePath.h"
#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinLibrary/Ingest/SkinIngester.h"

#include <QFile>
#include <QFutureWatcher>
#include <QtConcurrentRun>

#include <variant>

namespace vantor {

namespace {

using Outcome = std::variant<Skin, QString>;

Outcome parse(const QUrl &url) {
    try {
        // A name in an old encoding is one that Qt's own file classes cannot spell.
        const QString path = NativePath::fromUrl(url);
        return path.isValidUtf16() ? SkinParser::parse(url) : SkinParser::parse(SkinIngester::archive(path));
    } catch (const SkinError &error) {
        return error.description();
    } catch (const std::bad_alloc &) {
        return SkinError::unreadableArchive(QStringLiteral("not enough memory")).description();
    }
}

} // namespace

Skin SkinLoader::defaultSkin() {
    QFile file(QStringLiteral(":/skins/default.wsz"));
    const bool opened = file.open(QIODevice::ReadOnly);
    Q_ASSERT(opened);
    return opened ? SkinParser::parse(SkinArchive::fromZip(file.readAll())) : Skin();
}

void SkinLoader::load(const QUrl &url) {
    const quint64 generation = ++m_newest;
    auto *watcher = new QFutureWatcher<Outcome>(this);
    connect(watcher, &QFutureWatcher<Outcome>::finished, this, [this, watcher, url, generation] {
        watcher->deleteLater();
        if (generation != m_newest)
            return;
        const Outcome outcome = watcher->result();
        if (const Skin *skin = std::get_if<Skin>(&outcome))
            Q_EMIT loaded(url, *skin);
        else
            Q_EMIT refused(url, std::get<QString>(outcome));
    });
    watcher->setFuture(QtConcurrent::run(parse, url));
}

} // namespace vantor
