#include "Vantor/Museum/OwnedSkins.h"

#include "Platform/NativePath.h"
#include "SkinBrowser/IndexAnswer.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/SkinSwitcher.h"

#include <QFileInfo>

namespace vantor {

OwnedSkins::OwnedSkins(SkinLibraryModel &library, SkinSwitcher &switcher, QObject *parent)
    : QObject(parent), m_switcher(switcher) {
    connect(&library, &SkinLibraryModel::contentChanged, this, &OwnedSkins::ask);
    connect(&library, &SkinLibraryModel::folderChanged, this, [this] {
        m_noted.clear();
        ask();
    });
}

const OwnedSkins::Skin *OwnedSkins::find(const QString &md5) const {
    const auto skin = m_known.constFind(md5);
    return skin != m_known.cend() ? &*skin : nullptr;
}

void OwnedSkins::watch(const QStringList &md5s) {
    m_md5s = md5s;
    ask();
}

void OwnedSkins::note(const QString &md5, const QUrl &file) {
    m_noted.insert(md5, file);
    if (!m_known.contains(md5))
        m_known.insert(md5, {.id = std::nullopt, .file = file});
    Q_EMIT changed();
}

void OwnedSkins::ask() {
    m_asksAgain = m_isAsking;
    if (m_isAsking)
        return;
    m_isAsking = true;
    using Skins = QHash<QString, Skin>;
    const auto question = [md5s = m_md5s, noted = m_noted](SkinIndexStore &store) {
        Skins skins;
        for (auto file = noted.cbegin(); file != noted.cend(); ++file) {
            if (QFileInfo::exists(file->toLocalFile()))
                skins.insert(file.key(), {.id = std::nullopt, .file = *file});
        }
        const QHash<QString, SkinRecord> records = store.skins(md5s);
        for (auto record = records.cbegin(); record != records.cend(); ++record) {
            if (!record->primaryPath.isEmpty())
                skins.insert(record.key(), {.id = record->id,
                                            .file = NativePath::url(record->primaryPath),
                                            .isBroken = record->status == SkinStatus::failed});
        }
        return skins;
    };
    const auto done = [this] {
        m_isAsking = false;
        if (m_asksAgain)
            ask();
    };
    whenAnswered(
        *this, m_switcher.reader().ask<Skins>(question),
        [this, done, asked = m_noted](const Skins &skins) {
            m_known = skins;
            for (auto file = m_noted.begin(); file != m_noted.end();) {
                const bool isIndexed = skins.contains(file.key()) && skins[file.key()].id;
                if (!isIndexed && asked.value(file.key()) != *file) // has come since
                    m_known.insert(file.key(), {.id = std::nullopt, .file = *file});
                file = isIndexed ? m_noted.erase(file) : std::next(file);
            }
            Q_EMIT changed();
            done();
        },
        [done](const SkinLibraryError &) { done(); }); // of which the library itself tells
}

QFuture<QUrl> OwnedSkins::locate(const QString &md5) {
    const std::function<QUrl(SkinIndexStore &)> question = [md5](SkinIndexStore &store) {
        const QString path = store.skins(QStringList{md5}).value(md5).primaryPath;
        const QUrl file = path.isEmpty() ? QUrl() : NativePath::url(path);
        return QFileInfo::exists(file.toLocalFile()) ? file : QUrl();
    };
    return m_switcher.reader().ask<QUrl>(question);
}

} // namespace vantor
