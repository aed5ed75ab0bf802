#include "platform/desktop_texts.h"

namespace tavrin {
namespace {

std::string textOf(WindowSystemObstacle obstacle) {
    switch (obstacle) {
    case WindowSystemObstacle::noWindowManager:
        return "No window manager is running that lists and moves windows in the standard way (EWMH). Start "
               "one, "
               "and Tavrin will notice.";
    case WindowSystemObstacle::partialView:
        return "Tavrin was started as an X11 program in a Wayland session and sees only some of the windows. "
               "Start "
               "it as a Wayland program, or log in to an X11 session.";
    case WindowSystemObstacle::unsupportedCompositor:
        return "This Wayland desktop lets no program list and move windows. sway, KDE Plasma and GNOME do, "
               "and so "
               "does every X11 session.";
    case WindowSystemObstacle::extensionMissing:
        return "On Wayland, GNOME lets only extensions move windows, and the one that comes with Tavrin is "
               "not "
               "enabled. 1. Enable it. 2. Log out and in once, if GNOME does not know it yet.";
    case WindowSystemObstacle::loginNeeded:
        return "Tavrin's extension is enabled. Log out and in once: GNOME finds new extensions only then.";
    case WindowSystemObstacle::extensionMismatch:
        return "Tavrin's extension of GNOME is of another version than Tavrin. Log out and in again; if that "
               "does not help, install both from one package.";
    case WindowSystemObstacle::notAnswering:
        return "The window system does not respond. Tavrin keeps trying.";
    }
    return {};
}

} // namespace

DesktopTexts desktopTexts(std::optional<WindowSystemObstacle> obstacle) {
    constexpr auto control = ModifierSet::control;
    constexpr ModifierSet controlCommand{control.rawValue | ModifierSet::command.rawValue};
    const std::string arrows = "Control-arrow shortcuts are commonly reserved for switching workspaces.";
    const bool canEnable = obstacle == WindowSystemObstacle::extensionMissing;
    return {.missingPermission = obstacle ? textOf(*obstacle) : std::string(),
            .requestPermission = canEnable ? "Enable the Extension" : "",
            .grantPermission =
                "Choose “Open Accessibility Settings” in Tavrin's menu to see what this desktop needs.",
            .launchAtLogin =
                "Takes effect at your next login. The desktop's own list of startup applications shows "
                "it, too.",
            .exampleApplication = "org.mozilla.firefox",
            .reservedCombos = {
                {{123, control}, arrows},
                {{124, control}, arrows},
                {{125, control}, arrows},
                {{126, control}, arrows},
                {{12, controlCommand}, "Control-Super-Q is commonly reserved for locking the screen."},
                {{49, control}, "Control-Space is commonly reserved for switching the input method."},
                {{49, controlCommand}, "Control-Super-Space is commonly reserved for picking emoji."},
            }};
}

} // namespace tavrin
