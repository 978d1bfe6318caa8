#include "SkinKit/Loading/SkinArchive.h"
#include "SkinKit/Loading/SkinError.h"
#include "SkinKit/Loading/SkinParser.h"
#include "SkinKit/Loading/SkinPreviewPage.h"

#include <cstdlib>

using namespace vantor;

// A ZIP file through the archive reader and, when it holds anything, through the loader; -max_len=4096. The
// limits are small so that bombs end early, and bitmaps that claim more than 255 pixels a side are left to
// the target of the bitmap decoder.
namespace {

const SkinArchive::Limits limits{.maxEntryBytes = 16'384, .maxTotalBytes = 49'152};

bool claimsLargePicture(const QByteArray &bytes) {
    if (!bytes.startsWith("BM") || bytes.size() < 26)
        return false;
    return bytes[19] != 0 || bytes[20] != 0 || bytes[21] != 0 || bytes[23] != 0 || bytes[24] != 0;
}

void checkLimits(const SkinArchive &archive) {
    qsizetype total = 0;
    for (auto it = archive.files().cbegin(); it != archive.files().cend(); ++it) {
        const qsizetype dot = it.key().lastIndexOf(QLatin1Char('.'));
        if (it->size() > limits.maxEntryBytes || it.key() != it.key().toLower() ||
            !limits.allowedExtensions.contains(it.key().mid(dot + 1)))
            std::abort();
        total += it->size();
    }
    if (total > limits.maxTotalBytes)
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const QByteArray zip =
        QByteArray::fromRawData(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    try {
        const SkinArchive archive = SkinArchive::fromZip(zip, limits);
        checkLimits(archive);
        (void)SkinPreviewPage::readme(archive);
        if (std::ranges::any_of(archive.files(), claimsLargePicture))
            return 0;
        const Skin skin = SkinParser::parse(archive);
        if (skin.sheets.size() < 11) // generated ones fill the gaps
            std::abort();
    } catch (const SkinError &error) {
        if (error.description().isEmpty())
            std::abort();
    }
    return 0;
}
