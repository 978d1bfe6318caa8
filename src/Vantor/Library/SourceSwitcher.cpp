#include "Vantor/Library/SourceSwitcher.h"

#include "Vantor/Library/MusicLibrary.h"

namespace vantor {

SourceSwitcher::SourceSwitcher(MusicLibrary &library, QWidget *parent)
    : QComboBox(parent), m_library(library) {
    setAccessibleName(tr("Music source"));
    setSizeAdjustPolicy(AdjustToMinimumContentsLengthWithIcon);
    setMinimumContentsLength(6);
    connect(this, &QComboBox::activated, this,
            [this](int row) { m_library.choose(*m_library.sources().at(row)); });
    connect(&library, &MusicLibrary::sourcesChanged, this, &SourceSwitcher::fill);
    fill();
}

void SourceSwitcher::fill() {
    const QList<LibrarySource *> sources = m_library.sources();
    clear();
    for (LibrarySource *const source : sources) {
        addItem(source->name());
        if (source == &m_library.current())
            setCurrentIndex(count() - 1);
    }
    setToolTip(currentText());
    setVisible(sources.size() > 1);
}

} // namespace vantor
