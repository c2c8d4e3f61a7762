#include "palletfixture.h"

#include "module/modulelog.h"
#include "module/tpallet.h"
#include "pages/newpalletdialog.h"
#include "pages/palletpage.h"

#include <orbat/controllermanager.h>

#include <QDialog>
#include <QLineEdit>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {

const QStringList kFullProtocol{"tray.query.list", "tray.query.one", "tray.data", "tray.add_one",
                                "tray.del_one", "tray.set.one", "tray.set.name"};
const QStringList kLegacyProtocol{"tray.query.list", "tray.data", "tray.add_one", "tray.del_one",
                                  "tray.set.one", "tray.set.name"};

// Counts how often a widget is shown.
class ShowCounter : public QObject
{
public:
    explicit ShowCounter(QWidget *widget) { widget->installEventFilter(this); }
    int shows = 0;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Show)
            ++shows;
        return QObject::eventFilter(watched, event);
    }
};

QByteArray listJson(const QStringList &names)
{
    QStringList items;
    for (int i = 0; i < names.size(); ++i)
        items << QStringLiteral("{\"index\":%1,\"name\":\"%2\"}").arg(i).arg(names.at(i));
    return (QLatin1Char('[') + items.join(QLatin1Char(',')) + QLatin1Char(']')).toUtf8();
}

QStringList palletNames()
{
    QStringList names;
    orba::ModuleObject *pallets = tpallet::palletsNode();
    for (int i = 0; i < pallets->cmobjCount(); ++i)
        names << pallets->c(i)->c(QStringLiteral("name"), false)->getString();
    return names;
}

} // namespace

class TstSync : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void perPalletLoadSendsListThenOneQueryPerPallet();
    void perPalletLoadMovesReplyFieldsInOrder();
    void perPalletLoadProgressValues_data();
    void perPalletLoadProgressValues();
    void legacyControllerLoadsWholeListWithoutProgress();
    void listReplyWithoutDataLeavesListEmpty();
    void failedQueryKeepsItsPositionAndLoadGoesOn_data();
    void failedQueryKeepsItsPositionAndLoadGoesOn();
    void fewerPalletsThanAnnouncedKeepsEveryPosition();
    void replyDataIsMovedWhateverItHolds_data();
    void replyDataIsMovedWhateverItHolds();
    void legacyReadIsTakenAsItIs_data();
    void legacyReadIsTakenAsItIs();
    void legacyFailedReadLeavesListEmpty();
    void pageGoneMidLoadEndsTheLoad_data();
    void pageGoneMidLoadEndsTheLoad();
    void pageWidgetGoneMidLoadStillLoadsTheList();
    void elementGoneMidQueryIsNotFilled();
    void disconnectMidLoadThenNextConnectionReloads();
    void secondConnectionReplacesCopyAndClosesBoundDialog();
    void connectionDuringLoadReloadsAfterwards();
    void refreshDuringLoadWaitsForCompleteList();
    void disconnectionKeepsWorkingCopy();
    void saveToRCSendsWholePallet();
    void saveAllToRCWritesTrayData();
    void saveNameToRCSendsTempNode();
    void deleteIndexEqualsRenameIndex();
    void addCountMismatchIsLogged_data();
    void addCountMismatchIsLogged();

private:
    PalletPage *page() const { return m_fx.module()->page(); }
    void scriptPallets(const QStringList &names);

    PalletFixture m_fx;
};

void TstSync::init()
{
    m_fx.setUp();
    tservice()->setTimeout(QStringLiteral("tray.query.one"), 200);
    m_fx.module()->init();
    m_fx.module()->setup();
}

void TstSync::cleanup()
{
    m_fx.tearDown();
}

void TstSync::scriptPallets(const QStringList &names)
{
    orbat::ScriptedTransport *t = m_fx.transport();
    t->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    t->setHandler([names](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method == QLatin1String("tray.query.one")) {
            const int i = request.params ? request.params->getInt(-1) : -1;
            if (i >= 0 && i < names.size())
                reply.dataJson = PalletFixture::palletJson(names.at(i), i + 1, 2, i, QStringLiteral("d%1").arg(i));
            else
                reply.status = -1;
        }
        return reply;
    });
}

