#pragma once

#include "FolderBackendKit/FolderArtwork.h"
#include "FolderBackendKit/FolderIndex.h"

#include <set>
#include <stop_token>

namespace vantor {

/// One walk over a music folder, which makes artists of the folders in it, albums of the folders in those and
/// a job of every audio file. Opens folders only, no file.
///
/// What is hidden (its name begins with a dot) is passed over. A link to a folder is followed, but never in a
/// circle, and of several links to one folder only the first counts. Any thread; one run.
class FolderWalk {
  public:
    /// One directory entry. A link is described as what it leads to.
    struct Entry {
        QString name; ///< in NativePath's form
        bool isDirectory = false;
        bool isSymlink = false;
        qint64 size = 0;     ///< bytes; of files
        double modified = 0; ///< seconds since 1970; of files
    };
    struct Artist {
        QString key;
        QString name;
        QString sortName;
        std::vector<FolderArtwork::Image> images; ///< directly in the artist's folder
    };
    struct Album {
        QString id;
        QString title;
        std::optional<int> year = {};
        QString artistKey;
        bool synthetic = false;                        ///< no folder stands for it
        QString folderPath = {};                       ///< relative
        std::vector<FolderArtwork::Image> images = {}; ///< directly in the album's folder
        std::optional<FolderArtwork::Image> nestedImage = {};
    };
    /// One audio file to read.
    struct Job {
        QString relativePath;
        int album = 0; ///< its place in albums
        std::optional<int> disc;
        qint64 fileSize = 0;
        double modified = 0;
    };

    /// For files that lie too high in the tree. No folder has these, hidden as it would be.
    static QString unknownArtistKey() { return QStringLiteral("."); }
    static QString unknownAlbumKey() { return QStringLiteral("./"); }

    /// In the order of the walk: that of the code points of the composed names. Some may have no jobs.
    std::vector<Artist> artists;
    std::vector<Album> albums;
    std::vector<Job> jobs;
    std::vector<FolderSkippedFile> skipped; ///< the first of them, as bounded by maxSkipped
    int skippedCount = 0;                   ///< all of them
    int unreadableFolders = 0;              ///< among them

    static constexpr std::size_t maxJobs = 1'000'000;
    static constexpr std::size_t maxSkipped = 10'000;

    /// Fills the lists. Returns early, with a part of them, when told to stop. Throws MusicBackendError when
    /// the folder cannot be listed or is another one in the end than in the beginning.
    void run(const QString &root, const std::stop_token &stop = {});

    /// Title and year.
    [[nodiscard]] static std::pair<QString, std::optional<int>> parseAlbumFolder(const QString &name);
    [[nodiscard]] static std::optional<int> discNumber(const QString &name);
    [[nodiscard]] static QString sortName(const QString &name);
    /// A file's or folder's name for the eye: composed, without blanks around it, and of a foreign encoding
    /// made the best of.
    [[nodiscard]] static QString displayName(const QString &name);
    /// The identifier of what has this relative path; sound text whatever the path is.
    [[nodiscard]] static QString identifier(const QString &relativePath);

  private:
    using Identity = std::pair<quint64, quint64>; ///< device and inode
    struct Listing {
        Identity identity;
        std::vector<Entry> entries; ///< sorted
    };
    class Inside;

    /// None when it may not be entered or cannot be read, which is noted.
    [[nodiscard]] std::optional<Listing> list(const QString &relativePath, bool isLink);
    void walkArtist(const QString &folder, bool isLink);
    void walkAlbum(const QString &folder, bool isLink, int album, std::optional<int> disc, bool isNested);
    int addAlbum(const Album &album);
    void addJob(const Entry &entry, const QString &path, int album, std::optional<int> disc);
    /// What is no audio file. The images among them are put into `images`.
    void noteOther(const Entry &entry, const QString &path, std::vector<FolderArtwork::Image> &images);
    void skip(const QString &path, const QString &reason);
    void skipFolder(const QString &path);

    QByteArray m_root;
    std::stop_token m_stop;
    std::vector<Identity> m_inside; ///< the folders from the root down to the present one
    std::set<Identity> m_followed;  ///< where links have led
};

} // namespace vantor
