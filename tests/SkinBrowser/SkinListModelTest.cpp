#include "SkinBrowser/SkinListModel.h"

#include "tests/SkinLibrary/LibraryFixture.h"

#include <QAbstractItemModelTester>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace vantor;
using namespace vantor::test;

namespace {

/// An index of skins called "00000", "00002" … and a model of it.
class SkinListModelTest : public testing::Test, protected LibraryFixture {
  protected:
    void add(int first, int count, int step = 2) {
        std::vector<IngestOutcome> outcomes;
        for (int i = 0; i < count; ++i) {
            const QByteArray name = QByteArray::number(first + i * step).rightJustified(5, '0');
            outcomes.push_back(parsedSkin("/s/" + name + ".wsz", name, QStringLiteral("A read-me")));
            if (i % 10 == 0)
                std::get<ParsedSkin>(outcomes.back()).inspection.status = SkinStatus::failed;
        }
        store->apply(outcomes, 1);
    }
    template <class Condition>
    [[nodiscard]] static bool waitFor(Condition condition) {
        const QDeadlineTimer deadline(5000);
        while (!condition() && !deadline.hasExpired())
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return condition();
    }
    void query(const SkinQuery &query) {
        QSignalSpy queried(&model, &SkinListModel::queried);
        model.setQuery(query);
        ASSERT_TRUE(waitFor([&] { return !queried.isEmpty(); }));
    }
    void refresh() {
        QSignalSpy renewed(&model, &SkinListModel::renewed);
        model.refresh();
        ASSERT_TRUE(waitFor([&] { return !renewed.isEmpty(); }));
    }
    /// The name in a row, or nothing when it is not there at once.
    [[nodiscard]] QString nameAt(int row) { return model.index(row).data().toString(); }
    [[nodiscard]] QString awaitedName(int row) {
        return waitFor([&] { return !nameAt(row).isEmpty(); }) ? nameAt(row) : QString();
    }

    SkinListModel model{url};
    QAbstractItemModelTester tester{&model, QAbstractItemModelTester::FailureReportingMode::Fatal};
};

QString name(int number) {
    return QStringLiteral("%1").arg(number, 5, 10, QLatin1Char('0'));
}

} // namespace

TEST_F(SkinListModelTest, ReadsPagesAsTheyComeIntoViewAndKeepsTheNearest) {
    add(0, 5000);
    query({});
    ASSERT_EQ(model.rowCount(), 5000);
    EXPECT_EQ(nameAt(0), name(0)); // the first page comes with the query
    QSignalSpy changed(&model, &SkinListModel::dataChanged);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(nameAt(2345), QString());
    EXPECT_EQ(awaitedName(2345), name(4690));
    EXPECT_EQ(changed.size(), 1); // however often it was asked for
    EXPECT_FALSE(model.record(model.index(2345))->readme);

    for (int row = 0; row < 5000; row += SkinListModel::pageSize) {
        model.setInView(row, row + 20);
        EXPECT_EQ(awaitedName(row), name(2 * row));
    }
    EXPECT_EQ(nameAt(4900 - 20 * SkinListModel::pageSize), name(2 * 2900)); // still kept
    EXPECT_EQ(nameAt(100), QString());
    EXPECT_EQ(awaitedName(100), name(200));
}

TEST_F(SkinListModelTest, ANewQueryEndsTheReadingOfTheOneBefore) {
    add(0, 3000);
    query({});
    QSignalSpy queried(&model, &SkinListModel::queried);
    QSignalSpy reset(&model, &SkinListModel::modelReset);
    static_cast<void>(nameAt(1500));
    for (const char *text : {"00", "000", "0020", "00200"})
        model.setQuery({.text = QString::fromLatin1(text)});
    EXPECT_TRUE(model.isQuerying());
    EXPECT_EQ(model.rowCount(), 3000); // what was there stays until then
    EXPECT_EQ(nameAt(1), name(2));
    ASSERT_TRUE(waitFor([&] { return !queried.isEmpty(); }));
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(nameAt(0), name(200));
    query({.statuses = {SkinStatus::failed}});
    EXPECT_EQ(model.rowCount(), 300);
    EXPECT_EQ(model.index(0).data(Qt::AccessibleTextRole).toString(), name(0) + u", cannot be read"_qs);
    EXPECT_EQ(reset.size(), 2); // the questions in between were never answered
    EXPECT_EQ(model.problem(), QString());
}

TEST_F(SkinListModelTest, ARefreshKeepsHoldOfSkinsAndNotOfRows) {
    add(1000, 1000);
    query({});
    EXPECT_EQ(awaitedName(450), name(1900));
    model.setInView(440, 460);
    const QPersistentModelIndex inView(model.index(450));
    const QPersistentModelIndex selected(model.index(3)); // far out of view
    const QPersistentModelIndex trashed(model.index(5));

    add(901, 50);                                      // in front of all
    add(1011, 1);                                      // between the selected one and the view
    add(5000, 500);                                    // behind
    store->removeFile(QStringLiteral("/s/01010.wsz")); // the trashed one
    refresh();
    EXPECT_EQ(model.rowCount(), 1550);
    EXPECT_EQ(selected.row(), 53);
    EXPECT_EQ(inView.row(), 500);
    EXPECT_EQ(nameAt(500), name(1900)); // at once
    EXPECT_FALSE(trashed.isValid());

    // And back, to fewer rows than there were before the view.
    QStringList paths;
    for (int number = 1000; number < 1880; ++number)
        paths.append(u"/s/%1.wsz"_qs.arg(name(number)));
    store->removeFiles(paths);
    store->pruneOrphans();
    refresh();
    EXPECT_EQ(nameAt(inView.row()), name(1900));
    EXPECT_EQ(inView.row(), 60);
    EXPECT_FALSE(selected.isValid());
    model.closeIndex();
    store->reset();
    refresh();
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(inView.isValid());
}

TEST_F(SkinListModelTest, FindsTheRowOfASkin) {
    add(0, 1000);
    query({});
    QSignalSpy located(&model, &SkinListModel::located);
    const std::int64_t id = store->skinAtPath(QStringLiteral("/s/01500.wsz"))->id;
    model.locate(id);
    model.locate(99'999);
    ASSERT_TRUE(waitFor([&] { return located.size() == 2; }));
    EXPECT_EQ(located[0][1].value<std::optional<int>>(), 750);
    EXPECT_EQ(located[1][1].value<std::optional<int>>(), std::nullopt);
}

TEST_F(SkinListModelTest, SaysWhyTheIndexCannotBeReadAndReadsItOnceItCan) {
    add(0, 10);
    query({});
    model.closeIndex();
    store.reset();
    SQLiteDatabase(url).temporaryStatement("PRAGMA user_version = 9").step();
    query({});
    EXPECT_EQ(model.problem(), SkinLibraryError::incompatibleDatabase(9, 2).description());
    EXPECT_EQ(model.rowCount(), 0);
    model.closeIndex();
    store = SkinIndexStore::openAfresh(url);
    add(0, 3);
    query({});
    EXPECT_EQ(model.problem(), QString());
    EXPECT_EQ(model.rowCount(), 3);
}