void TstSync::perPalletLoadSendsListThenOneQueryPerPallet()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"a", "b", "c"});
    m_fx.connectController();

    QCOMPARE(m_fx.palletMethods(), (QStringList{"tray.query.list", "tray.query.one", "tray.query.one", "tray.query.one"}));
    const auto list = m_fx.requestsOf(QStringLiteral("tray.query.list"));
    QCOMPARE(list.size(), 1);
    QCOMPARE(list.at(0).op, QStringLiteral("exec"));
    QVERIFY(!list.at(0).params);
    const auto queries = m_fx.requestsOf(QStringLiteral("tray.query.one"));
    for (int i = 0; i < queries.size(); ++i) {
        QCOMPARE(queries.at(i).op, QStringLiteral("exec"));
        QCOMPARE(queries.at(i).paramsJson, QByteArray::number(i));
        QVERIFY(queries.at(i).params);
        QCOMPARE(queries.at(i).params->value(), QVariant(i));
        QCOMPARE(queries.at(i).params->cmobjCount(), 0);
    }
    QCOMPARE(palletNames(), (QStringList{"a", "b", "c"}));
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 3);
}

void TstSync::perPalletLoadMovesReplyFieldsInOrder()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"first", "second"});
    m_fx.connectController();

    orba::ModuleObject *pallets = tpallet::palletsNode();
    QCOMPARE(pallets->size(), 2);
    for (int i = 0; i < 2; ++i) {
        orba::ModuleObject *pallet = pallets->c(i);
        QCOMPARE(pallet->name(), QStringLiteral("#%1").arg(i));
        QCOMPARE(pallet->cmobjNames(), (QStringList{"name", "desc", "index", "pattern", "calibrate", "waypoint", "points"}));
        QCOMPARE(pallet->c(QStringLiteral("index"), false)->getInt(-1), i);
        QCOMPARE(pallet->r(QStringLiteral("pattern.row"))->getInt(), i + 1);
        QCOMPARE(pallet->r(QStringLiteral("pattern.col"))->getInt(), 2);
        QCOMPARE(pallet->r(QStringLiteral("calibrate.use_p4"))->getBool(false), true);
    }
    QCOMPARE(pallets->c(1)->c(QStringLiteral("desc"), false)->getString(), QStringLiteral("d1"));
}

void TstSync::perPalletLoadProgressValues_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QList<int>>("values");
    QTest::newRow("no pallets") << QStringList{} << QList<int>{0, 100};
    QTest::newRow("one pallet") << QStringList{"a"} << QList<int>{0, 0, 100};
    QTest::newRow("three pallets") << QStringList{"a", "b", "c"} << QList<int>{0, 0, 33, 66, 100};
    QTest::newRow("four pallets") << QStringList{"a", "b", "c", "d"} << QList<int>{0, 0, 25, 50, 75, 100};
}

void TstSync::perPalletLoadProgressValues()
{
    QFETCH(QStringList, names);
    QFETCH(QList<int>, values);
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets(names);

    QProgressDialog *dialog = page()->progressDialog();
    QVERIFY(dialog);
    QCOMPARE(dialog->objectName(), QStringLiteral("dlgLoadProgress"));
    QCOMPARE(dialog->labelText(), QStringLiteral("Acquiring pallet data..."));
    QCOMPARE(dialog->windowModality(), Qt::WindowModal);
    QVERIFY(dialog->windowFlags() & Qt::FramelessWindowHint);
    QCOMPARE(dialog->minimumDuration(), 1);
    QVERIFY(!dialog->findChild<QPushButton *>());
    ShowCounter counter(dialog);

    QList<int> seen;
    QList<bool> visible;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) {
        seen << value;
        visible << dialog->isVisible();
    });
    m_fx.connectController();

    QCOMPARE(seen, values);
    QVERIFY(!visible.contains(false));
    QCOMPARE(counter.shows, 1);
    QVERIFY(!dialog->isVisible());
    // Nothing shows it again later.
    QTest::qWait(20);
    QVERIFY(!dialog->isVisible());
    QCOMPARE(palletNames(), names);
}

