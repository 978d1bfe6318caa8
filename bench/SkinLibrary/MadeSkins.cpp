#include "tests/Support/SkinCollection.h"

#include <QFile>

#include <cstdio>

// made-skins <folder> <count>: fills a folder with skins made in code, for trying the library by hand.
int main(int argc, char **argv) {
    if (argc != 3) {
        std::fputs("usage: made-skins <folder> <count>\n", stderr);
        return 2;
    }
    vantor::test::SkinCollection().write(QFile::decodeName(argv[1]), 0, QByteArray(argv[2]).toInt());
    return 0;
}
