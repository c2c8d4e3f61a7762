// The largest pallet list the pendant handles: 100 pallets of 1200 places with 32-character names.
// It must fit under every cap (JSON text, JSON nodes, line, XML file) and travel whole through both
// load protocols, in process and over TCP, and through an XML file.
#include "palletfixture.h"
#include "pendanttestutil.h"

#include "pages/palletpage.h"

#include <orba/json.h>
#include <orbat/transport.h>

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QtTest>

namespace {

constexpr int kPallets = 100;
constexpr int kRows = 40;
constexpr int kCols = 30;

// The longest name a pallet can have, distinct per pallet.
QString longName(int i)
{
    const QString name = QStringLiteral("largest-list-pallet-%1-").arg(i, 3, 10, QLatin1Char('0'));
    return name + QString(32 - name.size(), QLatin1Char('x'));
}

qint64 nodeCount(const orba::ModuleObject *node)
{
    qint64 n = 1;
    for (int i = 0; i < node->cmobjCount(); ++i)
        n += nodeCount(node->c(i));
    return n;
}

// A controller on an existing data directory: embedded or rcsim, current or legacy protocol.
class Link
{
public:
    ~Link() { stop(); }

    bool start(const QString &dataDir, bool tcp, bool legacy, QString *error)
    {
        if (tcp) {
            QStringList args{QStringLiteral("--listen"), QStringLiteral("127.0.0.1:0"), QStringLiteral("--data"), dataDir};
            if (legacy)
                args << QStringLiteral("--legacy");
            m_rcsim.start(QStringLiteral(RCSIM_BIN), args);
            QByteArray out;
            QElapsedTimer timer;
            timer.start();
            while (m_rcsim.waitForStarted(100) && !out.contains('\n') && timer.elapsed() < 20000) {
                m_rcsim.waitForReadyRead(100);
                out += m_rcsim.readAllStandardOutput();
            }
            const QRegularExpressionMatch m =
                QRegularExpression(QStringLiteral("listening on [^:]+:(\\d+)")).match(QString::fromLatin1(out));
            if (!m.hasMatch()) {
                *error = QStringLiteral("rcsim did not start: ") + QString::fromLocal8Bit(out + m_rcsim.readAllStandardError());
                return false;
            }
            m_transport = std::make_unique<orbat::TcpTransport>(QStringLiteral("127.0.0.1"), quint16(m.captured(1).toUInt()));
        } else {
            rc::Controller::Options options;
            options.dataDir = dataDir;
            options.legacy = legacy;
            m_embedded = std::make_unique<rc::EmbeddedController>(options);
            if (!m_embedded->start(error))
                return false;
            m_transport = std::make_unique<orbat::InProcessTransport>(m_embedded->endpoint());
        }
        tservice()->setTransport(m_transport.get());
        m_transport->open();
        return EmbeddedLink::waitConnected(true, 60000);
    }

    void stop()
    {
        if (m_transport && tservice()->transport() == m_transport.get())
            tservice()->setTransport(nullptr);
        m_transport.reset();
        m_embedded.reset();
        if (m_rcsim.state() != QProcess::NotRunning) {
            m_rcsim.terminate();
            if (!m_rcsim.waitForFinished(10000)) {
                m_rcsim.kill();
                m_rcsim.waitForFinished(5000);
            }
        }
    }

private:
    QProcess m_rcsim;
    std::unique_ptr<rc::EmbeddedController> m_embedded;
    std::unique_ptr<orbat::Transport> m_transport;
};

} // namespace

class TstLargestList : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void fitsUnderEveryCap();
    void loadsWhole_data();
    void loadsWhole();
    void xmlFileRoundTrip();

private:
    void buildList();

    PalletFixture m_fx;
    QTemporaryDir m_dataDir;
    QVector<QByteArray> m_source;
    qint64 m_listBytes = 0;
    qint64 m_listNodes = 0;
};

void TstLargestList::buildList()
{
    orba::ModuleObject *pallets = tpallet::palletsNode();
    pallets->clear(nullptr);
    for (int i = 0; i < kPallets; ++i) {
        orba::ModuleObject *pallet = PalletFixture::addFullPallet(longName(i), kRows, kCols, i);
        pallet->set(nullptr, QStringLiteral("index"), i, true);
    }
}

