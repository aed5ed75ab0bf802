#include "platform/qt/qt_program.h"

#include <QApplication>

namespace tavrin {

QtProgram::QtProgram(int& argc, char** argv, const std::string& version) {
    QCoreApplication::setApplicationVersion(QString::fromStdString(version));
    application_ = std::make_unique<QApplication>(argc, argv);
}

QtProgram::~QtProgram() = default;

int QtProgram::run() {
    return QApplication::exec();
}

void QtProgram::exit(int status) {
    QCoreApplication::exit(status);
}

} // namespace tavrin
