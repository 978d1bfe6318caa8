#pragma once

#include <QByteArray>
#include <QString>

#include <vector>

namespace vantor::test {

/// A skin file made in code and what skintool says to it.
struct SampleSkin {
    QString name; ///< of the file
    QByteArray bytes;
    int exitCode = 0;
    int warnings = 0;
    int fallbacks = 0;
};

/// Every depth and compression of bitmaps, missing and odd sheets, texts, cursors, and refused files.
[[nodiscard]] std::vector<SampleSkin> sampleSkins();

} // namespace vantor::test
