#include "Vantor/Remote/OutputMenu.h"

#include "Vantor/Remote/RemoteOutput.h"
#include "Vantor/Remote/SpeakerGroup.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>

namespace vantor {

namespace {

QString tr(const char *text) {
    return QCoreApplication::translate("OutputMenu", text);
}

/// With whom it plays, and whether it is there.
QString describe(const OutputDevice &output, const LibraryBrowser &browser) {
    const QString name = OutputMenu::nameOf(output);
    if (!output.isAvailable)
        return tr("%1 (not available)").arg(name);
    const SpeakerGroup group = SpeakerGroup::of(output, browser);
    if (group.leader)
        return tr("%1 (with %2)").arg(name, OutputMenu::nameOf(*group.leader));
    if (group.members.size() == 1)
        return tr("%1 + %2").arg(name, OutputMenu::nameOf(group.members.first()));
    return group.members.isEmpty() ? name : tr("%1 + %2 others").arg(name).arg(group.members.size());
}

} // namespace

QString OutputMenu::nameOf(const OutputDevice &output) {
    return output.kind == OutputDevice::Kind::thisMac ? tr("This Computer") : output.name;
}

QString OutputMenu::label(QString name) {
    return name.replace(QLatin1Char('&'), QLatin1String("&&"));
}

void OutputMenu::fill(QMenu &menu, RemoteOutput &remote) {
    if (!remote.browser())
        return;
    const std::optional<OutputDevice> chosen = remote.browser()->output();
    auto *const group = new QActionGroup(&menu);
    for (const OutputDevice &output : remote.outputs()) {
        QAction *const action = menu.addAction(label(describe(output, *remote.browser())));
        action->setCheckable(true);
        action->setChecked(chosen && chosen->id == output.id);
        action->setEnabled(output.isAvailable);
        group->addAction(action);
        QObject::connect(action, &QAction::triggered, &remote, [&remote, output] { remote.select(output); });
    }
}

void OutputMenu::fillGroup(QMenu &menu, RemoteOutput &remote, const OutputDevice &output) {
    if (!remote.browser())
        return;
    const SpeakerGroup group = SpeakerGroup::of(output, *remote.browser());
    const auto add = [&](const QString &text, const OutputDevice::ID &leader, const OutputDevice::ID &member,
                         bool joins) {
        return menu.addAction(label(text), &remote,
                              [&remote, leader, member, joins] { remote.setMember(leader, member, joins); });
    };
    if (group.leader) {
        add(tr("Leave %1").arg(nameOf(*group.leader)), group.leader->id, output.id, false);
        return;
    }
    for (const OutputDevice &other : group.joinable) {
        const bool isMember = group.members.contains(other);
        QAction *const action = add(nameOf(other), output.id, other.id, !isMember);
        action->setCheckable(true);
        action->setChecked(isMember);
    }
}

} // namespace vantor
