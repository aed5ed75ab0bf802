#pragma once

#include "ports/runtime.h"

#include <QObject>

#include <filesystem>
#include <memory>
#include <string>

class QApplication;

namespace tavrin {

/// The application object of Qt with its event loop. Nothing else of Qt may exist before it or after it.
class QtProgram {
public:
    /// Qt takes its own arguments out of `argc` and `argv`, which must outlive the program.
    QtProgram(int& argc, char** argv, const std::string& version);
    ~QtProgram();

    QApplication& application() { return *application_; }

    /// Runs the event loop until `exit`, or until the desktop ends the program; returns the exit status.
    int run();

    /// Has `run` return `status`.
    void exit(int status);

    /// Of the library that is used, for example "Qt 6.4.2".
    static std::string toolkitVersion();

    /// The protocol by which the toolkit shows its windows, for example "x11" or "wayland".
    static std::string windowProtocol();

    /// Where the user's data of all programs lies.
    static std::filesystem::path dataFolder();

private:
    static std::unique_ptr<QApplication> makeApplication(int& argc, char** argv);

    std::unique_ptr<QApplication> application_;
};

/// File descriptors watched by Qt's event loop.
class QtEventLoop final : public EventLoop {
public:
    Token watchReadable(int fileDescriptor, std::function<void()> handler) override;

private:
    QObject notifiers_; ///< parent of every notifier, so that none outlives the loop
};

/// Timers of Qt's event loop, on the monotonic clock and exact to a millisecond. A task never runs early.
class QtScheduler final : public Scheduler {
public:
    Token after(Seconds delay, std::function<void()> task) override;
    Token every(Seconds interval, std::function<void()> task) override;

private:
    enum class Repetition { once, always };
    Token start(Seconds interval, Repetition repetition, std::function<void()> task);

    QObject timers_; ///< parent of every timer, so that none outlives the scheduler
};

} // namespace tavrin
