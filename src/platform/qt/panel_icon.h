#pragma once

#include <QIcon>

namespace tavrin {

/// Makes the drawings of the program readable as :/icons/NAME.svg, and its page about the permission as
/// :/help/permission.html. May be called again.
void registerResources();

/// Whether there is a drawing with that name.
bool hasDrawing(const QString& name);

/// The drawing as a panel shows it, in the sizes that panels use: light with a dark outline, so that it reads
/// on a panel of any colour. No protocol tells a program the colour of a panel.
QIcon panelIcon(const QString& name);

/// A short text as an icon of that kind.
QIcon panelTextIcon(const QString& text);

} // namespace tavrin
