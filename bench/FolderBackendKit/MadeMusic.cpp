#include "tests/Support/MusicFiles.h"

#include <QFile>

#include <cstdio>
#include <exception>

// made-music <folder> <count>: fills a folder with tagged audio files made in code, for trying the library by
// hand.
int main(int argc, char **argv) {
    if (argc != 3) {
        std::fputs("usage: made-music <folder> <count>\n", stderr);
        return 2;
    }
    try {
        vantor::test::MusicFiles().writeCollection(QFile::decodeName(argv[1]), QByteArray(argv[2]).toInt());
    } catch (const std::exception &error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
    return 0;
}
