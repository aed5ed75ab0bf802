#pragma once

#include "support/desktop/edid.h"
#include "support/desktop/message_bus.h"
#include "support/desktop/test_client.h"
#include "support/desktop/tray.h"
#include "support/desktop/windows.h"
#include "support/desktop/x_connection.h"

#include <QTemporaryDir>

#include <memory>
#include <optional>
#include <string_view>

namespace tavrin::desktop {

/// The monitors, plugged and unplugged as a person would. All rectangles have their origin at the top left of
/// the whole desktop, y downwards, in points. Outputs are numbered from 0. Every change is finished when the
/// call returns.
class Outputs {
public:
    virtual ~Outputs() = default;

    /// Plugs a monitor in, or moves or resizes one that is there. Without an identity it tells nothing of
    /// itself.
    virtual bool plug(int output, const Rect& area, const std::optional<MonitorIdentity>& identity = {}) = 0;
    virtual bool unplug(int output) = 0;

    /// The areas of all monitors in the desktop's order.
    virtual std::vector<Rect> areas() = 0;
    /// The connector's name; that of a monitor plugged in again may be another one.
    virtual std::string name(int output) = 0;
};

/// A person at the keyboard: keys go to whatever window has the focus. Keys are given by their X symbols.
class Keyboard {
public:
    virtual ~Keyboard() = default;

    /// Types printable ASCII; false, and nothing more is typed, at a character the keyboard does not have.
    bool type(std::string_view text);
    /// Presses and releases one key, such as 0xff0d for Return.
    virtual bool press(std::uint32_t symbol) = 0;
    /// The same while other keys, such as Control, are held.
    virtual bool pressWith(std::vector<std::uint32_t> modifiers, std::uint32_t symbol) = 0;
    bool pressWith(std::uint32_t modifier, std::uint32_t symbol) {
        return pressWith(std::vector{modifier}, symbol);
    }

    static constexpr std::uint32_t returnKey = 0xff0d;
    static constexpr std::uint32_t escapeKey = 0xff1b;
    static constexpr std::uint32_t controlKey = 0xffe3;
    static constexpr std::uint32_t shiftKey = 0xffe1;
    static constexpr std::uint32_t optionKey = 0xffe9; ///< Alt
};

/// What not every desktop has. A case that needs it is left out where it is missing.
enum class Ability {
    xDesktop,     ///< it is an `XDesktop`, with a window manager that comes and goes
    tilesWindows, ///< the user has a window fill half of its monitor
    longTitles,   ///< it survives a title wider than it can draw
};

/// A whole private desktop: a window system, a session bus and a second bus standing in for the system bus, a
/// tray, a home directory of its own. Everything ends with this object. Needs a QCoreApplication.
class Desktop {
public:
    struct Options {
        std::string name = "desktop"; ///< names the log folder
        std::vector<Rect> displays{{0, 0, 1920, 1080}};
        bool hasWindowManager = true; ///< on X; other desktops are window managers themselves
        QString windowManager;        ///< on X, with its arguments; empty for the one that is tested with
        bool hasTray = true;
    };

    /// The desktop that TAVRIN_TEST_DESKTOP names: "x11", which is also what counts without it, "sway",
    /// "kwin" or "gnome".
    /// Aborts with the log folder's path when a part does not come up: no test can go on without it.
    static std::unique_ptr<Desktop> open(const Options& options);

    virtual ~Desktop() = default;
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    virtual bool has(Ability ability) const = 0;
    virtual Outputs& outputs() = 0;
    virtual Windows& windows() = 0;
    virtual Keyboard& keyboard() = 0;
    /// The X server on which the whole desktop is seen, for the mouse and for pictures.
    virtual XConnection& x() = 0;
    /// Has the window system end as if it crashed.
    virtual void crash() = 0;
    /// The window system's own process where that is all in one.
    virtual Process* compositor() { return nullptr; }

    Tray& tray() { return *tray_; }
    MessageBus& sessionBus() { return sessionBus_; }
    MessageBus& systemBus() { return systemBus_; }

    /// What a program started on this desktop gets.
    const QProcessEnvironment& environment() const { return environment_; }
    void setVariable(const QString& name, const QString& value) { environment_.insert(name, value); }
    QString home() const { return scratch_.filePath("home"); }
    /// The folder of this desktop's logs; it stays when the desktop goes.
    const QString& logs() const { return logs_; }
    QString log(const QString& name) const { return logs_ + "/" + name + ".log"; }

    /// An application of the test's making with X windows, started and ready.
    std::unique_ptr<TestClient> startClient();
    /// One with Wayland windows, where the desktop speaks that. Of what can be asked for it knows class,
    /// title and size.
    std::unique_ptr<TestClient> startToolkitClient();
    /// Any program of the machine; absent when it cannot be started.
    std::unique_ptr<Process> startProgram(const QString& program, const QStringList& arguments = {});

protected:
    /// What a session of that desktop on Wayland says of itself; its displays identify themselves as the
    /// tests say.
    void prepareWaylandSession(const QString& desktopName);

    /// Logs, folders, environment, buses and tray.
    explicit Desktop(const Options& options);
    void require(bool isUp, const char* part) const;

    /// What to run for a program on this desktop.
    virtual QStringList commandLine(const QString& program, const QStringList& arguments) {
        return QStringList(program) + arguments;
    }

    QTemporaryDir scratch_;
    QString logs_;
    QProcessEnvironment environment_;

private:
    void prepareEnvironment();

    MessageBus sessionBus_;
    MessageBus systemBus_;
    std::unique_ptr<Tray> tray_;
};

} // namespace tavrin::desktop
