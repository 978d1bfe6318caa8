#include "Vantor/Model/SkinSwitcher.h"

#include "Platform/NativePath.h"
#include "SkinBrowser/IndexAnswer.h"
#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Model/PlayerModel.h"

#include <QFileInfo>
#include <QLoggingCategory>

Q_LOGGING_CATEGORY(skinSwitcherLog, "co.kelvane.vantor.SkinSwitcher")

namespace vantor {

namespace {

constexpr std::size_t maxSteps = 16; // waiting ones, of a key that is hit faster than the index answers
const std::set<SkinStatus> wearable{SkinStatus::ok, SkinStatus::partial};

using Found = std::optional<SkinRecord>;

Found skinAt(SkinIndexStore &store, const QString &path) {
    if (path.isEmpty())
        return std::nullopt;
    Found skin = store.skinAtPath(path);
    // The index knows files by their real paths.
    return skin ? skin : store.skinAtPath(QFileInfo(path).canonicalFilePath());
}

Found end(SkinIndexStore &store, SkinNeighborDirection direction) {
    SkinQuery query{.statuses = wearable, .limit = 1};
    if (direction == SkinNeighborDirection::previous)
        query.offset = static_cast<int>(std::max<std::int64_t>(0, store.count(query) - 1));
    std::vector<SkinRecord> skins = store.skins(query);
    return skins.empty() ? std::nullopt : Found(skins.front());
}

/// Neither the one that is worn nor the one that was to be.
Found another(SkinIndexStore &store, std::optional<std::int64_t> worn, std::optional<std::int64_t> target) {
    Found skin = store.random(wearable);
    for (int again = 0; again < 8 && skin && (skin->id == worn || skin->id == target); ++again)
        skin = store.random(wearable);
    return skin;
}

Found lookUp(SkinIndexStore &store, SkinSwitcher::Step step, const QString &wornPath,
             std::optional<std::int64_t> target) {
    const Found worn = skinAt(store, wornPath);
    const auto wornID = worn ? std::optional(worn->id) : std::nullopt;
    if (step == SkinSwitcher::Step::random)
        return another(store, wornID, target);
    const auto from = target ? target : wornID;
    const auto direction =
        step == SkinSwitcher::Step::next ? SkinNeighborDirection::next : SkinNeighborDirection::previous;
    const Found beside = from ? store.neighbor(*from, direction, wearable) : std::nullopt;
    return beside ? beside : end(store, direction);
}

} // namespace

SkinSwitcher::SkinSwitcher(PlayerModel &model, SkinLibraryModel &library, QObject *parent)
    : QObject(parent), m_model(model), m_library(library) {
    connect(&library, &SkinLibraryModel::contentChanged, this, &SkinSwitcher::readContent);
    connect(&library, &SkinLibraryModel::indexAboutToReset, this, [this] { m_reader.reset(); });
    connect(&model, &PlayerModel::skinChanged, this, [this] {
        m_target.reset();
        readContent();
    });
    connect(&model, &PlayerModel::skinRefused, this, [this](const QString &name) {
        const bool isOurs = m_target && NativePath::url(m_target->primaryPath).fileName() == name;
        if (!isOurs)
            return;
        if (m_skipsLeft-- > 0) {
            m_steps.push_front(m_lastStep);
            stepOn();
        } else {
            m_target.reset();
        }
    });
    readContent();
}

SkinSwitcher::~SkinSwitcher() = default;

SkinIndexReader &SkinSwitcher::reader() {
    if (!m_reader)
        m_reader = std::make_unique<SkinIndexReader>(m_library.index());
    return *m_reader;
}

void SkinSwitcher::readContent() {
    m_hasNewContent = m_isReadingContent;
    if (m_isReadingContent)
        return;
    m_isReadingContent = true;
    using Content = std::pair<std::vector<SkinRecord>, Found>;
    const QString worn = NativePath::fromUrl(m_model.skinUrl());
    const auto question = [worn](SkinIndexStore &store) {
        std::vector<SkinRecord> first = store.skins({.statuses = wearable, .limit = menuLength});
        return Content(std::move(first), skinAt(store, worn));
    };
    const auto done = [this] {
        m_isReadingContent = false;
        if (m_hasNewContent)
            readContent();
    };
    whenAnswered(
        *this, reader().ask<Content>(question),
        [this, done](Content content) {
            m_first = std::move(content.first);
            m_worn = content.second ? std::optional(content.second->id) : std::nullopt;
            Q_EMIT wornChanged();
            done();
        },
        [done](const SkinLibraryError &) { done(); }); // of which the library itself tells
}

void SkinSwitcher::wear(const SkinRecord &skin) {
    m_model.wear(NativePath::url(skin.primaryPath));
}

void SkinSwitcher::step(Step step) {
    if (m_steps.size() >= maxSteps)
        return;
    m_steps.push_back(step);
    m_skipsLeft = maxSkips;
    stepOn();
}

void SkinSwitcher::stepOn() {
    if (m_isLookingUp || m_steps.empty())
        return;
    m_isLookingUp = true;
    m_lastStep = m_steps.front();
    m_steps.pop_front();
    const auto target = m_target ? std::optional(m_target->id) : std::nullopt;
    const QString worn = NativePath::fromUrl(m_model.skinUrl());
    const auto question = [step = m_lastStep, worn, target](SkinIndexStore &store) {
        return lookUp(store, step, worn, target);
    };
    whenAnswered(
        *this, reader().ask<Found>(question), [this](const Found &skin) { take(skin); },
        [this](const SkinLibraryError &error) {
            qCWarning(skinSwitcherLog, "%s", error.what());
            take(std::nullopt);
        });
}

void SkinSwitcher::take(const Found &skin) {
    m_isLookingUp = false;
    m_target = skin;
    if (skin) {
        wear(*skin);
        stepOn();
        return;
    }
    m_steps.clear();
    m_model.showNotice(m_library.folder().isEmpty() ? tr("No skins folder is chosen")
                                                    : tr("No skins in the skins folder"));
}

} // namespace vantor
