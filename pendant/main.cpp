#include "hugeheap.h"
#include "mainwindow.h"
#include "shell.h"
#include "shelloptions.h"
#include "virtualkeyboard.h"
#include "vnclisten.h"

#include <QApplication>
#include <QHostAddress>
#include <QPixmap>
#include <QTimer>

#include <cstdio>
#include <cstring>

namespace {

bool asksForHelp(int argc, char *argv[])
{
    for (int i = 1; i < argc; ++i) {
        for (const char *flag : {"-h", "--help", "-help", "-?"}) {
            if (std::strcmp(argv[i], flag) == 0)
                return true;
        }
    }
    return false;
}

// The help needs no display: it is printed before the GUI platform is loaded.
int printHelp(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("tpendant"));
    ShellOptions options;
    QString error;
    QString help;
    ShellOptions::parse({QCoreApplication::arguments().value(0), QStringLiteral("--help")},
                        QCoreApplication::applicationDirPath(), &options, &error, &help);
    help += QStringLiteral("\nQt options: -platform offscreen (no window), -platform vnc:size=1280x800:port=5900\n"
                           "(served over VNC on --vnc-listen, 127.0.0.1 by default).\n");
    std::fputs(help.toLocal8Bit().constData(), stdout);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    hugeheap::restartWithHugePages(argv);
    if (asksForHelp(argc, argv))
        return printHelp(argc, argv);

    // Before the application exists: the input method is chosen when the platform is loaded.
    VirtualKeyboard::prepareEnvironment();
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

    if (vnclisten::isVncPlatform()) {
        const QStringList listening = vnclisten::restrictListeners(QHostAddress(options.vncListen), &error);
        if (listening.isEmpty()) {
            std::fprintf(stderr, "tpendant: VNC: %s\n", error.toLocal8Bit().constData());
            return 1;
        }
        std::fprintf(stdout, "tpendant: VNC server on %s (no password: reach it from elsewhere through an "
                             "SSH tunnel)\n",
                     listening.join(QStringLiteral(", ")).toLocal8Bit().constData());
        std::fflush(stdout);
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
