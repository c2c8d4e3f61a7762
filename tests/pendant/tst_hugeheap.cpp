#include "hugeheap.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdlib>

#if defined(__GLIBC__)
#include <gnu/libc-version.h>
#endif

// The shell restarts itself once so that glibc backs its heap with huge pages.
class TestHugeHeap : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void activeReadsTheTunable_data();
    void activeReadsTheTunable();
    void decidedAlreadyRunsOn_data();
    void decidedAlreadyRunsOn();
    void tpendantRestartsOnce_data();
    void tpendantRestartsOnce();

private:
    QByteArray m_tunables;
    QByteArray m_wanted;
};

namespace {

void restore(const char *name, const QByteArray &value)
{
    if (value.isNull())
        qunsetenv(name);
    else
        qputenv(name, value);
}

bool platformCan(QString *why)
{
#if defined(__SANITIZE_ADDRESS__)
    *why = QStringLiteral("the sanitizers bring their own allocator");
    return false;
#elif defined(__GLIBC__)
    int major = 0;
    int minor = 0;
    if (std::sscanf(gnu_get_libc_version(), "%d.%d", &major, &minor) != 2 || major < 2 || (major == 2 && minor < 35)) {
        *why = QStringLiteral("glibc before 2.35");
        return false;
    }
    QFile mode(QStringLiteral("/sys/kernel/mm/transparent_hugepage/enabled"));
    if (!mode.open(QIODevice::ReadOnly) || mode.readAll().contains("[never]")) {
        *why = QStringLiteral("no transparent huge pages on this kernel");
        return false;
    }
    return true;
#else
    *why = QStringLiteral("not glibc");
    return false;
#endif
}

QByteArray environOf(qint64 pid)
{
    QFile f(QStringLiteral("/proc/%1/environ").arg(pid));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

void TestHugeHeap::init()
{
    m_tunables = qgetenv("GLIBC_TUNABLES");
    if (!qEnvironmentVariableIsSet("GLIBC_TUNABLES"))
        m_tunables = QByteArray();
    m_wanted = qEnvironmentVariableIsSet("TPALLET_HUGE_HEAP") ? qgetenv("TPALLET_HUGE_HEAP") : QByteArray();
}

void TestHugeHeap::cleanup()
{
    restore("GLIBC_TUNABLES", m_tunables);
    restore("TPALLET_HUGE_HEAP", m_wanted);
}

void TestHugeHeap::activeReadsTheTunable_data()
{
    QTest::addColumn<QByteArray>("tunables");
    QTest::addColumn<bool>("active");
    QTest::newRow("not set") << QByteArray() << false;
    QTest::newRow("on") << QByteArray("glibc.malloc.hugetlb=1") << true;
    QTest::newRow("off") << QByteArray("glibc.malloc.hugetlb=0") << false;
    QTest::newRow("on after another tunable") << QByteArray("glibc.malloc.check=0:glibc.malloc.hugetlb=1") << true;
    QTest::newRow("another tunable only") << QByteArray("glibc.malloc.check=0") << false;
}

void TestHugeHeap::activeReadsTheTunable()
{
    QFETCH(QByteArray, tunables);
    QFETCH(bool, active);
    restore("GLIBC_TUNABLES", tunables);
    QCOMPARE(hugeheap::active(), active);
}

void TestHugeHeap::decidedAlreadyRunsOn_data()
{
    QTest::addColumn<QByteArray>("tunables");
    QTest::addColumn<QByteArray>("wanted");
    QTest::newRow("tunable set to off by the caller") << QByteArray("glibc.malloc.hugetlb=0") << QByteArray();
    QTest::newRow("tunable set to on") << QByteArray("glibc.malloc.hugetlb=1") << QByteArray();
    QTest::newRow("refused by TPALLET_HUGE_HEAP=0") << QByteArray() << QByteArray("0");
}

// A restart here would start this test binary over: returning is the assertion.
void TestHugeHeap::decidedAlreadyRunsOn()
{
    QFETCH(QByteArray, tunables);
    QFETCH(QByteArray, wanted);
    restore("GLIBC_TUNABLES", tunables);
    restore("TPALLET_HUGE_HEAP", wanted);
    char name[] = "tst_hugeheap";
    char *argv[] = {name, nullptr};
    hugeheap::restartWithHugePages(argv);
    QCOMPARE(qgetenv("GLIBC_TUNABLES"), tunables);
}

void TestHugeHeap::tpendantRestartsOnce_data()
{
    QTest::addColumn<QString>("wanted");
    QTest::addColumn<bool>("huge");
    QTest::newRow("default") << QString() << true;
    QTest::newRow("TPALLET_HUGE_HEAP=0") << QStringLiteral("0") << false;
}

void TestHugeHeap::tpendantRestartsOnce()
{
    QFETCH(QString, wanted);
    QFETCH(bool, huge);
    QString why;
    if (!platformCan(&why))
        QSKIP(qPrintable(why));
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.remove(QStringLiteral("GLIBC_TUNABLES"));
    env.remove(QStringLiteral("TPALLET_HUGE_HEAP"));
    if (!wanted.isEmpty())
        env.insert(QStringLiteral("TPALLET_HUGE_HEAP"), wanted);
    env.insert(QStringLiteral("HOME"), dir.filePath(QStringLiteral("home")));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), dir.filePath(QStringLiteral("home/.config")));
    QProcess p;
    p.setProcessEnvironment(env);
    p.setWorkingDirectory(dir.path());
    p.start(QStringLiteral(TPENDANT_BIN), {QStringLiteral("-platform"), QStringLiteral("offscreen"), QStringLiteral("--data"),
                                           dir.filePath(QStringLiteral("rc"))});
    QVERIFY(p.waitForStarted());
    const qint64 pid = p.processId();
    // The restart keeps the process: same pid, the setting in its environment from then on.
    QByteArray environ;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < (huge ? 15000 : 1500)) {
        environ = environOf(pid);
        if (environ.contains("GLIBC_TUNABLES="))
            break;
        QTest::qWait(20);
    }
    QCOMPARE(p.state(), QProcess::Running);
    QCOMPARE(p.processId(), pid);
    const QList<QByteArray> vars = environ.split('\0');
    QCOMPARE(vars.contains("GLIBC_TUNABLES=glibc.malloc.hugetlb=1"), huge);
    QCOMPARE(vars.count("GLIBC_TUNABLES=glibc.malloc.hugetlb=1"), huge ? 1 : 0);
    p.terminate();
    if (!p.waitForFinished(10000)) {
        p.kill();
        p.waitForFinished(5000);
    }
}

QTEST_GUILESS_MAIN(TestHugeHeap)
#include "tst_hugeheap.moc"
