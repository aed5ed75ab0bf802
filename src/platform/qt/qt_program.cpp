#include "platform/qt/qt_program.h"

#include <QApplication>

#include <clocale>

namespace tavrin {

QtProgram::QtProgram(int& argc, char** argv, const std::string& version) {
    QCoreApplication::setApplicationVersion(QString::fromStdString(version));
    application_ = std::make_unique<QApplication>(argc, argv);
    // Numbers in files are written with a point, whatever the user's language.
    std::setlocale(LC_NUMERIC, "C");
}

QtProgram::~QtProgram() = default;

int QtProgram::run() {
    return QApplication::exec();
}

void QtProgram::exit(int status) {
    QCoreApplication::exit(status);
}

std::string QtProgram::toolkitVersion() {
    return std::string("Qt ") + qVersion();
}

std::string QtProgram::windowProtocol() {
    const QString name = QGuiApplication::platformName();
    return name == QLatin1String("xcb") ? "x11" : name.toStdString();
}

} // namespace tavrin
