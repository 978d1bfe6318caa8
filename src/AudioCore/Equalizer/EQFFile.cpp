#include "AudioCore/Equalizer/EQFFile.h"

#include "Platform/Windows1252.h"

namespace vantor::EQFFile {

namespace {

constexpr QByteArrayView preambleEnd("\x1A!--");
constexpr qsizetype preambleSize = header.size() + preambleEnd.size();
constexpr qsizetype nameSize = 257; ///< its last byte is always zero in what we write
constexpr qsizetype entrySize = nameSize + EQState::bandCount + 1;

// A byte counts steps down from the top of the slider scale.
constexpr int stepOfByteZero = 64;

float storedLevel(char byte) {
    return EQPreset::decibelsFromWinampValue(stepOfByteZero - static_cast<unsigned char>(byte));
}

char levelByte(float decibels) {
    return static_cast<char>(stepOfByteZero - EQPreset::winampValueFromDecibels(decibels));
}

QString storedName(QByteArrayView field) {
    const qsizetype end = field.indexOf('\0');
    const QByteArrayView bytes = end < 0 ? field : field.first(end);
    return Windows1252::decode(bytes).value_or(QString::fromUtf8(bytes));
}

EQPreset parseEntry(QByteArrayView entry) {
    EQState::Gains gains{};
    const QByteArrayView stored = entry.sliced(nameSize, EQState::bandCount);
    std::transform(stored.begin(), stored.end(), gains.begin(), storedLevel);
    return EQPreset(storedName(entry.first(nameSize)), storedLevel(entry.back()), gains);
}

} // namespace

QString ParseError::description() const {
    switch (m_case) {
    case Case::invalidHeader:
        return QStringLiteral("This file is not an equalizer preset file.");
    case Case::truncated:
        return QStringLiteral("This equalizer preset file is incomplete.");
    }
    return {};
}

const char *ParseError::what() const noexcept {
    return m_case == Case::invalidHeader ? "invalid header" : "truncated";
}

std::vector<EQPreset> parse(QByteArrayView data) {
    if (data.size() < preambleSize || !data.startsWith(header))
        throw ParseError(ParseError::Case::invalidHeader);
    const QByteArrayView entries = data.sliced(preambleSize);
    if (entries.size() % entrySize != 0)
        throw ParseError(ParseError::Case::truncated);
    std::vector<EQPreset> presets;
    presets.reserve(static_cast<size_t>(entries.size() / entrySize));
    for (qsizetype at = 0; at < entries.size(); at += entrySize)
        presets.push_back(parseEntry(entries.sliced(at, entrySize)));
    return presets;
}

QByteArray serialize(std::span<const EQPreset> presets) {
    QByteArray data;
    data.reserve(preambleSize + static_cast<qsizetype>(presets.size()) * entrySize);
    data.append(header).append(preambleEnd);
    for (const EQPreset &preset : presets) {
        const QByteArray name = Windows1252::encodeLossy(preset.name()).left(nameSize - 1);
        data.append(name).append(nameSize - name.size(), '\0');
        for (const float gain : preset.gains())
            data.append(levelByte(gain));
        data.append(levelByte(preset.preamp()));
    }
    return data;
}

} // namespace vantor::EQFFile
