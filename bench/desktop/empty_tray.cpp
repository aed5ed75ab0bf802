// The least a Qt program with a status item can be: the mark for the program's start and memory.
#include <QApplication>
#include <QMenu>
#include <QStyle>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QMenu menu;
    menu.addAction("Quit", &application, &QApplication::quit);
    QSystemTrayIcon item(application.style()->standardIcon(QStyle::SP_ComputerIcon));
    item.setContextMenu(&menu);
    item.show();
    return QApplication::exec();
}
