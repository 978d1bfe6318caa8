#pragma once

#include "SkinKit/Sprites/SkinSprites.h"
#include "SkinLibrary/Index/SkinIndexStore.h"
#include "SkinLibrary/SkinLibraryError.h"
#include "tests/Support/BitmapBuilder.h"
#include "tests/Support/TestFolder.h"
#include "tests/Support/ZipBuilder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <ostream>

namespace vantor {

inline void PrintTo(const SkinLibraryError &error, std::ostream *out) {
    *out << error.what();
}

namespace test {

/// A whole skin of tiny sheets; different numbers give different bytes.
inline QByteArray soundSkin(int number, const QByteArray &readme = "Read me.") {
    std::vector<ZipEntry> entries{{"readme.txt", readme + QByteArray::number(number)}};
    for (const QString &sheet : SkinSprites::sheets().keys())
        entries.push_back({sheet.toLower().toLatin1() + ".bmp", solidBMP(2, 2, {1, 2, 3})});
    return zipFile(entries);
}

/// The error that `action` throws, if it does.
template <class Action>
std::optional<SkinLibraryError> errorOf(Action action) {
    try {
        action();
    } catch (const SkinLibraryError &error) {
        return error;
    }
    return std::nullopt;
}

/// Takes the administrator's rights away for a scope, which would open every file.
class OrdinaryUser {
  public:
    OrdinaryUser() {
        if (geteuid() == 0)
            m_wasRoot = seteuid(65'534) == 0;
    }
    ~OrdinaryUser() {
        if (m_wasRoot)
            (void)!seteuid(0);
    }
    OrdinaryUser(const OrdinaryUser &) = delete;
    OrdinaryUser &operator=(const OrdinaryUser &) = delete;

  private:
    bool m_wasRoot = false;
};

/// An index in a folder of its own.
struct LibraryFixture {
    TestFolder folder;
    QUrl url = QUrl::fromLocalFile(folder.path("library/index.sqlite"));
    std::unique_ptr<SkinIndexStore> store = SkinIndexStore::open(url);

    [[nodiscard]] QUrl skins() const { return QUrl::fromLocalFile(folder.path("skins")); }

    /// The first column of the first row, over a connection of its own.
    [[nodiscard]] QString ask(const char *sql) const {
        SQLiteDatabase database(url);
        auto query = database.temporaryStatement(sql);
        return query.step() ? query.text(0) : QString();
    }
};

inline ParsedSkin parsedSkin(const char *path, const char *content, const QString &readme = {}) {
    return {{QString::fromUtf8(path), 10, 1.5},
            SkinContentHash::digests(content),
            {readme, SkinStatus::partial, {QStringLiteral("Missing a"), QStringLiteral("Missing b")}}};
}

} // namespace test
} // namespace vantor
