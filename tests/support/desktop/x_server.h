#pragma once

#include "support/desktop/process.h"

namespace tavrin::desktop {

/// A private X server on a free display number: Xorg with the dummy driver (sixteen outputs that can be
/// plugged and unplugged), or Xvfb.
class XServer {
public:
    enum class Kind { dummyOutputs, virtualFramebuffer };

    /// The largest area that all outputs together may cover.
    static constexpr int maximumWidth = 8192;
    static constexpr int maximumHeight = 4096;

    /// Writes its configuration and logs into `directory`; false when the server does not start.
    bool start(const QString& directory, const QProcessEnvironment& environment,
               Kind kind = Kind::dummyOutputs);

    const QString& display() const { return display_; } ///< such as ":7"

private:
    bool launch(const QString& program, const QStringList& arguments, const QString& directory,
                const QProcessEnvironment& environment);

    std::optional<Process> process_;
    QString display_;
};

} // namespace tavrin::desktop
