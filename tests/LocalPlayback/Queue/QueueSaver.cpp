#include "LocalPlayback/Queue/QueueStore.h"
#include "tests/LocalPlayback/Queue/MadeQueue.h"

#include <QFile>

#include <cstdio>

using namespace vantor;

// queue-saver <file> <first> <second>: saves queues of two lengths in turn until it is killed. Says when the
// first is there.
int main(int argc, char **argv) {
    if (argc != 4)
        return 2;
    const QueueStore store(QUrl::fromLocalFile(QFile::decodeName(argv[1])));
    const QueueSnapshot first = test::madeQueue(QByteArray(argv[2]).toInt());
    const QueueSnapshot second = test::madeQueue(QByteArray(argv[3]).toInt());
    store.save(first);
    std::puts("saved");
    std::fflush(stdout);
    for (;;) {
        store.save(second);
        store.save(first);
    }
}
