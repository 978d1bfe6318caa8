#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace vantor::test {

/// Makes skin archives by the thousand, each different and about as large as common ones (90 KiB). Sheets are
/// drawn and deflated once and then shared out, so that the disk sets the pace. The same number always gives
/// the same archive.
class SkinCollection {
  public:
    SkinCollection();

    /// Of every twenty, one is a copy of another one; of every fifty, one lacks sheets and one is broken.
    [[nodiscard]] QByteArray archive(int number) const;
    /// "Amber Harbour 00017": two words that some others share.
    [[nodiscard]] static QString name(int number);
    /// A few dozen words.
    [[nodiscard]] static QString readme(int number);

    /// Writes the archives from `first` on, in subfolders of 250.
    void write(const QString &folder, int first, int count) const;

  private:
    struct Entry {
        QByteArray name;
        QByteArray packed;
        quint32 crc = 0;
        qsizetype size = 0;
    };
    static Entry deflated(const QByteArray &name, const QByteArray &bytes);
    static QByteArray zip(const std::vector<const Entry *> &entries);

    std::vector<std::vector<Entry>> m_sheets; ///< by sheet, its variants
    std::vector<Entry> m_others;
};

} // namespace vantor::test
