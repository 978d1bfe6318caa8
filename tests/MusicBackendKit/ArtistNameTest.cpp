#include "MusicBackendKit/ArtistName.h"

#include "MusicBackendKit/ArtistGroup.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(ArtistNameTest, Clean) {
    const std::pair<QString, QString> rows[] = {
        {u"  Two \t\n Words ; ; "_qs, u"Two Words"_qs},
        {u"\u3000Two\u00a0\u2003Words\u2028;\u0085"_qs, u"Two Words"_qs},
        {u"Semi; Colon"_qs, u"Semi; Colon"_qs},
        {u" ;;\n"_qs, QString()},
        {QString(), QString()},
    };
    for (const auto &[name, expected] : rows)
        EXPECT_EQ(ArtistName::clean(name), expected) << name.toStdString();
    EXPECT_EQ(ArtistName::display(u" ; "_qs), u"Unknown Artist"_qs);
}

TEST(ArtistNameTest, NamesOfOneArtistHaveOneKey) {
    const std::vector<QStringList> artists{
        {u"Simon and Garfunkel"_qs, u"Simon & Garfunkel"_qs, u"SIMON&GARFUNKEL;"_qs,
         u"simon AND  garfunkel"_qs},
        {u"Beyoncé"_qs, u"Beyoncé;"_qs, u"BEYONCE\u0301"_qs},
        {u"Beyonce"_qs}, // an accent is another name
        {u"Ａｎｎ ９"_qs, u"ann 9"_qs},
        {u"ｶﾞｶﾞ"_qs, u"ガガ"_qs},
        {u"Weiß"_qs, u"WEISS"_qs},
        {u"Σίσυφος"_qs, u"ΣΊΣΥΦΟΣ"_qs},
        {u"Issiz"_qs, u"ISSIZ"_qs},
        {u"Issız"_qs},
        {u"Sandy Andy"_qs}, // a word within words
        {u"S&y &y"_qs},
        {u"<Unknown>"_qs, u"<unknown>;"_qs},
        {QString(), u" ;"_qs},
    };
    QSet<QString> keys;
    for (const QStringList &names : artists) {
        const QString key = ArtistName::key(names.first());
        for (const QString &name : names)
            EXPECT_EQ(ArtistName::key(name), key) << name.toStdString();
        EXPECT_FALSE(keys.contains(key)) << names.first().toStdString();
        keys.insert(key);
    }
    EXPECT_TRUE(keys.contains(QString()));
    EXPECT_FALSE(keys.contains(ArtistGroup::unknownID()));
}

namespace {

LibraryArtist artist(const char *id, const QString &name, std::optional<ArtworkRef> artwork = {}) {
    return {{MediaKind::artist, QString::fromUtf8(id)}, name, name + u" (sort)"_qs, artwork, {}};
}

} // namespace

TEST(ArtistGrouperTest, GroupsPagesAsTheyCome) {
    const LibraryArtist ann = artist("1", u"Ann and Bo;"_qs);
    const LibraryArtist bo = artist("2", u"Bo"_qs);
    const LibraryArtist pictured = artist("3", u"ANN & BO"_qs, ArtworkRef{u"picture"_qs});
    const LibraryArtist other = artist("4", u"ann & bo"_qs, ArtworkRef{u"other"_qs});
    const LibraryArtist nameless = artist("5", u" ; "_qs);
    const LibraryArtist unknown = artist("6", u"<unknown>"_qs);

    ArtistGrouper grouper;
    EXPECT_EQ(grouper.add({ann, bo, ann}), (QSet<QString>{u"ann & bo"_qs, u"bo"_qs}));
    EXPECT_EQ(grouper.add({pictured, other, bo}), QSet<QString>{u"ann & bo"_qs});
    EXPECT_EQ(grouper.add({ann, bo, pictured, other}), QSet<QString>());
    grouper.add({nameless, unknown});

    const ArtistGroup expected{
        u"ann & bo"_qs, u"Ann and Bo"_qs, ann.sortName, {ann, pictured, other}, pictured.artwork};
    ASSERT_EQ(grouper.groups().size(), 4);
    EXPECT_EQ(grouper.groups()[0], expected);
    EXPECT_TRUE(expected.isMerged());
    EXPECT_EQ(expected.memberIDs(), (QList<MediaID>{ann.id, pictured.id, other.id}));
    EXPECT_EQ(grouper.groups()[2].id, ArtistGroup::unknownID());
    EXPECT_EQ(grouper.groups()[2].name, u"Unknown Artist"_qs);
    EXPECT_EQ(grouper.groups()[3].name, u"<unknown>"_qs);

    EXPECT_EQ(grouper.group(other.id), expected);
    EXPECT_EQ(ArtistGrouper::group({ann, bo, pictured, other}).first(), expected);
    grouper.removeAll();
    EXPECT_FALSE(grouper.group(other.id));
    EXPECT_EQ(grouper.add({ann}).size(), 1);
}
