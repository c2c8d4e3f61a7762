#include "shelloptions.h"

#include <QtTest>

class TestShellOptions : public QObject
{
    Q_OBJECT

private slots:
    void defaults();
    void parse_data();
    void parse();
    void rejects_data();
    void rejects();
    void help();
};

void TestShellOptions::defaults()
{
    ShellOptions o;
    QString error;
    QVERIFY(ShellOptions::parse({QStringLiteral("tpendant")}, QStringLiteral("/opt/x/bin"), &o, &error));
    QCOMPARE(o.modulesDir, QStringLiteral("/opt/x/modules"));
    QCOMPARE(o.level, 3);
    QVERIFY(o.rcHost.isEmpty());
    QVERIFY(o.language.isEmpty());
    QVERIFY(o.screenshot.isEmpty());
    QVERIFY(o.dataDir.endsWith(QStringLiteral("/controller")));
    QVERIFY(o.settingsFile.endsWith(QStringLiteral("tpendant.ini")));
    QVERIFY(o.usbDir.isEmpty());
}

void TestShellOptions::parse_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("field");
    QTest::addColumn<QString>("expected");

    QTest::newRow("rc host and port") << QStringList{"--rc", "10.0.0.5:7878"} << "rc" << "10.0.0.5:7878";
    QTest::newRow("rc with equals") << QStringList{"--rc=localhost:1"} << "rc" << "localhost:1";
    QTest::newRow("level 0") << QStringList{"--level", "0"} << "level" << "0";
    QTest::newRow("level 4") << QStringList{"--level", "4"} << "level" << "4";
    QTest::newRow("language cn") << QStringList{"--lang", "cn"} << "lang" << "cn";
    QTest::newRow("language upper case") << QStringList{"--lang", "RU"} << "lang" << "ru";
    QTest::newRow("data dir") << QStringList{"--data", "/tmp/d"} << "data" << "/tmp/d";
    QTest::newRow("modules dir") << QStringList{"--modules", "/tmp/m"} << "modules" << "/tmp/m";
    QTest::newRow("page") << QStringList{"--page", "Tray"} << "page" << "Tray";
    QTest::newRow("screenshot") << QStringList{"--screenshot", "a.png"} << "screenshot" << "a.png";
    QTest::newRow("usb folder") << QStringList{"--usb", "/tmp/stick"} << "usb" << "/tmp/stick";
    QTest::newRow("usb folder made absolute") << QStringList{"--usb", "stick/"} << "usb"
                                              << QDir::current().absoluteFilePath("stick");
}

void TestShellOptions::parse()
{
    QFETCH(QStringList, args);
    QFETCH(QString, field);
    QFETCH(QString, expected);
    args.prepend(QStringLiteral("tpendant"));
    ShellOptions o;
    QString error;
    QVERIFY2(ShellOptions::parse(args, QStringLiteral("/bin"), &o, &error), qPrintable(error));
    QString actual;
    if (field == QLatin1String("rc"))
        actual = o.rcHost + ':' + QString::number(o.rcPort);
    else if (field == QLatin1String("level"))
        actual = QString::number(o.level);
    else if (field == QLatin1String("lang"))
        actual = o.language;
    else if (field == QLatin1String("data"))
        actual = o.dataDir;
    else if (field == QLatin1String("modules"))
        actual = o.modulesDir;
    else if (field == QLatin1String("page"))
        actual = o.page;
    else if (field == QLatin1String("screenshot"))
        actual = o.screenshot;
    else if (field == QLatin1String("usb"))
        actual = o.usbDir;
    QCOMPARE(actual, expected);
}

void TestShellOptions::rejects_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("mentions");

    QTest::newRow("rc without port") << QStringList{"--rc", "localhost"} << "--rc";
    QTest::newRow("rc port zero") << QStringList{"--rc", "localhost:0"} << "--rc";
    QTest::newRow("rc port too large") << QStringList{"--rc", "localhost:70000"} << "--rc";
    QTest::newRow("rc port not a number") << QStringList{"--rc", "localhost:ab"} << "--rc";
    QTest::newRow("level too high") << QStringList{"--level", "5"} << "--level";
    QTest::newRow("level negative") << QStringList{"--level", "-1"} << "--level";
    QTest::newRow("level not a number") << QStringList{"--level", "high"} << "--level";
    QTest::newRow("unknown language") << QStringList{"--lang", "de"} << "--lang";
    QTest::newRow("unknown option") << QStringList{"--frobnicate"} << "frobnicate";
    QTest::newRow("stray argument") << QStringList{"extra"} << "extra";
    QTest::newRow("missing value") << QStringList{"--level"} << "level";
    QTest::newRow("usb without folder") << QStringList{"--usb", ""} << "--usb";
}

void TestShellOptions::rejects()
{
    QFETCH(QStringList, args);
    QFETCH(QString, mentions);
    args.prepend(QStringLiteral("tpendant"));
    ShellOptions o;
    o.level = 1;
    QString error;
    QVERIFY(!ShellOptions::parse(args, QStringLiteral("/bin"), &o, &error));
    QVERIFY2(error.contains(mentions), qPrintable(error));
    QCOMPARE(o.level, 1); // nothing taken over from a rejected command line
}

void TestShellOptions::help()
{
    ShellOptions o;
    QString error, help;
    QVERIFY(!ShellOptions::parse({QStringLiteral("tpendant"), QStringLiteral("--help")}, QStringLiteral("/bin"), &o,
                                 &error, &help));
    QVERIFY(error.isEmpty());
    for (const char *option : {"--rc", "--data", "--level", "--lang", "--modules", "--page", "--screenshot", "--usb"})
        QVERIFY2(help.contains(QLatin1String(option)), option);
}

QTEST_GUILESS_MAIN(TestShellOptions)
#include "tst_shelloptions.moc"
