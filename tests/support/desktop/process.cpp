#include "support/desktop/process.h"

#include "support/desktop/wait.h"

#include <csignal>
#include <linux/close_range.h>
#include <sys/prctl.h>
#include <unistd.h>

namespace tavrin::desktop {

Process::~Process() {
    kill();
}

bool Process::start(const QString& program, const QStringList& arguments,
                    const QProcessEnvironment& environment, const QString& log, Output output) {
    process_.setProcessEnvironment(environment);
    process_.setStandardErrorFile(log, QIODevice::Append);
    if (output == Output::toLog)
        process_.setStandardOutputFile(log, QIODevice::Append);
    const pid_t harness = ::getpid();
    process_.setChildProcessModifier([harness] {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::close_range(3, ~0U, CLOSE_RANGE_CLOEXEC); // what the harness inherited is not for others
        if (::getppid() != harness)                 // the harness died before the kernel was asked
            ::_exit(1);
    });
    process_.start(program, arguments);
    return process_.waitForStarted();
}

std::optional<std::string> Process::readLine() {
    waitUntil([&] { return process_.canReadLine() || process_.state() == QProcess::NotRunning; });
    if (!process_.canReadLine())
        return std::nullopt;
    return process_.readLine().trimmed().toStdString();
}

void Process::writeLine(const std::string& line) {
    process_.write((line + '\n').c_str());
    process_.waitForBytesWritten();
}

void Process::sendSignal(int number) const {
    if (isRunning())
        ::kill(static_cast<pid_t>(pid()), number);
}

std::optional<int> Process::waitForExit() {
    const bool ended = waitUntil([&] { return process_.state() == QProcess::NotRunning; });
    if (!ended || process_.exitStatus() != QProcess::NormalExit)
        return std::nullopt;
    return process_.exitCode();
}

void Process::kill() {
    if (process_.state() == QProcess::NotRunning)
        return;
    process_.kill();
    process_.waitForFinished();
}

} // namespace tavrin::desktop
