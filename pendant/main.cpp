#include "mainwindow.h"
#include "shell.h"
#include "shelloptions.h"

#include <QApplication>
#include <QPixmap>
#include <QTimer>

#include <cstdio>

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tpendant"));
    QApplication::setOrganizationName(QStringLiteral("tpallet"));

    ShellOptions options;
    QString error;
    QString help;
    if (!ShellOptions::parse(QApplication::arguments(), QApplication::applicationDirPath(), &options, &error, &help)) {
        if (!help.isEmpty()) {
            std::fputs(help.toLocal8Bit().constData(), stdout);
            return 0;
        }
        std::fprintf(stderr, "tpendant: %s\n", error.toLocal8Bit().constData());
        return 2;
    }

    Shell shell(options);
    shell.start();
    shell.window()->show();

    if (!options.screenshot.isEmpty()) {
        // Let the event loop settle (layouts, the first posture poll, queued rebuilds) first.
        QTimer::singleShot(1000, &app, [&shell, &options] {
            const QPixmap shot = shell.window()->grab();
            if (shot.isNull() || !shot.save(options.screenshot, "PNG")) {
                std::fprintf(stderr, "tpendant: cannot write %s\n", options.screenshot.toLocal8Bit().constData());
                QApplication::exit(1);
                return;
            }
            QApplication::exit(0);
        });
    }
    return QApplication::exec();
}
