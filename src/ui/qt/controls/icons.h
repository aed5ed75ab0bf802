#pragma once

#include <QColor>
#include <QIcon>

#include <optional>
#include <string>

class QLabel;

namespace tavrin {

/// A single-coloured drawing of the program (:/icons/NAME.svg) in the text colour of the palette it stands
/// on, or in `color`. Rendered afresh at every size.
QIcon symbolIcon(const QString& name, std::optional<QColor> color = {});

/// A label with such a drawing, as high as `lines` lines of text.
QLabel* makeSymbol(const QString& name, const QColor& color, double lines = 1.25);

/// The icon of an application by the name or the path in its desktop entry; a null icon when the theme has
/// none.
QIcon applicationIcon(const std::optional<std::string>& iconName);

/// As above, or a plain drawing for an application without an icon.
QIcon applicationIconOrPlaceholder(const std::optional<std::string>& iconName);

} // namespace tavrin