void TstSync::legacyControllerLoadsWholeListWithoutProgress()
{
    m_fx.setCapabilities(kLegacyProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.data"), 0,
                               "[" + PalletFixture::palletJson("old1", 2, 2, 0) + "," +
                                   PalletFixture::palletJson("old2", 3, 1, 1) + "]");
    ShowCounter counter(page()->progressDialog());
    QSignalSpy progress(page(), &PalletPage::loadProgress);
    m_fx.connectController();

    QCOMPARE(m_fx.palletMethods(), QStringList{"tray.data"});
    const auto reads = m_fx.requestsOf(QStringLiteral("tray.data"));
    QCOMPARE(reads.size(), 1);
    QCOMPARE(reads.at(0).op, QStringLiteral("get"));
    QCOMPARE(progress.count(), 0);
    QCOMPARE(counter.shows, 0);
    QCOMPARE(palletNames(), (QStringList{"old1", "old2"}));
    QCOMPARE(tpallet::palletsNode()->c(1)->r(QStringLiteral("pattern.row"))->getInt(), 3);
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 2);
}

void TstSync::listReplyWithoutDataLeavesListEmpty()
{
    PalletFixture::addLocalPallet(QStringLiteral("stale"), 1, 1);
    m_fx.setCapabilities(kFullProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0);
    ShowCounter counter(page()->progressDialog());
    m_fx.connectController();

    QCOMPARE(m_fx.palletMethods(), QStringList{"tray.query.list"});
    QCOMPARE(tpallet::palletsNode()->size(), 0);
    QCOMPARE(counter.shows, 0);
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 0);
}

void TstSync::failedQueryKeepsItsPositionAndLoadGoesOn_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("refused") << -1;
    QTest::newRow("controller error") << -5;
    QTest::newRow("positive status") << 4;
}

void TstSync::failedQueryKeepsItsPositionAndLoadGoesOn()
{
    QFETCH(int, status);
    m_fx.setCapabilities(kFullProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson({"a", "b", "c"}));
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson("a", 1, 1, 0));
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), status);
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson("c", 3, 2, 2));
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) { seen << value; });
    m_fx.connectController();

    // One query per announced pallet, the third one asked for although the second failed.
    const auto queries = m_fx.requestsOf(QStringLiteral("tray.query.one"));
    QCOMPARE(queries.size(), 3);
    QCOMPARE(queries.at(2).paramsJson, QByteArray("2"));
    // Every position has its element; the failed one stays empty, the third is loaded.
    orba::ModuleObject *pallets = tpallet::palletsNode();
    QCOMPARE(pallets->cmobjNames(), (QStringList{"#0", "#1", "#2"}));
    QCOMPARE(pallets->c(1)->cmobjCount(), 0);
    QCOMPARE(palletNames(), (QStringList{"a", "", "c"}));
    QCOMPARE(pallets->c(2)->r(QStringLiteral("pattern.row"))->getInt(), 3);
    QCOMPARE(pallets->c(2)->c(QStringLiteral("index"), false)->getInt(-1), 2);
    // Initial 0, then i * 100 / 3 after each pallet i, then 100.
    QCOMPARE(seen, (QList<int>{0, 0, 33, 66, 100}));
    QVERIFY(!page()->progressDialog()->isVisible());
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 3);
}

void TstSync::fewerPalletsThanAnnouncedKeepsEveryPosition()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"a", "b"});
    // The list announces three; the controller knows only two.
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson({"a", "b", "c"}));
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) { seen << value; });
    m_fx.connectController();

    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 3);
    QCOMPARE(palletNames(), (QStringList{"a", "b", ""}));
    QCOMPARE(tpallet::palletsNode()->c(2)->cmobjCount(), 0);
    QCOMPARE(seen, (QList<int>{0, 0, 33, 66, 100}));
    QVERIFY(!page()->progressDialog()->isVisible());
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 3);
}

