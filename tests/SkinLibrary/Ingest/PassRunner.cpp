#include "SkinLibrary/Ingest/SkinIndexer.h"

#include <QFile>

using namespace vantor;

// pass-runner <index> <folder> <other folder>: passes over the two folders in turn, so that each one adds and
// removes skins, until it is killed.
int main(int argc, char **argv) {
    if (argc != 4)
        return 2;
    const auto url = [&](int index) { return QUrl::fromLocalFile(QFile::decodeName(argv[index])); };
    const auto store = SkinIndexStore::open(url(1));
    for (;;) {
        for (const int folder : {2, 3})
            SkinIndexer(url(folder), *store, {}, SkinIngester::parserVersion, 2, 8).run();
    }
}
