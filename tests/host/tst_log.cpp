#include <orba/log.h>
#include <orba/modulemanager.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

#include <unistd.h>

using orba::LogLine;

namespace {

QByteArray readFile(const QString &path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

} // namespace

class TestLog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void fileLineAppends_data();
    void fileLineAppends();
    void hookSeesEveryLine();
    void consoleOnlyWritesNoFile();
    void streamedTypes();
    void absolutePatternIgnoresRoot();
    void unwritableFileIsSkipped();
    void consoleLineHasColourAndReset();

private:
    QTemporaryDir *m_dir = nullptr;
    QList<LogLine> m_lines;
};

void TestLog::init()
{
    orba::ModuleManager::resetRoot();
    m_dir = new QTemporaryDir;
    QVERIFY(m_dir->isValid());
    orba::setLogRoot(m_dir->path());
    orba::setConsoleLogEnabled(false);
    m_lines.clear();
    orba::setLogHook([this](const LogLine &line) { m_lines.append(line); });
}

void TestLog::cleanup()
{
    orba::setLogHook(nullptr);
    orba::setConsoleLogEnabled(true);
    orba::setLogRoot(QString());
    delete m_dir;
    m_dir = nullptr;
}

void TestLog::fileLineAppends_data()
{
    QTest::addColumn<bool>("withConsole");
    QTest::newRow("QFLog") << true;
    QTest::newRow("FLog") << false;
}

void TestLog::fileLineAppends()
{
    QFETCH(bool, withConsole);
    const QString tag = QStringLiteral("[E|11/21 10:00:00.000]");
    if (withConsole) {
        orba::QFLog("\033[31m", tag, "./log/%1", "tpallet", "log") << "first " << 1;
        orba::QFLog("\033[31m", tag, "./log/%1", "tpallet", "log") << "second";
    } else {
        orba::FLog(tag, "./log/%1", "tpallet", "log") << "first " << 1;
        orba::FLog(tag, "./log/%1", "tpallet", "log") << "second";
    }
    const QString path = QDir(m_dir->path()).filePath("log/tpallet.log");
    QCOMPARE(readFile(path), QByteArray("[E|11/21 10:00:00.000] first 1\n[E|11/21 10:00:00.000] second\n"));
    QCOMPARE(m_lines.size(), 2);
    QCOMPARE(m_lines.at(0).filePath, path);
}

void TestLog::hookSeesEveryLine()
{
    orba::QFLog("\033[35m", "[S|tag]", "./log/%1", "tpallet", "log") << "tpallet v" << "1.1.0";
    QCOMPARE(m_lines.size(), 1);
    QCOMPARE(m_lines.at(0).colour, QStringLiteral("\033[35m"));
    QCOMPARE(m_lines.at(0).tag, QStringLiteral("[S|tag]"));
    QCOMPARE(m_lines.at(0).message, QStringLiteral("tpallet v1.1.0"));
    orba::setLogHook(nullptr);
    orba::QLog("\033[36m", "[I|x]") << "unseen";
    QCOMPARE(m_lines.size(), 1);
}

void TestLog::consoleOnlyWritesNoFile()
{
    orba::QLog("\033[36m", "[I|x]") << "console";
    QCOMPARE(m_lines.size(), 1);
    QVERIFY(m_lines.at(0).filePath.isEmpty());
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot), QStringList());
}

void TestLog::streamedTypes()
{
    orba::QLog("", "[I]") << QStringLiteral("s") << "c" << QByteArray("b") << 7 << qint64(-5000000000LL) << 0.25
                          << true;
    QCOMPARE(m_lines.size(), 1);
    QCOMPARE(m_lines.at(0).message, QStringLiteral("scb7-50000000000.25true"));
}

void TestLog::absolutePatternIgnoresRoot()
{
    QTemporaryDir other;
    const QString pattern = other.path() + QStringLiteral("/deep/%1");
    orba::FLog("[I]", pattern, "abs", "txt") << "x";
    QCOMPARE(readFile(other.path() + "/deep/abs.txt"), QByteArray("[I] x\n"));
}

void TestLog::unwritableFileIsSkipped()
{
    // The log folder is a plain file: nothing can be created below it.
    QFile blocker(QDir(m_dir->path()).filePath("log"));
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    orba::QFLog("", "[E]", "./log/%1", "tpallet", "log") << "lost";
    QCOMPARE(m_lines.size(), 1);
    QCOMPARE(m_lines.at(0).message, QStringLiteral("lost"));
    QCOMPARE(blocker.size(), 0);
}

void TestLog::consoleLineHasColourAndReset()
{
    orba::setConsoleLogEnabled(true);
    const QString capture = QDir(m_dir->path()).filePath("stderr.txt");
    fflush(stderr);
    const int saved = dup(STDERR_FILENO);
    QFile out(capture);
    QVERIFY(out.open(QIODevice::WriteOnly));
    dup2(out.handle(), STDERR_FILENO);
    orba::QLog("\033[31m", "[E|t]") << "boom";
    fflush(stderr);
    dup2(saved, STDERR_FILENO);
    close(saved);
    out.close();
    QCOMPARE(readFile(capture), QByteArray("\033[31m[E|t] boom\033[0m\n"));
}

QTEST_GUILESS_MAIN(TestLog)
#include "tst_log.moc"
