#include "SkinBrowser/SkinLibraryModel.h"
#include "Vantor/Windows/GridSearchField.h"
#include "Vantor/Windows/MessagePage.h"
#include "Vantor/Windows/SkinBrowserFoot.h"
#include "Vantor/Windows/SkinBrowserWindow.h"

#include <QStackedWidget>
#include <QToolButton>

// What the browser says when it has no skins to show.
namespace vantor {

bool SkinBrowserWindow::sayWhyEmpty() {
    const auto chooseFolder = [this] { m_foot->chooseFolder(); };
    const QString folder = m_library.folder();
    if (m_library.isIndexUnusable()) {
        m_message->say(tr("Could not read the skin index"), m_library.problem(), tr("Delete the Index…"),
                       [this] { askToReset(); });
        return true;
    }
    if (folder.isEmpty()) {
        m_message->say(
            tr("No skins folder yet"),
            tr("Choose the folder where you keep your skins. They are indexed in the background and not "
               "changed."),
            tr("Choose Folder…"), chooseFolder);
        return true;
    }
    if (m_skins.rowCount() > 0)
        return false;
    if (!m_skins.problem().isEmpty()) {
        m_message->say(tr("Could not read the skin index"), m_skins.problem(), tr("Try Again"),
                       [this] { search(); });
    } else if (!m_library.problem().isEmpty()) {
        m_message->say(tr("Could not read the skins folder"), m_library.problem(),
                       tr("Choose Another Folder…"), chooseFolder);
    } else if (m_library.counts().skins == 0 && m_library.isIndexing()) {
        m_message->say(tr("Looking for skins…"), tr("They appear here as they are found."));
    } else if (m_library.counts().skins == 0) {
        m_message->say(tr("No skins in this folder"),
                       tr("Put skins (.wsz) into %1 or choose another folder.").arg(folder),
                       tr("Choose Another Folder…"), chooseFolder);
    } else if (m_skins.isQuerying()) {
        return m_pages->currentWidget() == m_message; // as it is, for the moment
    } else if (m_skins.query().hasText()) {
        m_message->say(tr("Nothing found"),
                       tr("No skin shown has a name or a read-me with words that begin like “%1”.")
                           .arg(m_search->text().trimmed()),
                       tr("Clear Search"), [this] { endSearch(); });
    } else {
        m_message->say(tr("No such skins"), tr("Every skin is filtered out."), tr("Show All"), [this] {
            for (const auto &[status, button] : m_filters)
                button->setChecked(true);
        });
    }
    return true;
}

} // namespace vantor
