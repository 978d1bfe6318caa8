#include "SkinLibrary/Ingest/FolderScanner.h"

#include "Platform/NativePath.h"
#include "tests/SkinLibrary/LibraryFixture.h"

#include <QDir>

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::test;

namespace {

/// Relative to the folder, ascending.
QList<QByteArray> listed(const TestFolder &folder, const char *name) {
    const QUrl url = QUrl::fromLocalFile(folder.path(name));
    QList<QByteArray> paths;
    for (const FileStamp &stamp : FolderScanner::list(url, {QStringLiteral("wsz")}))
        paths.append(NativePath::bytes(stamp.path.mid(FolderScanner::realPath(url).size() + 1)));
    std::ranges::sort(paths);
    return paths;
}

SkinLibraryError unreadable(const char *reason) {
    return SkinLibraryError::folderUnreadable(QString::fromUtf8(reason));
}

} // namespace

TEST(FolderScanner, ListsArchives) {
    const TestFolder folder;
    for (const char *name : {"skins/b.wsz", "skins/LOUD.WSZ", "skins/x/y/deep.wsz", "skins/wsz",
                             "skins/a.zip", "skins/.hidden.wsz", "skins/.git/a.wsz", "skins/Some.App/a.wsz",
                             "skins/dir.wsz/in.wsz", "other/secret.zip"})
        folder.write(name, "12345");
    const QByteArray root = folder.path("skins").toUtf8();
    ASSERT_EQ(symlink("x/y/deep.wsz", (root + "/inside.wsz").constData()), 0);
    ASSERT_EQ(symlink("nowhere", (root + "/broken.wsz").constData()), 0);
    ASSERT_EQ(symlink("../other", (root + "/folder.wsz").constData()), 0);
    ASSERT_EQ(symlink("../other/secret.zip", (root + "/unwanted.zip").constData()), 0);
    ASSERT_EQ(mkfifo((root + "/pipe.wsz").constData(), 0600), 0);
    ASSERT_TRUE(QFile::copy(folder.path("skins/b.wsz"), folder.path("skins/c")));
    ASSERT_EQ(rename((root + "/c").constData(), (root + "/Bl\xE5\xFF.wsz").constData()), 0);
    ASSERT_EQ(symlink("skins", (folder.path("link").toUtf8()).constData()), 0);

    const QList<QByteArray> expected{"Bl\xE5\xFF.wsz", "LOUD.WSZ", "b.wsz", "dir.wsz/in.wsz", "x/y/deep.wsz"};
    EXPECT_EQ(listed(folder, "skins"), expected);
    EXPECT_EQ(listed(folder, "link"), expected);
    unlink((root + "/Bl\xE5\xFF.wsz").constData()); // Qt, which removes the rest, cannot spell it
    EXPECT_EQ(FolderScanner::stamp(folder.path("link/b.wsz")).path,
              FolderScanner::realPath(QUrl::fromLocalFile(folder.path("skins"))) + QStringLiteral("/b.wsz"));
}

TEST(FolderScanner, FailsRatherThanForgetSkins) {
    const TestFolder folder;
    folder.write("skins/a.wsz", "1");
    folder.write("skins-of-others/b.wsz", "1");
    folder.write("locked/c.wsz", "1");
    EXPECT_EQ(errorOf([&] { (void)listed(folder, "skins/a.wsz"); }), unreadable("not a folder"));
    EXPECT_EQ(errorOf([&] { (void)listed(folder, "missing"); }), unreadable("not a folder"));

    chmod(qPrintable(folder.path()), 0755);
    chmod(qPrintable(folder.path("locked")), 0);
    {
        const OrdinaryUser user;
        EXPECT_EQ(errorOf([&] { (void)listed(folder, "locked"); }), unreadable("cannot enumerate"));
    }
    chmod(qPrintable(folder.path("locked")), 0755);

    ASSERT_EQ(symlink("../skins-of-others/b.wsz", qPrintable(folder.path("skins/link.wsz"))), 0);
    EXPECT_EQ(errorOf([&] { (void)listed(folder, "skins"); }),
              unreadable("unexpected path outside the folder"));
}
