#pragma once

namespace tavrin {

/// Makes the drawings of the program readable as :/icons/NAME.svg. May be called again.
void registerIconResources();

} // namespace tavrin
