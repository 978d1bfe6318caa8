#include "Vantor/Museum/SkinHistory.h"

#include "Vantor/Model/PlayerModel.h"

namespace vantor {

SkinHistory::SkinHistory(PlayerModel &model, QObject *parent)
    : QObject(parent), m_model(model), m_present(model.skinUrl()) {
    connect(&model, &PlayerModel::skinChanged, this, [this] {
        const QUrl before = std::exchange(m_present, m_model.skinUrl());
        const bool isBack = m_target == m_present; // and not one that was chosen since
        if (!isBack && m_target && m_target != before)
            m_before.append(*m_target); // which was not worn after all
        if (!isBack && before != m_present)
            m_before.append(before);
        m_target.reset();
        if (m_before.size() > maxLength)
            m_before.removeFirst();
        Q_EMIT changed();
    });
    connect(&model, &PlayerModel::skinRefused, this, [this] { m_target.reset(); });
}

void SkinHistory::goBack() {
    if (m_before.isEmpty())
        return;
    const QUrl skin = m_before.takeLast();
    m_target = skin;
    if (skin.isEmpty())
        m_model.wearDefaultSkin();
    else
        m_model.wear(skin);
    Q_EMIT changed();
}

} // namespace vantor
