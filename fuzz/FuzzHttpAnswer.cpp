#include "AudioCore/Network/HttpParsing.h"
#include "AudioCore/Network/IcyProtocol.h"

#include <cstdlib>

using namespace vantor;

// The first byte chooses the distance between blocks of metadata; the rest is what a server sends.
// -max_len=4096.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const QByteArray bytes(reinterpret_cast<const char *>(data) + 1, static_cast<qsizetype>(size - 1));
    const auto head = HttpParsing::parseHead(bytes);
    if (!head || head->status == 0)
        return 0;
    if (head->length <= 0 || head->length > bytes.size())
        std::abort();

    HttpParsing::Body body(*head);
    IcyProtocol::Filter filter(data[0]);
    qsizetype taken = 0;
    QByteArrayView rest = QByteArrayView(bytes).sliced(head->length);
    while (!rest.isEmpty()) {
        const qsizetype before = rest.size();
        QByteArrayView piece = body.take(rest);
        if (rest.size() >= before)
            std::abort();
        while (!piece.isEmpty()) {
            taken += filter.take(piece).size();
            const std::optional<QString> title = filter.takeTitle();
            if (title && title->size() > 1024)
                std::abort();
        }
    }
    if (taken > bytes.size())
        std::abort();
    return 0;
}
