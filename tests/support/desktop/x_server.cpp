#include "support/desktop/x_server.h"

#include <QFile>

namespace tavrin::desktop {

namespace {

// Nothing real may leak in: no input devices (the keys come from XTEST), no graphics card, no console.
constexpr auto configuration = R"(Section "ServerFlags"
    Option "AutoAddDevices" "false"
    Option "AutoAddGPU" "false"
    Option "DontVTSwitch" "true"
    Option "BlankTime" "0"
EndSection
Section "Monitor"
    Identifier "monitor"
    HorizSync 5.0-1000.0
    VertRefresh 5.0-200.0
EndSection
Section "Device"
    Identifier "card"
    Driver "dummy"
    VideoRam 262144
EndSection
Section "Screen"
    Identifier "screen"
    Device "card"
    Monitor "monitor"
    DefaultDepth 24
    SubSection "Display"
        Depth 24
        Modes "1920x1080"
        Virtual %1 %2
    EndSubSection
EndSection
)";

// The wrapper in the path refuses users without a console; the server itself does not need one.
constexpr auto xorg = "/usr/lib/xorg/Xorg";

} // namespace

bool XServer::start(const QString& directory, const QProcessEnvironment& environment, Kind kind) {
    const QStringList common{"-displayfd", "1", "-nolisten", "tcp", "-noreset"};
    if (kind == Kind::virtualFramebuffer) {
        const QString screen = QString("%1x%2x24").arg(maximumWidth).arg(maximumHeight);
        return launch("Xvfb", common + QStringList{"-screen", "0", screen}, directory, environment);
    }
    QFile file(directory + "/xorg.conf");
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QString(configuration).arg(maximumWidth).arg(maximumHeight).toUtf8());
    file.close();
    return launch(xorg, common + QStringList{"-config", file.fileName(), "-logfile", directory + "/Xorg.log"},
                  directory, environment);
}

bool XServer::launch(const QString& program, const QStringList& arguments, const QString& directory,
                     const QProcessEnvironment& environment) {
    process_.emplace();
    if (!process_->start(program, arguments, environment, directory + "/x-server.log",
                         Process::Output::readHere))
        return false;
    const auto number = process_->readLine();
    if (!number)
        return false;
    display_ = ":" + QString::fromStdString(*number);
    return true;
}

} // namespace tavrin::desktop
