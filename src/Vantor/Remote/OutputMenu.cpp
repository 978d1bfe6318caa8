#include "Vantor/Remote/OutputMenu.h"

#include "Vantor/Remote/RemoteOutput.h"

#include <QActionGroup>
#include <QCoreApplication>
#include <QMenu>

namespace vantor {

QString OutputMenu::nameOf(const OutputDevice &output) {
    return output.kind == OutputDevice::Kind::thisMac
               ? QCoreApplication::translate("OutputMenu", "This Computer")
               : output.name;
}

QString OutputMenu::label(QString name) {
    return name.replace(QLatin1Char('&'), QLatin1String("&&"));
}

void OutputMenu::fill(QMenu &menu, RemoteOutput &remote) {
    if (!remote.browser())
        return;
    QList<OutputDevice> outputs = remote.browser()->outputs();
    if (remote.isSelected() &&
        std::ranges::find(outputs, remote.device().id, &OutputDevice::id) == outputs.end())
        outputs.append(remote.device());
    const std::optional<OutputDevice> chosen = remote.browser()->output();
    auto *const group = new QActionGroup(&menu);
    for (const OutputDevice &output : outputs) {
        const QString text =
            output.isAvailable
                ? nameOf(output)
                : QCoreApplication::translate("OutputMenu", "%1 (not available)").arg(output.name);
        QAction *const action = menu.addAction(label(text));
        action->setCheckable(true);
        action->setChecked(chosen && chosen->id == output.id);
        action->setEnabled(output.isAvailable);
        group->addAction(action);
        QObject::connect(action, &QAction::triggered, &remote, [&remote, output] { remote.select(output); });
    }
}

} // namespace vantor
