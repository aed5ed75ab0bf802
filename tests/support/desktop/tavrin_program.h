#pragma once

#include "support/desktop/desktop.h"

namespace tavrin::desktop {

/// The built program on a private desktop, used as a person uses it: through its menu and the keyboard.
class TavrinProgram {
public:
    explicit TavrinProgram(Desktop& desktop) : desktop_(desktop) {}

    /// Starts it and waits for its item in the tray.
    bool start();
    /// Starts it without waiting for anything.
    bool launch();
    Process& process() { return *process_; }

    /// The whole menu as `describe` writes it; empty when the program does not answer.
    std::string menu();
    /// Whether the menu offers this layout, for the present display setup, to be restored.
    bool offers(const std::string& layout);

    /// Opens the save form, types the name, presses Return, and waits until the form has gone.
    bool saveLayout(const std::string& name);
    /// Opens the save form and waits until it has the keyboard.
    bool openSaveForm();
    bool hasForm(); ///< a window of the program is on the screen

    /// Chooses a layout of the present setup and waits until the icon tells the outcome.
    bool restoreLayout(const std::string& name);
    /// The same for any path through the menu that ends in a restore.
    bool restoreBy(const std::vector<std::string>& path);
    /// Waits until the icon shows the outcome of a restore begun by other means.
    bool waitForFeedback();
    /// Waits until the icon is back to normal.
    bool waitForRest();

    /// What a data file ("layouts.json") holds; empty when there is none.
    std::string dataFile(const QString& name) const;

private:
    Desktop& desktop_;
    std::unique_ptr<Process> process_;
    std::string restingPicture_;
};

} // namespace tavrin::desktop
