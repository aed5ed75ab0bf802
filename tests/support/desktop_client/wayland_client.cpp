// Windows on request by the toolkit's own protocol, for the desktop tests. The commands are those of the X
// client, as far as they make sense: open (class, title, width, height), retitle, destroy.
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QSocketNotifier>

#include <iostream>
#include <map>
#include <memory>
#include <unistd.h>

namespace {

class Window : public QRasterWindow {
protected:
    void paintEvent(QPaintEvent*) override {
        QPainter(this).fillRect(QRect(QPoint(), size()), Qt::lightGray);
    }
};

std::map<QString, std::unique_ptr<Window>> windows;

QString obey(const QStringList& words) {
    if (words[0] == "open") {
        std::map<QString, QString> options;
        for (const auto& word : words)
            options[word.section('=', 0, 0)] = word.section('=', 1);
        auto window = std::make_unique<Window>();
        QGuiApplication::setDesktopFileName(options["class"]);
        window->setTitle(options["title"]);
        window->resize(options["width"].toInt(), options["height"].toInt());
        window->show();
        const auto name = QString("window-%1").arg(windows.size() + 1);
        windows[name] = std::move(window);
        return name;
    }
    if (words.size() < 2 || !windows.contains(words[1]) || !windows[words[1]])
        return "unknown command or window";
    if (words[0] == "retitle")
        windows[words[1]]->setTitle(words.value(2));
    else if (words[0] == "destroy")
        windows[words[1]].reset();
    else
        return "unknown command";
    return "done";
}

} // namespace

int main(int argc, char** argv) {
    QGuiApplication application(argc, argv);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QByteArray pending;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, [&] {
        char buffer[4096];
        const auto count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count <= 0)
            return QGuiApplication::exit(0);
        pending.append(buffer, count);
        for (auto end = pending.indexOf('\n'); end >= 0; end = pending.indexOf('\n')) {
            std::cout << obey(QString::fromUtf8(pending.left(end)).split('\t')).toStdString() << std::endl;
            pending.remove(0, end + 1);
        }
    });
    return QGuiApplication::exec();
}
