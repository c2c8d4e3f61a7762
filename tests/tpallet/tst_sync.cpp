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
    void fewerPalletsThanAnnouncedKeepsOnlyCompleteOnes();
    void wrongTypesNeverShowHalfFilledPallets_data();
    void wrongTypesNeverShowHalfFilledPallets();
    void legacyReplyWithWrongTypesEndsEmpty();
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

void TstSync::fewerPalletsThanAnnouncedKeepsOnlyCompleteOnes()
{
    m_fx.setCapabilities(kFullProtocol);
    scriptPallets({"a", "b"});
    // The list announces three; the controller knows only two.
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson({"a", "b", "c"}));
    QList<int> seen;
    connect(page(), &PalletPage::loadProgress, this, [&](int value) { seen << value; });
    m_fx.connectController();

    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 3);
    QCOMPARE(palletNames(), (QStringList{"a", "b"}));
    QCOMPARE(seen, (QList<int>{0, 0, 33, 100}));
    QVERIFY(!page()->progressDialog()->isVisible());
    bool logged = false;
    for (const orba::LogLine &line : m_fx.logLines())
        logged = logged || (line.colour == QLatin1String("\033[31m") && line.message.startsWith(QLatin1String("pallet load error!")));
    QVERIFY(logged);
    QCOMPARE(page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), 2);
}

void TstSync::wrongTypesNeverShowHalfFilledPallets_data()
{
    QTest::addColumn<QByteArray>("secondReply");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("data is a number") << QByteArray("5") << QStringList{"a"};
    QTest::newRow("data is a text") << QByteArray("\"tray\"") << QStringList{"a"};
    QTest::newRow("data is null") << QByteArray("null") << QStringList{"a"};
    QTest::newRow("data is an object") << PalletFixture::palletJson("b", 1, 1, 1) << QStringList{"a", "b", "c"};
}

void TstSync::wrongTypesNeverShowHalfFilledPallets()
{
    QFETCH(QByteArray, secondReply);
    QFETCH(QStringList, expected);
    m_fx.setCapabilities(kFullProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, listJson({"a", "b", "c"}));
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson("a", 1, 1, 0));
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, secondReply);
    m_fx.transport()->queueReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson("c", 1, 1, 2));
    m_fx.connectController();

    QCOMPARE(palletNames(), expected);
    orba::ModuleObject *pallets = tpallet::palletsNode();
    for (int i = 0; i < pallets->cmobjCount(); ++i)
        QVERIFY(pallets->c(i)->hasRmobj(QStringLiteral("pattern.row")));
    QVERIFY(!page()->progressDialog()->isVisible());
}

void TstSync::legacyReplyWithWrongTypesEndsEmpty()
{
    m_fx.setCapabilities(kLegacyProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.data"), 0, "[1,2]");
    m_fx.connectController();
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 0);
    QVERIFY(!tpallet::palletsNode()->hasValue());
    QVERIFY(m_fx.logMessages().filter(QStringLiteral("pallet load error!")).size() == 1);

    // A failing read leaves an empty list as well.
    m_fx.transport()->setReply(QStringLiteral("tray.data"), -1);
    page()->loadFromRC();
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 0);
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

    QCOMPARE(palletNames(), QStringList{"a"});
    QVERIFY(!page()->progressDialog()->isVisible());
    QTableWidget *table = page()->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QCOMPARE(table->rowCount(), 1);
    QCOMPARE(table->item(0, 0)->text(), QStringLiteral("a"));

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
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    QVERIFY(refresh.count() >= 1);
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
}

QTEST_MAIN(TstSync)
#include "tst_sync.moc"
