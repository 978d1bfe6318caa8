#include "MusicBackendKit/RadioURLInput.h"

#include <gtest/gtest.h>

using namespace vantor;

TEST(RadioURLInputTest, Parse) {
    struct Row {
        QString url;
        QString name;
        std::optional<RadioURLInput> expected;
    };
    const auto with = [](const QString &url, const QString &name) { return RadioURLInput{url, name}; };
    const Row rows[] = {
        {u" http://Radio.Example/a;b?c=d \n"_qs, u" \t"_qs,
         with(u"http://Radio.Example/a;b?c=d"_qs, u"Radio.Example"_qs)},
        {u"HTTPS://user:p@host.example:8000/"_qs,
         {},
         with(u"HTTPS://user:p@host.example:8000/"_qs, u"host.example"_qs)},
        {u"http://[::1]:8000"_qs, {}, with(u"http://[::1]:8000"_qs, u"[::1]"_qs)},
        {u"http://[::1]?x"_qs, {}, with(u"http://[::1]?x"_qs, u"[::1]"_qs)},
        {u"http://bücher.example#a@b"_qs, {}, with(u"http://bücher.example#a@b"_qs, u"bücher.example"_qs)},
        {u"https://h"_qs, u" My Station "_qs, with(u"https://h"_qs, u"My Station"_qs)},
        {u"ftp://host/x"_qs, u"n"_qs, {}},
        {u"host/x"_qs, u"n"_qs, {}},
        {u"http:host"_qs, u"n"_qs, {}},
        {u"http:///x"_qs, u"n"_qs, {}},
        {u"http://:80/x"_qs, u"n"_qs, {}},
        {u"http://ho st/x"_qs, u"n"_qs, {}},
        {u"http://host/a b"_qs, u"n"_qs, {}},
        {u"http://host/a\u00a0b"_qs, u"n"_qs, {}},
        {u"http://host:0/"_qs, u"n"_qs, {}},
        {u"http://host:65536/"_qs, u"n"_qs, {}},
        {u"http://host:80x/"_qs, u"n"_qs, {}},
        {u"http://host:-1/"_qs, u"n"_qs, {}},
        {u"http://[::1/"_qs, u"n"_qs, {}},
        {u"http://"_qs, u"n"_qs, {}},
        {QString(), u"n"_qs, {}},
    };
    for (const Row &row : rows)
        EXPECT_EQ(RadioURLInput::parse(row.url, row.name), row.expected) << row.url.toStdString();
}
