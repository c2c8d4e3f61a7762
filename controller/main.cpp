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
    QCommandLineOption idleOpt(QStringLiteral("idle-timeout"),
                               QStringLiteral("Drop a client silent for this many seconds (0: never; default %1).")
                                   .arg(rc::RcsimServer::kIdleTimeoutMs / 1000),
                               QStringLiteral("SECONDS"));
    QCommandLineOption maxConnOpt(QStringLiteral("max-connections"),
                                  QStringLiteral("Clients served at once (default %1).").arg(rc::RcsimServer::kMaxConnections),
                                  QStringLiteral("N"));
    parser.addOption(listenOpt);
    parser.addOption(dataOpt);
    parser.addOption(legacyOpt);
    parser.addOption(idleOpt);
    parser.addOption(maxConnOpt);
    parser.process(app);

    double idleSeconds = rc::RcsimServer::kIdleTimeoutMs / 1000.0;
    if (parser.isSet(idleOpt)) {
        bool ok = false;
        idleSeconds = parser.value(idleOpt).toDouble(&ok);
        if (!ok || idleSeconds < 0 || idleSeconds > 24 * 3600) {
            std::fprintf(stderr, "rcsim: --idle-timeout wants seconds between 0 and 86400, got \"%s\"\n",
                         qPrintable(parser.value(idleOpt)));
            return 2;
        }
    }
    int maxConnections = rc::RcsimServer::kMaxConnections;
    if (parser.isSet(maxConnOpt)) {
        bool ok = false;
        maxConnections = parser.value(maxConnOpt).toInt(&ok);
        if (!ok || maxConnections < 1 || maxConnections > 4096) {
            std::fprintf(stderr, "rcsim: --max-connections wants 1 to 4096, got \"%s\"\n", qPrintable(parser.value(maxConnOpt)));
            return 2;
        }
    }

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
    server.setIdleTimeoutMs(int(idleSeconds * 1000));
    server.setMaxConnections(maxConnections);
    QObject::connect(&server, &rc::RcsimServer::clientDropped, [](const QString &peer, const QString &reason) {
        std::fprintf(stderr, "rcsim: dropped %s: %s\n", qPrintable(peer), qPrintable(reason));
    });
    QObject::connect(&server, &rc::RcsimServer::acceptPaused, [](const QString &reason) {
        std::fprintf(stderr, "rcsim: cannot accept (%s), pausing\n", qPrintable(reason));
    });
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