void TstSync::replyDataIsMovedWhateverItHolds_data()
{
    QTest::addColumn<QByteArray>("secondReply");
    QTest::addColumn<QStringList>("secondChildren");
    QTest::newRow("data is a number") << QByteArray("5") << QStringList{};
    QTest::newRow("data is a text") << QByteArray("\"tray\"") << QStringList{};
    QTest::newRow("data is null") << QByteArray("null") << QStringList{};
    QTest::newRow("data is missing") << QByteArray() << QStringList{};
    QTest::newRow("data is an empty object") << QByteArray("{}") << QStringList{};
    QTest::newRow("data is an array") << QByteArray("[1,{\"x\":2}]") << QStringList{"#0", "#1"};
    QTest::newRow("data is a partial pallet") << QByteArray("{\"name\":\"b\",\"extra\":true}") << QStringList{"name", "extra"};
    QTest::newRow("data is a pallet") << PalletFixture::palletJson("b", 1, 1, 1)
                                      << QStringList{"name", "desc", "index", "pattern", "calibrate", "waypoint", "points"};
}

void TstSync::replyDataIsMovedWhateverItHolds()
{
    QFETCH(QByteArray, secondReply);
    QFETCH(QStringList, secondChildren);
    m_fx.setCapabilities(kFullProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson({"a", "b", "c"}));
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson("a", 1, 1, 0));
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, secondReply);
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson("c", 1, 1, 2));
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) { seen << value; });
    m_fx.connectController();

    orba::ModuleObject *pallets = tpallet::palletsNode();
    QCOMPARE(pallets->cmobjCount(), 3);
    QCOMPARE(pallets->c(1)->cmobjNames(), secondChildren);
    // Only the children move: the element itself takes no value from the reply.
    QVERIFY(!pallets->c(1)->hasValue());
    QCOMPARE(pallets->c(0)->c(QStringLiteral("name"), false)->getString(), QStringLiteral("a"));
    QCOMPARE(pallets->c(2)->c(QStringLiteral("name"), false)->getString(), QStringLiteral("c"));
    QCOMPARE(seen, (QList<int>{0, 0, 33, 66, 100}));
    QVERIFY(!page()->progressDialog()->isVisible());
}

void TstSync::legacyReadIsTakenAsItIs_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QList<int>>("childCounts");
    QTest::newRow("elements without children")
        << 0 << QByteArray("[1,2]") << QStringList{"", ""} << QList<int>{0, 0};
    QTest::newRow("a pallet and an empty element")
        << 0 << "[" + PalletFixture::palletJson("old1", 2, 2, 0) + ",{}]" << QStringList{"old1", ""} << QList<int>{7, 0};
    QTest::newRow("non-zero status")
        << 3 << "[" + PalletFixture::palletJson("old1", 2, 2, 0) + "," + PalletFixture::palletJson("old2", 3, 1, 1) + "]"
        << QStringList{"old1", "old2"} << QList<int>{7, 7};
}

void TstSync::legacyReadIsTakenAsItIs()
{
    QFETCH(int, status);
    QFETCH(QByteArray, data);
    QFETCH(QStringList, names);
    QFETCH(QList<int>, childCounts);
    m_fx.setCapabilities(kLegacyProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.data"), status, data);
    QSignalSpy progress(page(), &PalletPage::loadProgress);
    m_fx.connectController();

    QCOMPARE(m_fx.palletMethods(), QStringList{"tray.data"});
    QCOMPARE(palletNames(), names);
    orba::ModuleObject *pallets = tpallet::palletsNode();
    QList<int> counts;
    for (int i = 0; i < pallets->cmobjCount(); ++i)
        counts << pallets->c(i)->cmobjCount();
    QCOMPARE(counts, childCounts);
    QCOMPARE(progress.count(), 0);
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), names.size());
}

void TstSync::legacyFailedReadLeavesListEmpty()
{
    m_fx.setCapabilities(kLegacyProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.data"), 0, "[" + PalletFixture::palletJson("old1", 2, 2, 0) + "]");
    m_fx.connectController();
    QCOMPARE(palletNames(), QStringList{"old1"});

    // The load clears first; a read that brings nothing leaves it so.
    m_fx.transport()->setReply(QStringLiteral("tray.data"), -1);
    page()->loadFromRC();
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 0);
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 0);
}

void TstSync::pageGoneMidLoadEndsTheLoad_data()
{
    QTest::addColumn<bool>("duringQuery");
    QTest::newRow("while the controller answers") << true;
    QTest::newRow("while the progress is shown") << false;
}

