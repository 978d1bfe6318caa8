#include "SkinMuseum/Client/MuseumDownloader.h"
#include "SkinMuseum/MuseumError.h"
#include "SkinMuseum/Wire/MuseumPage.h"

#include <cstdlib>

using namespace vantor;

// The first byte chooses the question; the rest is what the museum answers. -max_len=4096.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    if (size == 0)
        return 0;
    const QByteArray body(reinterpret_cast<const char *>(data) + 1, static_cast<qsizetype>(size - 1));
    const int first = data[0] / 2 % 8 + 1;
    const MuseumQuery query = data[0] % 2 == 0 ? MuseumQuery::browse(true, first, 0)
                                               : MuseumQuery::search(QStringLiteral("x"), true, first, 0);
    try {
        const MuseumPage page = decodePage(body, query);
        if (page.skins.size() > first || page.total.value_or(0) < 0 ||
            page.total.value_or(0) > MuseumPage::maxTotal)
            std::abort();
        for (const MuseumSkin &skin : page.skins) {
            const QByteArray name = MuseumDownloader::sanitizedFilename(skin.filename, skin.md5).toUtf8();
            if (!skin.isAcceptable() || name.contains('/') || name.contains('\0') || name.startsWith('.') ||
                !name.endsWith(".wsz") || name.size() > 210)
                std::abort();
        }
    } catch (const MuseumError &error) {
        if (error.description().isEmpty())
            std::abort();
    }
    return 0;
}
