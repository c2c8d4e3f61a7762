#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

// The built binary, as an operator starts it.
class TestTpendant : public QObject
{
    Q_OBJECT

private slots:
    void screenshot_data();
    void screenshot();
    void badOptions_data();
    void badOptions();
    void help();
    void helpWithoutDisplay();
};

namespace {

QProcessEnvironment environment(const QTemporaryDir &dir)
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("HOME"), dir.filePath(QStringLiteral("home")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), dir.filePath(QStringLiteral("home/.local/share")));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("home/.config")));
    return env;
}

} // namespace

void TestTpendant::screenshot_data()
{
    QTest::addColumn<QStringList>("extra");
    QTest::newRow("defaults, no modules") << QStringList{"--modules", "/nonexistent"};
    QTest::newRow("test module page, level 4, Russian")
        << QStringList{"--modules", PENDANT_TEST_MODULE_DIR, "--page", "Test Page", "--level", "4", "--lang", "ru"};
}

void TestTpendant::screenshot()
{
    QFETCH(QStringList, extra);
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString png = dir.filePath(QStringLiteral("shot.png"));
    QProcess p;
    p.setProcessEnvironment(environment(dir));
    p.setWorkingDirectory(dir.path());
    QStringList args{QStringLiteral("-platform"), QStringLiteral("offscreen"), QStringLiteral("--screenshot"), png,
                     QStringLiteral("--data"), dir.filePath(QStringLiteral("rc"))};
    p.start(QStringLiteral(TPENDANT_BIN), args + extra);
    QVERIFY(p.waitForStarted());
    QVERIFY2(p.waitForFinished(30000), "tpendant did not exit after the screenshot");
    QCOMPARE(p.exitStatus(), QProcess::NormalExit);
    QVERIFY2(p.exitCode() == 0, p.readAllStandardError().constData());
    QVERIFY(QFileInfo(png).size() > 0);
    const QImage image(png);
    QCOMPARE(image.size(), QSize(1280, 800));
    // Not a blank picture: the status bar and the page container differ.
    QVERIFY(image.pixelColor(640, 10) != image.pixelColor(640, 400));
    // The controller's store was created where --data said.
    QVERIFY(QDir(dir.filePath(QStringLiteral("rc"))).exists());
}

void TestTpendant::badOptions_data()
{
    QTest::addColumn<QStringList>("args");
    QTest::addColumn<QString>("message");
    QTest::newRow("bad level") << QStringList{"--level", "9"} << "--level";
    QTest::newRow("bad language") << QStringList{"--lang", "xx"} << "--lang";
    QTest::newRow("bad rc") << QStringList{"--rc", "nohost"} << "--rc";
    QTest::newRow("bad VNC address") << QStringList{"--vnc-listen", "everywhere"} << "--vnc-listen";
}

void TestTpendant::badOptions()
{
    QFETCH(QStringList, args);
    QFETCH(QString, message);
    QTemporaryDir dir;
    QProcess p;
    p.setProcessEnvironment(environment(dir));
    p.start(QStringLiteral(TPENDANT_BIN), QStringList{"-platform", "offscreen"} + args);
    QVERIFY(p.waitForFinished(15000));
    QCOMPARE(p.exitCode(), 2);
    QVERIFY(QString::fromLocal8Bit(p.readAllStandardError()).contains(message));
}

void TestTpendant::help()
{
    QTemporaryDir dir;
    QProcess p;
    p.setProcessEnvironment(environment(dir));
    p.start(QStringLiteral(TPENDANT_BIN), {QStringLiteral("-platform"), QStringLiteral("offscreen"), QStringLiteral("--help")});
    QVERIFY(p.waitForFinished(15000));
    QCOMPARE(p.exitCode(), 0);
    QVERIFY(p.readAllStandardOutput().contains("--screenshot"));
}

void TestTpendant::helpWithoutDisplay()
{
    QTemporaryDir dir;
    QProcessEnvironment env = environment(dir);
    for (const char *name : {"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY"})
        env.remove(QLatin1String(name));
    for (const char *flag : {"--help", "-h"}) {
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(QStringLiteral(TPENDANT_BIN), {QLatin1String(flag)});
        QVERIFY(p.waitForFinished(15000));
        QCOMPARE(p.exitStatus(), QProcess::NormalExit);
        QVERIFY2(p.exitCode() == 0, p.readAllStandardError().constData());
        const QByteArray out = p.readAllStandardOutput();
        QVERIFY(out.contains("--screenshot"));
        QVERIFY(out.contains("--vnc-listen"));
    }
}

QTEST_GUILESS_MAIN(TestTpendant)
#include "tst_tpendant.moc"
