#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

#include <deque>
#include <optional>
#include <string>

namespace tavrin::desktop {

/// A program run by the harness. It is killed with this object, and by the kernel when the harness dies. What
/// it prints goes to the log, except standard output when that is read here.
class Process {
public:
    enum class Output { toLog, readHere };

    Process() = default;
    ~Process();
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;

    /// False when the program cannot be started.
    bool start(const QString& program, const QStringList& arguments, const QProcessEnvironment& environment,
               const QString& log, Output output = Output::toLog);

    /// The next line of standard output, without its end; absent when none comes in time or the program ends.
    std::optional<std::string> readLine();
    void writeLine(const std::string& line);

    bool isRunning() const { return process_.state() == QProcess::Running; }
    qint64 pid() const { return process_.processId(); }
    void sendSignal(int number) const;

    /// Waits for the program's end and gives its exit status; absent when it does not end in time or crashed.
    std::optional<int> waitForExit();
    void kill();

private:
    QProcess process_;
};

} // namespace tavrin::desktop
