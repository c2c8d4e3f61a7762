#include "controller.h"
#include "rcsimserver.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QHostAddress>
#include <QStandardPaths>

#include <csignal>
#include <cstdio>

int main(int argc, char **argv)
{
    // A client vanishing mid-write must not kill the server.
    std::signal(SIGPIPE, SIG_IGN);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("rcsim"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Robot controller simulator serving the line protocol over TCP."));
    parser.addHelpOption();
    QCommandLineOption listenOpt(QStringLiteral("listen"), QStringLiteral("Address and port to bind (port 0 picks one)."),
                                 QStringLiteral("ADDR:PORT"), QStringLiteral("127.0.0.1:7878"));
    QCommandLineOption dataOpt(QStringLiteral("data"), QStringLiteral("Directory of the pallet store."), QStringLiteral("DIR"));
    QCommandLineOption legacyOpt(QStringLiteral("legacy"), QStringLiteral("Behave like an older controller without \"tray.query.one\"."));
    parser.addOption(listenOpt);
    parser.addOption(dataOpt);
    parser.addOption(legacyOpt);
    parser.process(app);

    const QString listen = parser.value(listenOpt);
    const int colon = listen.lastIndexOf(QLatin1Char(':'));
    bool portOk = false;
    const uint port = colon > 0 ? listen.mid(colon + 1).toUInt(&portOk) : 0;
    QString host = colon > 0 ? listen.left(colon) : QString();
    if (host.startsWith(QLatin1Char('[')) && host.endsWith(QLatin1Char(']')))
        host = host.mid(1, host.size() - 2);
    QHostAddress address;
    if (!portOk || port > 65535 || !address.setAddress(host)) {
        std::fprintf(stderr, "rcsim: --listen wants ADDR:PORT with a numeric address, got \"%s\"\n", qPrintable(listen));
        return 2;
    }

    rc::Controller::Options options;
    options.dataDir = parser.isSet(dataOpt)
        ? parser.value(dataOpt)
        : QDir(QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)).absolutePath();
    options.legacy = parser.isSet(legacyOpt);

    rc::Controller controller(options);
    QString error;
    if (!controller.open(&error)) {
        std::fprintf(stderr, "rcsim: %s\n", qPrintable(error));
        return 1;
    }
    rc::RcsimServer server(&controller);
    if (!server.listen(address, quint16(port), &error)) {
        std::fprintf(stderr, "rcsim: cannot listen on %s: %s\n", qPrintable(listen), qPrintable(error));
        return 1;
    }
    QString shown = server.address().toString();
    if (server.address().protocol() == QAbstractSocket::IPv6Protocol)
        shown = QStringLiteral("[%1]").arg(shown);
    std::printf("rcsim listening on %s:%u\n", qPrintable(shown), unsigned(server.port()));
    std::fflush(stdout);
    return app.exec();
}
