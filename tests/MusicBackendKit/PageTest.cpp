#include "MusicBackendKit/Page.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(PageTest, WhetherThereIsMore) {
    struct Row {
        const char *name;
        int items;
        PageRequest request;
        std::optional<int> total;
        std::optional<int> next;
    };
    const Row rows[] = {
        {"a full page", 100, PageRequest::first(), {}, 100},
        {"a short page", 99, PageRequest::first(), {}, {}},
        {"more than asked for", 7, {20, 5}, {}, 27},
        {"an empty page", 0, {100, 0}, {}, {}},
        {"the total is reached", 5, {10, 5}, 15, {}},
        {"a short page before the total", 3, {10, 5}, 15, 13},
        {"an empty page before the total", 0, {10, 5}, 15, {}},
        {"a full page behind the total", 5, {10, 5}, 12, {}},
    };
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const auto page = Page<int>::make(QList<int>(row.items), row.request, row.total);
        EXPECT_EQ(page.nextOffset, row.next);
        EXPECT_EQ(page.next(9), row.next ? std::optional(PageRequest{*row.next, 9}) : std::nullopt);
        EXPECT_EQ(page.offset, row.request.offset);
        EXPECT_EQ(page.total, row.total);
    }
    const auto last = Page<int>::last({4, 5});
    EXPECT_EQ(last, (Page<int>{{4, 5}, 0, 2, std::nullopt}));
    EXPECT_FALSE(last.hasMore());
}
