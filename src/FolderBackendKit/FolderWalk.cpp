#include "FolderBackendKit/FolderWalk.h"

#include "AudioCore/Queue/AudioFileNames.h"
#include "MusicBackendKit/ArtistName.h"
#include "MusicBackendKit/MusicBackendError.h"
#include "Platform/FileTime.h"
#include "Platform/NativePath.h"

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>

namespace vantor {

namespace {

struct CloseFolder {
    void operator()(DIR *folder) const { closedir(folder); }
};

const QSet<QString> &imageExtensions() {
    static const QSet<QString> value{
        QStringLiteral("jpg"),  QStringLiteral("jpeg"), QStringLiteral("png"), QStringLiteral("gif"),
        QStringLiteral("webp"), QStringLiteral("bmp"),  QStringLiteral("tif"), QStringLiteral("tiff"),
    };
    return value;
}

/// Besides images, of what lies about in music folders.
const QSet<QString> &otherSidecarExtensions() {
    static const QSet<QString> value{
        QStringLiteral("txt"), QStringLiteral("nfo"),  QStringLiteral("cue"), QStringLiteral("log"),
        QStringLiteral("m3u"), QStringLiteral("m3u8"), QStringLiteral("pls"), QStringLiteral("pdf"),
        QStringLiteral("sfv"), QStringLiteral("md5"),  QStringLiteral("ini"), QStringLiteral("url"),
        QStringLiteral("db"),
    };
    return value;
}

QString extensionOf(const QString &name) {
    const qsizetype dot = name.lastIndexOf(u'.');
    return dot < 0 ? QString() : name.sliced(dot + 1).toLower();
}

/// In the order of these, names are in the order of their composed form's code points.
QByteArray orderOf(QByteArrayView bytes, const QString &name) {
    const bool isPlain = std::ranges::all_of(bytes, [](char c) { return c > 0; });
    if (isPlain || !name.isValidUtf16())
        return bytes.toByteArray();
    return name.normalized(QString::NormalizationForm_C).toUtf8();
}

MusicBackendError unreadable(const QByteArray &root) {
    return MusicBackendError::backend(QStringLiteral("The music folder “%1” can't be read.")
                                          .arg(FolderWalk::displayName(NativePath::text(root))));
}

/// None for what is neither a file nor a folder, such as a pipe, on which opening would wait.
std::optional<FolderWalk::Entry> entryOf(int folder, const dirent &item) {
    FolderWalk::Entry entry;
    entry.isDirectory = item.d_type == DT_DIR;
    if (entry.isDirectory)
        return entry;
    if (item.d_type != DT_REG && item.d_type != DT_LNK && item.d_type != DT_UNKNOWN)
        return std::nullopt;
    struct stat status;
    if (fstatat(folder, item.d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
        return std::nullopt;
    entry.isSymlink = S_ISLNK(status.st_mode);
    if (entry.isSymlink && fstatat(folder, item.d_name, &status, 0) != 0)
        return std::nullopt;
    entry.isDirectory = S_ISDIR(status.st_mode);
    if (!entry.isDirectory && !S_ISREG(status.st_mode))
        return std::nullopt;
    entry.size = status.st_size;
    entry.modified = modificationTime(status);
    return entry;
}

/// None when the folder could not be listed to its end.
std::optional<std::vector<FolderWalk::Entry>> sortedEntries(DIR *folder) {
    std::vector<std::pair<QByteArray, FolderWalk::Entry>> found;
    errno = 0;
    while (const dirent *item = readdir(folder)) {
        const QByteArrayView bytes(item->d_name);
        if (bytes.startsWith('.'))
            continue;
        if (auto entry = entryOf(dirfd(folder), *item)) {
            entry->name = NativePath::text(bytes);
            found.emplace_back(orderOf(bytes, entry->name), *std::move(entry));
        }
        errno = 0;
    }
    if (errno != 0)
        return std::nullopt;
    std::ranges::sort(found, [](const auto &a, const auto &b) {
        return std::tie(a.first, a.second.name) < std::tie(b.first, b.second.name);
    });
    std::vector<FolderWalk::Entry> entries;
    entries.reserve(found.size());
    for (auto &[order, entry] : found)
        entries.push_back(std::move(entry));
    return entries;
}

QString below(const QString &folder, const QString &name) {
    return folder.isEmpty() ? name : folder + u'/' + name;
}

} // namespace

/// While it lives, the walk is inside a folder.
class FolderWalk::Inside {
  public:
    Inside(FolderWalk &walk, Identity identity) : m_walk(walk) { m_walk.m_inside.push_back(identity); }
    ~Inside() { m_walk.m_inside.pop_back(); }
    Inside(const Inside &) = delete;
    Inside &operator=(const Inside &) = delete;

  private:
    FolderWalk &m_walk;
};

void FolderWalk::run(const QString &root, const std::stop_token &stop) {
    m_root = NativePath::bytes(root);
    m_stop = stop;
    const auto listing = list({}, false);
    if (!listing)
        throw unreadable(m_root);
    const Inside inside(*this, listing->identity);
    std::vector<FolderArtwork::Image> unused;
    std::optional<int> unknownAlbum;
    for (const Entry &entry : listing->entries) {
        if (m_stop.stop_requested())
            return;
        if (entry.isDirectory) {
            walkArtist(entry.name, entry.isSymlink);
        } else if (AudioFileNames::isAudioFile(entry.name)) {
            if (!unknownAlbum) {
                artists.push_back({unknownArtistKey(), ArtistName::unknown(), ArtistName::unknown(), {}});
                unknownAlbum = addAlbum({.id = unknownAlbumKey(),
                                         .title = QStringLiteral("Unknown Album"),
                                         .artistKey = unknownArtistKey(),
                                         .synthetic = true});
            }
            addJob(entry, entry.name, *unknownAlbum, std::nullopt);
        } else {
            noteOther(entry, entry.name, unused);
        }
    }
    // A disk that was pulled out looks like a folder that was emptied.
    struct stat after;
    if (stat(m_root.constData(), &after) != 0 || Identity(after.st_dev, after.st_ino) != listing->identity)
        throw unreadable(m_root);
}

std::optional<FolderWalk::Listing> FolderWalk::list(const QString &relativePath, bool isLink) {
    const QByteArray path = m_root + '/' + NativePath::bytes(relativePath);
    const int descriptor = open(path.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    const std::unique_ptr<DIR, CloseFolder> folder(descriptor < 0 ? nullptr : fdopendir(descriptor));
    struct stat status;
    if (!folder || fstat(descriptor, &status) != 0) {
        skipFolder(relativePath);
        return std::nullopt;
    }
    const Identity identity(status.st_dev, status.st_ino);
    if (std::ranges::find(m_inside, identity) != m_inside.end())
        return std::nullopt;
    if (isLink && !m_followed.insert(identity).second)
        return std::nullopt;
    auto entries = sortedEntries(folder.get());
    if (!entries) {
        skipFolder(relativePath);
        return std::nullopt;
    }
    return Listing{identity, *std::move(entries)};
}

void FolderWalk::walkArtist(const QString &folder, bool isLink) {
    const auto listing = list(folder, isLink);
    if (!listing)
        return;
    const Inside inside(*this, listing->identity);
    const QString name = displayName(folder);
    Artist artist{identifier(folder), name, sortName(name), {}};
    std::optional<int> singles;
    for (const Entry &entry : listing->entries) {
        const QString path = below(folder, entry.name);
        if (entry.isDirectory) {
            const auto [title, year] = parseAlbumFolder(displayName(entry.name));
            const int album = addAlbum({.id = identifier(path),
                                        .title = title,
                                        .year = year,
                                        .artistKey = artist.key,
                                        .folderPath = path});
            walkAlbum(path, entry.isSymlink, album, std::nullopt, false);
        } else if (AudioFileNames::isAudioFile(entry.name)) {
            if (!singles)
                singles = addAlbum({.id = artist.key + u'/', // as no folder's path ends
                                    .title = QStringLiteral("Singles"),
                                    .artistKey = artist.key,
                                    .synthetic = true,
                                    .folderPath = folder});
            addJob(entry, path, *singles, std::nullopt);
        } else {
            noteOther(entry, path, artist.images);
        }
    }
    if (singles)
        albums[static_cast<std::size_t>(*singles)].images = artist.images;
    artists.push_back(std::move(artist));
}

void FolderWalk::walkAlbum(const QString &folder, bool isLink, int album, std::optional<int> disc,
                           bool isNested) {
    const auto listing = list(folder, isLink);
    if (!listing)
        return;
    const Inside inside(*this, listing->identity);
    std::vector<FolderArtwork::Image> images;
    for (const Entry &entry : listing->entries) {
        if (m_stop.stop_requested())
            return;
        const QString path = below(folder, entry.name);
        if (entry.isDirectory) {
            const auto own = discNumber(displayName(entry.name));
            walkAlbum(path, entry.isSymlink, album, own ? own : disc, true);
        } else if (AudioFileNames::isAudioFile(entry.name)) {
            addJob(entry, path, album, disc);
        } else {
            noteOther(entry, path, images);
        }
    }
    Album &found = albums[static_cast<std::size_t>(album)];
    if (!isNested)
        found.images = std::move(images);
    else if (!found.nestedImage)
        found.nestedImage = FolderArtwork::best(images);
}

int FolderWalk::addAlbum(const Album &album) {
    albums.push_back(album);
    return static_cast<int>(albums.size() - 1);
}

void FolderWalk::addJob(const Entry &entry, const QString &path, int album, std::optional<int> disc) {
    if (jobs.size() < maxJobs)
        jobs.push_back({path, album, disc, entry.size, entry.modified});
}

void FolderWalk::noteOther(const Entry &entry, const QString &path,
                           std::vector<FolderArtwork::Image> &images) {
    const QString extension = extensionOf(entry.name);
    if (imageExtensions().contains(extension))
        images.push_back({path, entry.modified});
    else if (!otherSidecarExtensions().contains(extension))
        skip(path, QStringLiteral("not an audio file"));
}

void FolderWalk::skipFolder(const QString &path) {
    ++unreadableFolders;
    skip(path, QStringLiteral("can't be read"));
}

void FolderWalk::skip(const QString &path, const QString &reason) {
    ++skippedCount;
    if (skipped.size() < maxSkipped)
        skipped.push_back({path, reason});
}

} // namespace vantor
