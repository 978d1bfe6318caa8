#include "tests/skintool/SampleSkins.h"

#include <QDir>
#include <QFile>

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fputs("usage: sample-skins <folder>\n", stderr);
        return 2;
    }
    const QDir folder(QFile::decodeName(argv[1]));
    if (!folder.mkpath(QStringLiteral(".")))
        return 1;
    for (const vantor::test::SampleSkin &skin : vantor::test::sampleSkins()) {
        QFile file(folder.filePath(skin.name));
        if (!file.open(QIODevice::WriteOnly) || file.write(skin.bytes) != skin.bytes.size())
            return 1;
    }
    return 0;
}