void TstSync::pageGoneMidLoadEndsTheLoad()
{
    QFETCH(bool, duringQuery);
    m_fx.setCapabilities(kFullProtocol);
    const QStringList names{"a", "b", "c"};
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    QPointer<PalletPage> guard = page();
    m_fx.transport()->setHandler([&](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method != QLatin1String("tray.query.one"))
            return reply;
        const int i = request.params->getInt(-1);
        if (duringQuery && i == 1)
            delete guard.data();
        reply.dataJson = PalletFixture::palletJson(names.value(i), 1, 1, i);
        return reply;
    });
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) {
        seen << value;
        if (!duringQuery && value == 33)
            delete guard.data();
    });
    m_fx.connectController();

    QVERIFY(!guard);
    // Nothing is asked after the page went.
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 2);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 2);
    QCOMPARE(seen, duringQuery ? (QList<int>{0, 0}) : (QList<int>{0, 0, 33}));
}

void TstSync::pageWidgetGoneMidLoadStillLoadsTheList()
{
    m_fx.setCapabilities(kFullProtocol);
    const QStringList names{"a", "b", "c"};
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    QPointer<QWidget> widget = page()->wgt();
    QPointer<QProgressDialog> dialog = page()->progressDialog();
    m_fx.transport()->setHandler([&](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method != QLatin1String("tray.query.one"))
            return reply;
        const int i = request.params->getInt(-1);
        // The host takes the page's widget down, progress dialog and table with it.
        if (i == 1)
            delete widget.data();
        reply.dataJson = PalletFixture::palletJson(names.value(i), 1, 1, i);
        return reply;
    });
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) { seen << value; });
    m_fx.connectController();

    QVERIFY(!widget);
    QVERIFY(!dialog);
    // The data still arrives; only the screen is gone.
    QCOMPARE(palletNames(), names);
    QCOMPARE(seen, (QList<int>{0, 0, 33, 66, 100}));

    // A later connection loads again without a screen to show it on.
    m_fx.transport()->clearRequests();
    page()->loadFromRC();
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 3);
    QCOMPARE(palletNames(), names);
}

void TstSync::elementGoneMidQueryIsNotFilled()
{
    m_fx.setCapabilities(kFullProtocol);
    const QStringList names{"a", "b", "c"};
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    m_fx.transport()->setHandler([&](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method != QLatin1String("tray.query.one"))
            return reply;
        const int i = request.params->getInt(-1);
        // Something else removes the element being filled.
        if (i == 1) {
            orba::ModuleObject *pallets = tpallet::palletsNode();
            pallets->remove(nullptr, pallets->c(pallets->cmobjCount() - 1));
        }
        reply.dataJson = PalletFixture::palletJson(names.value(i), 1, 1, i);
        return reply;
    });
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) { seen << value; });
    m_fx.connectController();

    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 3);
    QCOMPARE(palletNames(), (QStringList{"a", "c"}));
    QCOMPARE(seen, (QList<int>{0, 0, 33, 66, 100}));
    QVERIFY(!page()->progressDialog()->isVisible());
}

void TstSync::disconnectMidLoadThenNextConnectionReloads()
{
    m_fx.setCapabilities(kFullProtocol);
    const QStringList names{"a", "b", "c"};
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    bool dropOnSecond = true;
    orbat::ScriptedTransport *transport = m_fx.transport();
    transport->setHandler([&](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        const int i = request.params ? request.params->getInt(-1) : -1;
        if (request.method == QLatin1String("tray.query.one") && i == 1 && dropOnSecond) {
            transport->setConnected(false);
            reply.silent = true;
            return reply;
        }
        if (request.method == QLatin1String("tray.query.one"))
            reply.dataJson = PalletFixture::palletJson(names.value(i), 1, 1, i);
        return reply;
    });
    m_fx.connectController();

    // The link went during the second query: that one and the third (which finds no link to go out
    // on) bring nothing, but keep their rows.
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 2);
    QCOMPARE(palletNames(), (QStringList{"a", "", ""}));
    QVERIFY(!page()->progressDialog()->isVisible());
    QTableWidget *table = page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QCOMPARE(table->rowCount(), 3);
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("a"));
    QCOMPARE(table->item(1, 0)->text(), QString());

    dropOnSecond = false;
    m_fx.connectController();
    QCOMPARE(palletNames(), names);
    QCOMPARE(table->rowCount(), 3);
}

