#include "shelloptions.h"

#include <QCommandLineParser>
#include <QDir>
#include <QHostAddress>
#include <QFileInfo>
#include <QStandardPaths>

QStringList ShellOptions::languages()
{
    return {QStringLiteral("en"), QStringLiteral("cn"), QStringLiteral("jp"), QStringLiteral("kr"),
            QStringLiteral("ru")};
}

QString ShellOptions::defaultModulesDir(const QString &applicationDir)
{
    const QString beside = QDir::cleanPath(applicationDir + QStringLiteral("/../modules"));
#ifdef TPENDANT_INSTALLED_MODULES
    // An installed shell keeps its modules under the library directory, relative to its binary so
    // that a staged or moved installation works too; the build tree's directory wins when present.
    const QString installed =
        QDir::cleanPath(applicationDir + QLatin1Char('/') + QStringLiteral(TPENDANT_INSTALLED_MODULES));
    if (!QFileInfo(beside).isDir() && QFileInfo(installed).isDir())
        return installed;
#endif
    return beside;
}

QString ShellOptions::defaultDataDir()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppDataLocation) + QStringLiteral("/controller");
}

QString ShellOptions::defaultSettingsFile()
{
    return QStandardPaths::writableLocation(QStandardPaths::AppConfigLocation) + QStringLiteral("/tpendant.ini");
}

bool ShellOptions::parse(const QStringList &arguments, const QString &applicationDir, ShellOptions *options,
                         QString *error, QString *helpText)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Teach pendant shell: loads the pendant modules and "
                                                    "connects the robot controller."));
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Show this help."));
    const QCommandLineOption rc(QStringLiteral("rc"), QStringLiteral("Connect to an rcsim at HOST:PORT."),
                                QStringLiteral("HOST:PORT"));
    const QCommandLineOption data(QStringLiteral("data"),
                                  QStringLiteral("Data directory of the embedded controller."),
                                  QStringLiteral("DIR"));
    const QCommandLineOption level(QStringLiteral("level"), QStringLiteral("User level 0..4 (default 3)."),
                                   QStringLiteral("N"));
    const QCommandLineOption lang(QStringLiteral("lang"),
                                  QStringLiteral("Language: ") + languages().join(QStringLiteral(", ")) + '.',
                                  QStringLiteral("CODE"));
    const QCommandLineOption modules(QStringLiteral("modules"),
                                     QStringLiteral("Module directory (default <bin>/../modules, or the "
                                                    "installed one)."),
                                     QStringLiteral("DIR"));
    const QCommandLineOption page(QStringLiteral("page"),
                                  QStringLiteral("Page to show at start: navigation name, title or module key "
                                                 "(default: the first module page)."),
                                  QStringLiteral("NAME"));
    const QCommandLineOption shot(QStringLiteral("screenshot"),
                                  QStringLiteral("Save the window as PNG after start-up and quit."),
                                  QStringLiteral("FILE"));
    const QCommandLineOption settings(QStringLiteral("settings"),
                                      QStringLiteral("Settings file (default in the user's config dir)."),
                                      QStringLiteral("FILE"));
    const QCommandLineOption usb(QStringLiteral("usb"),
                                 QStringLiteral("Folder that stands in for the USB disk (import and export of pallets)."),
                                 QStringLiteral("DIR"));
    const QCommandLineOption vnc(QStringLiteral("vnc-listen"),
                                 QStringLiteral("Address the VNC server listens on with -platform vnc (default "
                                                "127.0.0.1; 0.0.0.0 serves every network, without a password)."),
                                 QStringLiteral("ADDR"));
    parser.addOptions({help, rc, data, level, lang, modules, page, shot, settings, usb, vnc});

    ShellOptions o;
    o.modulesDir = defaultModulesDir(applicationDir);
    o.dataDir = defaultDataDir();
    o.settingsFile = defaultSettingsFile();

    if (!parser.parse(arguments)) {
        *error = parser.errorText();
        return false;
    }
    if (!parser.positionalArguments().isEmpty()) {
        *error = QStringLiteral("Unexpected argument: ") + parser.positionalArguments().first();
        return false;
    }
    if (parser.isSet(help)) {
        if (helpText)
            *helpText = parser.helpText();
        *error = QString();
        return false;
    }
    if (parser.isSet(rc)) {
        const QString value = parser.value(rc);
        const int colon = value.lastIndexOf(':');
        bool ok = false;
        const uint port = colon > 0 ? value.mid(colon + 1).toUInt(&ok) : 0;
        if (!ok || port == 0 || port > 65535) {
            *error = QStringLiteral("--rc expects HOST:PORT, got \"%1\"").arg(value);
            return false;
        }
        o.rcHost = value.left(colon);
        o.rcPort = quint16(port);
    }
    if (parser.isSet(level)) {
        bool ok = false;
        o.level = parser.value(level).toInt(&ok);
        if (!ok || o.level < 0 || o.level > 4) {
            *error = QStringLiteral("--level expects 0..4, got \"%1\"").arg(parser.value(level));
            return false;
        }
    }
    if (parser.isSet(lang)) {
        o.language = parser.value(lang).toLower();
        if (!languages().contains(o.language)) {
            *error = QStringLiteral("--lang expects one of %1, got \"%2\"")
                         .arg(languages().join(QStringLiteral(", ")), parser.value(lang));
            return false;
        }
    }
    if (parser.isSet(data))
        o.dataDir = parser.value(data);
    if (parser.isSet(modules))
        o.modulesDir = parser.value(modules);
    if (parser.isSet(page))
        o.page = parser.value(page);
    if (parser.isSet(shot)) {
        o.screenshot = parser.value(shot);
        if (o.screenshot.isEmpty()) {
            *error = QStringLiteral("--screenshot expects a file name");
            return false;
        }
    }
    if (parser.isSet(settings))
        o.settingsFile = parser.value(settings);
    if (parser.isSet(usb)) {
        o.usbDir = parser.value(usb);
        if (o.usbDir.isEmpty()) {
            *error = QStringLiteral("--usb expects a folder");
            return false;
        }
        o.usbDir = QDir(o.usbDir).absolutePath();
    }
    if (parser.isSet(vnc)) {
        const QHostAddress address(parser.value(vnc));
        if (address.isNull()) {
            *error = QStringLiteral("--vnc-listen expects an IP address, got \"%1\"").arg(parser.value(vnc));
            return false;
        }
        o.vncListen = address.toString();
    }
    *options = o;
    return true;
}
