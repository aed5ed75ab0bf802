#pragma once

#include <QColor>
#include <QIcon>

#include <optional>

namespace tavrin {

/// A single-coloured drawing of the program (:/icons/NAME.svg) in the text colour of the palette it stands
/// on, or in `color`. Rendered afresh at every size.
QIcon symbolIcon(const QString& name, std::optional<QColor> color = {});

/// Colours for texts and symbols that stand out from ordinary text on a ground like `palette`'s window.
QColor secondaryTextColor(const QPalette& palette);
QColor warningColor(const QPalette& palette);

} // namespace tavrin
