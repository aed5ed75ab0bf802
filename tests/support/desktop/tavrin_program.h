#pragma once

#include "support/desktop/desktop.h"

#include <QJsonValue>

namespace tavrin::desktop {

/// The built program on a private desktop, used as a person uses it: through its menu and the keyboard.
class TavrinProgram {
public:
    explicit TavrinProgram(Desktop& desktop) : desktop_(desktop) {}

    /// Starts it and waits for its item in the tray.
    bool start();
    /// Starts it without waiting for anything.
    bool launch();
    /// Waits until it runs as the one copy on this desktop, with or without a tray.
    bool waitUntilRegistered();
    Process& process() { return *process_; }

    /// What it has used of the machine since its start.
    struct Usage {
        long peakKilobytes = 0; ///< the most memory at any time
        double seconds = 0;     ///< of a processor
    };
    Usage usage() const;

    /// The whole menu as `describe` writes it; empty when the program does not answer.
    std::string menu();
    /// Whether the menu offers this layout, for the present display setup, to be restored.
    bool offers(const std::string& layout);

    /// Opens the save form, types the name, presses Return, and waits until the form has gone.
    bool saveLayout(const std::string& name);
    /// Opens the save form and waits until it has the keyboard.
    bool openSaveForm();
    /// Where a window of the program is on the screen, as the form or its menu; root pixels.
    std::optional<Rect> formArea();

    /// Chooses a layout of the present setup and waits until the icon tells the outcome.
    bool restoreLayout(const std::string& name);
    /// The same for any path through the menu that ends in a restore.
    bool restoreBy(const std::vector<std::string>& path);
    /// Waits until the icon shows the outcome of a restore begun by other means.
    bool waitForFeedback();
    /// Waits until the icon is back to normal.
    bool waitForRest();

    /// The content of a data file, such as "profiles.json", and replacing it while the program runs: it
    /// reads what it needs anew each time.
    QJsonValue payload(const QString& file) const;
    bool setPayload(const QString& file, const QJsonValue& payload);
    /// Makes the layout the one that is restored by itself on its setup.
    bool makeDefault(const std::string& layout);

private:
    QString path(const QString& file) const { return desktop_.home() + "/.local/share/Tavrin/" + file; }

    Desktop& desktop_;
    std::unique_ptr<Process> process_;
    std::string restingPicture_;
};

} // namespace tavrin::desktop