void TstLargestList::initTestCase()
{
    QVERIFY(m_dataDir.isValid());
    m_fx.setUp();
    m_fx.module()->init();
    m_fx.module()->setup();
    // A whole-list write of this size takes seconds on a slow machine; the deadline is not under test.
    tservice()->setTimeout(QStringLiteral("tray.data"), 300000);
    tservice()->setTimeout(QStringLiteral("tray.query.one"), 60000);
    tservice()->setTimeout(QStringLiteral("tray.query.list"), 60000);

    QElapsedTimer timer;
    timer.start();
    buildList();
    orba::ModuleObject *pallets = tpallet::palletsNode();
    QCOMPARE(pallets->cmobjCount(), kPallets);
    for (int i = 0; i < kPallets; ++i) {
        QCOMPARE(pallets->c(i)->r(QStringLiteral("points"))->cmobjCount(), kRows * kCols);
        m_source << pallets->c(i)->exportToJson(true);
    }
    const QByteArray list = pallets->exportToJson(true);
    m_listBytes = list.size();
    m_listNodes = nodeCount(pallets);
    qInfo("built %d pallets in %lld ms: %.1f MB of JSON, %lld nodes", kPallets, timer.elapsed(), m_listBytes / 1e6,
          m_listNodes);

    // The whole list goes to the controller in one line over TCP, as the page's "save all" sends it.
    // The page reloads its list on the connection: the pallets wait outside it.
    orba::ModuleObject outside(QStringLiteral("pallets"));
    while (pallets->cmobjCount() > 0)
        outside.append(nullptr, pallets->take(nullptr, 0));
    Link link;
    QString error;
    QVERIFY2(link.start(m_dataDir.path(), true, false, &error), qPrintable(error));
    timer.restart();
    QCOMPARE(tservice()->set(nullptr, QStringLiteral("tray.data"), &outside), 0);
    qInfo("whole list written over TCP in %lld ms", timer.elapsed());
    const orba::MobjPtr names = tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"));
    QCOMPARE(names->c(QStringLiteral("data"))->cmobjCount(), kPallets);
    link.stop();
    pallets->clear(nullptr);
}

void TstLargestList::cleanupTestCase()
{
    m_fx.tearDown();
}

void TstLargestList::fitsUnderEveryCap()
{
    // The longest line: a "tray.data" reply carrying the list (its envelope is a few dozen bytes).
    const qint64 line = m_listBytes + 64;
    qInfo("list %.1f MB / line cap %.1f MB = %.2f; %lld nodes / node cap %lld = %.2f", m_listBytes / 1e6,
          orbat::Transport::maxLineBytes() / 1e6, double(line) / orbat::Transport::maxLineBytes(), m_listNodes,
          orba::json::maxJsonNodes(), double(m_listNodes) / orba::json::maxJsonNodes());
    QVERIFY(line < orbat::Transport::maxLineBytes());
    QVERIFY(line < orba::json::maxJsonBytes());
    QVERIFY(m_listNodes + 8 < orba::json::maxJsonNodes());
    // And each cap is still a cap: well under what a hostile peer could make a reader allocate.
    QVERIFY(orbat::Transport::maxLineBytes() <= 4 * line);
    QVERIFY(orba::json::maxJsonNodes() <= 4 * m_listNodes);
}

void TstLargestList::loadsWhole_data()
{
    QTest::addColumn<bool>("tcp");
    QTest::addColumn<bool>("legacy");
    QTest::newRow("per-pallet, embedded") << false << false;
    QTest::newRow("per-pallet, rcsim") << true << false;
    QTest::newRow("whole list, embedded") << false << true;
    QTest::newRow("whole list, rcsim") << true << true;
}

void TstLargestList::loadsWhole()
{
    QFETCH(bool, tcp);
    QFETCH(bool, legacy);
    orba::ModuleObject *pallets = tpallet::palletsNode();
    QCOMPARE(pallets->cmobjCount(), 0);

    QElapsedTimer timer;
    timer.start();
    Link link;
    QString error;
    QVERIFY2(link.start(m_dataDir.path(), tcp, legacy, &error), qPrintable(error));
    // The page loads on the connection; the last place of the last pallet marks the end.
    QTRY_VERIFY_WITH_TIMEOUT(pallets->cmobjCount() == kPallets
                                 && pallets->c(kPallets - 1)->r(QStringLiteral("points"))->cmobjCount() == kRows * kCols,
                             300000);
    qInfo("connected and loaded in %lld ms", timer.elapsed());
    for (int i = 0; i < kPallets; ++i)
        QVERIFY2(pallets->c(i)->exportToJson(true) == m_source.at(i), qPrintable(longName(i)));
    link.stop();
    pallets->clear(nullptr);
}

void TstLargestList::xmlFileRoundTrip()
{
    buildList();
    orba::ModuleObject *pallets = tpallet::palletsNode();
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("tray.xml"));
    QVERIFY2(orba::ModuleManager::writeToXmlFile(file, pallets, true), qPrintable(orba::ModuleManager::lastError()));
    const qint64 size = QFileInfo(file).size();
    qInfo("XML file %.1f MB / cap %.1f MB = %.2f", size / 1e6, orba::ModuleManager::maxXmlBytes() / 1e6,
          double(size) / orba::ModuleManager::maxXmlBytes());
    QVERIFY(size < orba::ModuleManager::maxXmlBytes());

    orba::ModuleObject back(QStringLiteral("back"));
    QVERIFY2(orba::ModuleManager::readFromXmlFile(nullptr, &back, file), qPrintable(orba::ModuleManager::lastError()));
    QCOMPARE(back.cmobjCount(), kPallets);
    for (int i = 0; i < kPallets; ++i)
        QVERIFY2(back.c(i)->exportToJson(true) == m_source.at(i), qPrintable(longName(i)));
    pallets->clear(nullptr);
}

QTEST_MAIN(TstLargestList)
#include "tst_largestlist.moc"