void TstSync::secondConnectionReplacesCopyAndClosesBoundDialog()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"a", "b"});
    m_fx.connectController();
    QCOMPARE(palletNames(), (QStringList{"a", "b"}));

    QPointer<orba::ModuleObject> oldA = tpallet::getPallet(QStringLiteral("a"));
    QPointer<QDialog> dialog = new QDialog;
    tpallet::makeUniqueDialog(dialog);
    tpallet::bindDialogToNode(dialog, oldA);
    QSignalSpy rejected(dialog.data(), &QDialog::rejected);
    dialog->show();

    scriptPallets({"a", "x", "y"});
    m_fx.disconnectController();
    QCOMPARE(rejected.count(), 0);
    m_fx.connectController();

    QCOMPARE(palletNames(), (QStringList{"a", "x", "y"}));
    QVERIFY(!oldA);
    QCOMPARE(rejected.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.list")).size(), 2);
}

void TstSync::connectionDuringLoadReloadsAfterwards()
{
    m_fx.setCapabilities(kFullProtocol);
    const QStringList names{"a", "b", "c"};
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    int queries = 0;
    m_fx.transport()->setHandler([&](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method != QLatin1String("tray.query.one"))
            return reply;
        // A new connection announced while the first load is under way.
        if (++queries == 2)
            emit tcore::ManagerHelper::instance()->controllerManager()->rcConnected();
        const int i = request.params->getInt(-1);
        reply.dataJson = PalletFixture::palletJson(names.value(i), 1, 1, i);
        return reply;
    });
    m_fx.connectController();

    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.list")).size(), 2);
    QCOMPARE(palletNames(), names);
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 3);
}

void TstSync::refreshDuringLoadWaitsForCompleteList()
{
    m_fx.setCapabilities(kFullProtocol);
    const QStringList names{"a", "b"};
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson(names));
    QTableWidget *table = page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QList<int> rowsSeen;
    m_fx.transport()->setHandler([&](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method != QLatin1String("tray.query.one"))
            return reply;
        tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false)->trigger(nullptr);
        rowsSeen << table->rowCount();
        const int i = request.params->getInt(-1);
        reply.dataJson = PalletFixture::palletJson(names.value(i), 1, 1, i);
        return reply;
    });
    m_fx.connectController();

    // The empty element being filled never reached the table.
    QCOMPARE(rowsSeen, (QList<int>{0, 0}));
    QCOMPARE(table->rowCount(), 2);
    QCOMPARE(table->item(1, 0)->text(), QStringLiteral("b"));
}

void TstSync::disconnectionKeepsWorkingCopy()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"a", "b"});
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    m_fx.disconnectController();
    QCOMPARE(palletNames(), (QStringList{"a", "b"}));
    QVERIFY(m_fx.palletMethods().isEmpty());
}

void TstSync::saveToRCSendsWholePallet()
{
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    orba::ModuleObject *pallet = PalletFixture::addLocalPallet(QStringLiteral("p1"), 4, 5, QStringLiteral("box"));
    pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 0.123456789012345678, true);

    tpallet::saveToRC(pallet);
    const auto sent = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.at(0).op, QStringLiteral("exec"));
    QCOMPARE(sent.at(0).paramsJson, pallet->exportToJson(true));
    QCOMPARE(sent.at(0).params->r(QStringLiteral("calibrate.x_span"))->getDouble(), 0.123456789012345678);
    QCOMPARE(m_fx.palletMethods(), QStringList{"tray.set.one"});
}

void TstSync::saveAllToRCWritesTrayData()
{
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    PalletFixture::addLocalPallet(QStringLiteral("p1"), 1, 2);
    PalletFixture::addLocalPallet(QStringLiteral("p2"), 3, 4);

    tpallet::saveAllToRC();
    const auto sent = m_fx.requestsOf(QStringLiteral("tray.data"));
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.at(0).op, QStringLiteral("set"));
    QCOMPARE(sent.at(0).paramsJson, tpallet::palletsNode()->exportToJson(true));
}

