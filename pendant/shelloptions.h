#pragma once

#include <QString>
#include <QStringList>

// Start-up options of the shell, from the command line or set directly by tests.
struct ShellOptions
{
    QString modulesDir;  // empty: no modules are loaded
    QString dataDir;     // embedded controller's data directory
    QString rcHost;      // non-empty: connect to an rcsim over TCP instead of the embedded controller
    quint16 rcPort = 0;
    int level = 3;
    QString language;    // empty: keep the stored setting
    QString page;        // page shown at start (navigation name, title or module key); empty: the first
    QString screenshot;  // render the window into this PNG after start-up, then quit
    QString settingsFile; // empty: settings are kept in memory only
    QString usbDir;      // non-empty: this folder stands in for the USB disk
    QString vncListen = QStringLiteral("127.0.0.1"); // address of the VNC server (-platform vnc)
    bool noController = false;

    static QStringList languages();
    // The module directory next to the binary, <dir of binary>/../modules; when that does not exist
    // and the installed one (<prefix>/<libdir>/tpendant/modules seen from <prefix>/bin) does, that one.
    static QString defaultModulesDir(const QString &applicationDir);
    static QString defaultDataDir();
    static QString defaultSettingsFile();

    // Parses the arguments after Qt has taken its own (-platform ...). False with a readable
    // message on bad input; `helpText` receives the usage text when --help was asked.
    static bool parse(const QStringList &arguments, const QString &applicationDir, ShellOptions *options,
                      QString *error, QString *helpText = nullptr);
};
