#pragma once

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

private:
    std::unique_ptr<QApplication> application_;
};

} // namespace tavrin