void TstSync::saveNameToRCSendsTempNode()
{
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    tpallet::saveNameToRC(2, QStringLiteral("renamed"), QStringLiteral("new desc"));
    const auto sent = m_fx.requestsOf(QStringLiteral("tray.set.name"));
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.at(0).op, QStringLiteral("exec"));
    QCOMPARE(sent.at(0).paramsJson, QByteArray("{\"index\":2,\"name\":\"renamed\",\"desc\":\"new desc\"}"));
    QCOMPARE(sent.at(0).params->cmobjNames(), (QStringList{"index", "name", "desc"}));
    QCOMPARE(sent.at(0).params->c(QStringLiteral("index"), false)->value().type(), QVariant::Int);
}

void TstSync::deleteIndexEqualsRenameIndex()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"a", "b", "c"});
    m_fx.connectController();
    m_fx.transport()->clearRequests();

    orba::ModuleObject *c = tpallet::getPallet(QStringLiteral("c"));
    tpallet::saveNameToRC(c->indexInPmobj(), QStringLiteral("c"), QStringLiteral("renamed"));

    QTableWidget *table = page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    table->setCurrentCell(2, 0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    m_fx.transport()->queueReply(QStringLiteral("tray.del_one"), 0);
    page()->delPallet();

    const auto rename = m_fx.requestsOf(QStringLiteral("tray.set.name"));
    const auto del = m_fx.requestsOf(QStringLiteral("tray.del_one"));
    QCOMPARE(rename.size(), 1);
    QCOMPARE(del.size(), 1);
    QCOMPARE(del.at(0).paramsJson, QByteArray("{\"index\":2,\"name\":\"c\"}"));
    QCOMPARE(del.at(0).params->c(QStringLiteral("index"), false)->getInt(-1),
             rename.at(0).params->c(QStringLiteral("index"), false)->getInt(-2));
    QCOMPARE(palletNames(), (QStringList{"a", "b"}));
}

void TstSync::addCountMismatchIsLogged_data()
{
    QTest::addColumn<int>("reportedSize");
    QTest::addColumn<bool>("errorLogged");
    QTest::newRow("controller agrees") << 2 << false;
    QTest::newRow("controller reports more") << 7 << true;
    QTest::newRow("controller reports fewer") << 1 << true;
}

void TstSync::addCountMismatchIsLogged()
{
    QFETCH(int, reportedSize);
    QFETCH(bool, errorLogged);
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    PalletFixture::addLocalPallet(QStringLiteral("existing"), 1, 1);
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, QStringLiteral("{\"size\":%1}").arg(reportedSize).toUtf8());
    QSignalSpy refresh(tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false), &orba::ModuleObject::changed);

    QPointer<NewPalletDialog> dialog = new NewPalletDialog(nullptr);
    QLineEdit *name = dialog->findChild<QLineEdit *>(QStringLiteral("edtName"));
    QVERIFY(name);
    name->setText(QStringLiteral("added"));
    dialog->work();

    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.add_one")).size(), 1);
    // The local element is kept whatever the controller says.
    QCOMPARE(palletNames(), (QStringList{"existing", "added"}));
    int errors = 0;
    for (const orba::LogLine &line : m_fx.logLines()) {
        if (line.message == QLatin1String("pallet add error!")) {
            ++errors;
            QCOMPARE(line.colour, QStringLiteral("\033[31m"));
            QVERIFY(line.tag.startsWith(QLatin1String("[E|")));
            QVERIFY(line.filePath.endsWith(QLatin1String("log/tpallet.log")));
        }
    }
    QCOMPARE(errors, errorLogged ? 1 : 0);
    // The operator learns it from the configuration log, not from a message box.
    QStringList cfgErrors;
    for (const QVariantMap &entry : tcore::ManagerHelper::instance()->logHistory()) {
        if (entry.value(QStringLiteral("level")).toString() == QLatin1String("error"))
            cfgErrors << entry.value(QStringLiteral("title")).toString();
    }
    QCOMPARE(cfgErrors, errorLogged ? QStringList{"Tray added was not stored on the controller, it will be lost at the next reload!"}
                                    : QStringList{});
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    QVERIFY(refresh.count() >= 1);
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
}

QTEST_MAIN(TstSync)
#include "tst_sync.moc"
