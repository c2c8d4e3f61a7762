#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QtTest>

// tpendant served over VNC: it listens where it is told, loopback unless told otherwise, and the
// moved socket still serves.
class TestVncListen : public QObject
{
    Q_OBJECT

private slots:
    void listensOnlyWhereTold_data();
    void listensOnlyWhereTold();
};

namespace {

struct Listener
{
    QString address; // as /proc shows it: hex, host byte order per 32-bit word
    bool ipv6 = false;
};

// Every TCP socket of the machine listening on `port`, from /proc/net/tcp and tcp6.
QList<Listener> listenersOn(quint16 port)
{
    QList<Listener> out;
    for (const char *file : {"/proc/net/tcp", "/proc/net/tcp6"}) {
        QFile f{QString::fromLatin1(file)};
        if (!f.open(QIODevice::ReadOnly))
            continue;
        const QList<QByteArray> lines = f.readAll().split('\n');
        for (int i = 1; i < lines.size(); ++i) {
            const QList<QByteArray> fields = lines.at(i).simplified().split(' ');
            if (fields.size() < 4 || fields.at(3) != "0A") // 0A: LISTEN
                continue;
            const QList<QByteArray> local = fields.at(1).split(':');
            if (local.size() != 2 || local.at(1).toUShort(nullptr, 16) != port)
                continue;
            out.append(Listener{QString::fromLatin1(local.at(0)), local.at(0).size() == 32});
        }
    }
    return out;
}

quint16 freePort()
{
    QTcpServer probe;
    if (!probe.listen(QHostAddress::LocalHost, 0))
        return 0;
    return probe.serverPort();
}

} // namespace

void TestVncListen::listensOnlyWhereTold_data()
{
    QTest::addColumn<QStringList>("extra");
    QTest::addColumn<QString>("expected");
    QTest::addColumn<QString>("shown");
    // 127.0.0.1 reads 0100007F in /proc (little-endian word).
    QTest::newRow("default: loopback only") << QStringList{} << "0100007F" << "127.0.0.1";
    QTest::newRow("exposed on request") << QStringList{"--vnc-listen", "0.0.0.0"} << "00000000" << "0.0.0.0";
}

void TestVncListen::listensOnlyWhereTold()
{
    QFETCH(QStringList, extra);
    QFETCH(QString, expected);
    QFETCH(QString, shown);
    if (!QFile::exists(QStringLiteral("/proc/net/tcp")))
        QSKIP("no /proc/net/tcp on this system");
    const quint16 port = freePort();
    QVERIFY(port != 0);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("QT_QPA_PLATFORM"));
    env.insert(QStringLiteral("HOME"), dir.filePath(QStringLiteral("home")));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("home/.config")));
    env.insert(QStringLiteral("XDG_DATA_HOME"), dir.filePath(QStringLiteral("home/.local/share")));
    QProcess p;
    p.setProcessEnvironment(env);
    p.setWorkingDirectory(dir.path());
    p.start(QStringLiteral(TPENDANT_BIN),
            QStringList{QStringLiteral("-platform"), QStringLiteral("vnc:size=1280x800:port=%1").arg(port),
                        QStringLiteral("--modules"), QStringLiteral("/nonexistent"), QStringLiteral("--data"),
                        dir.filePath(QStringLiteral("rc"))}
                + extra);
    QVERIFY(p.waitForStarted());

    QByteArray out;
    QElapsedTimer timer;
    timer.start();
    while (!out.contains("VNC server on") && timer.elapsed() < 20000 && p.state() == QProcess::Running) {
        p.waitForReadyRead(100);
        out += p.readAllStandardOutput();
    }
    QVERIFY2(out.contains(QStringLiteral("VNC server on %1:%2").arg(shown).arg(port).toLatin1()),
             out.constData() + p.readAllStandardError());

    const QList<Listener> listeners = listenersOn(port);
    QStringList seen;
    for (const Listener &l : listeners)
        seen << l.address;
    QVERIFY2(listeners.size() == 1 && listeners.first().address == expected && !listeners.first().ipv6,
             qPrintable(QStringLiteral("listening on port %1: %2").arg(port).arg(seen.join(QLatin1String(", ")))));

    // The moved socket serves: a viewer on loopback gets the protocol greeting.
    QTcpSocket viewer;
    viewer.connectToHost(QHostAddress::LocalHost, port);
    QVERIFY(viewer.waitForConnected(5000));
    QByteArray greeting;
    timer.restart();
    while (greeting.size() < 12 && timer.elapsed() < 5000) {
        viewer.waitForReadyRead(100);
        greeting += viewer.readAll();
    }
    QVERIFY2(greeting.startsWith("RFB "), greeting.constData());
    viewer.abort();

    p.terminate();
    if (!p.waitForFinished(10000)) {
        p.kill();
        p.waitForFinished(5000);
    }
}

QTEST_GUILESS_MAIN(TestVncListen)
#include "tst_vnclisten.moc"
