#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

namespace vantor::test {

/// A folder of its own for each test.
class FolderFixture : public testing::Test {
  protected:
    [[nodiscard]] QUrl url(const QString &name) const { return QUrl::fromLocalFile(m_folder.filePath(name)); }
    QUrl write(const QString &name, const QByteArray &bytes) const {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        return url(name);
    }
    [[nodiscard]] QByteArray read(const QString &name) const {
        QFile file(m_folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }
    void makeFolder(const QString &name) const { EXPECT_TRUE(QDir(m_folder.path()).mkpath(name)); }

    QTemporaryDir m_folder;
};

} // namespace vantor::test
