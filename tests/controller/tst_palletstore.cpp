#include "palletstore.h"
#include "rcsimclient.h"
#include "rctestclient.h"
#include "testpallets.h"

#include <orba/json.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <orbat/transport.h>

#include <QDir>
#include <QJsonArray>
#include <QProcess>
#include <QRandomGenerator>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QTcpSocket>
#include <QtTest>

#include <csignal>
#include <limits>
#include <map>

namespace {

using testpallets::revision;

bool samePallet(const QByteArray &stored, const QByteArray &sent, int index)
{
    orba::ModuleObject a, b;
    if (!a.importFromJson(nullptr, stored) || !b.importFromJson(nullptr, sent))
        return false;
    b.set(nullptr, "index", index);
    return a.equals(&b);
}

// A reply decoded so that a U+FEFF that begins a string stays (QJsonDocument, like other
// UTF-8 decoders, takes it for a byte order mark).
QJsonObject callKeepingMarks(RcTestClient &c, const QByteArray &method, const QByteArray &params)
{
    QByteArray reply = c.send("{\"id\":1,\"op\":\"exec\",\"method\":\"" + method + "\",\"params\":" + params + "}");
    reply.replace("\xEF\xBB\xBF", "\\ufeff");
    return QJsonDocument::fromJson(reply).object();
}

QStringList listNames(RcTestClient &c)
{
    QStringList out;
    for (const QJsonValue &v : RcTestClient::data(callKeepingMarks(c, "tray.query.list", "null")).toArray())
        out << v.toObject().value("name").toString();
    return out;
}

// A JSON string with everything outside printable ASCII escaped, as any client may write it.
QByteArray escaped(const QString &text)
{
    QByteArray out = "\"";
    for (const QChar c : text) {
        if (c.unicode() < 0x20 || c.unicode() >= 0x7f || c == QLatin1Char('"') || c == QLatin1Char('\\'))
            out += "\\u" + QByteArray::number(c.unicode(), 16).rightJustified(4, '0');
        else
            out += char(c.unicode());
    }
    return out + "\"";
}

QByteArray namedPallet(const QString &name)
{
    return "{\"name\":" + escaped(name) + ",\"desc\":\"d\"}";
}

QString queriedName(RcTestClient &c, int position)
{
    return RcTestClient::data(callKeepingMarks(c, "tray.query.one", QByteArray::number(position))).toObject().value("name").toString();
}

// A second connection to the store's file, writing behind the controller's back.
class Intruder
{
public:
    explicit Intruder(const QString &dir)
        : m_name(QStringLiteral("intruder-%1").arg(quintptr(this)))
    {
        QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), m_name);
        db.setDatabaseName(QDir(dir).filePath("trays.sqlite"));
        m_ok = db.open();
    }
    ~Intruder()
    {
        {
            QSqlDatabase db = QSqlDatabase::database(m_name, false);
            db.close();
        }
        QSqlDatabase::removeDatabase(m_name);
    }
    bool ok() const { return m_ok; }
    bool exec(const QString &sql)
    {
        QSqlQuery q(QSqlDatabase::database(m_name, false));
        if (q.exec(sql))
            return true;
        qWarning("%s: %s", qPrintable(sql), qPrintable(q.lastError().text()));
        return false;
    }
    // One column of every row, in the rows' order.
    QVariantList column(const QString &name)
    {
        QVariantList out;
        QSqlQuery q(QSqlDatabase::database(m_name, false));
        if (q.exec(QStringLiteral("SELECT %1 FROM pallets ORDER BY position").arg(name)))
            while (q.next())
                out << q.value(0);
        return out;
    }
    QList<qint64> positions()
    {
        QList<qint64> out;
        for (const QVariant &v : column(QStringLiteral("position")))
            out << v.toLongLong();
        return out;
    }
    QList<QByteArray> texts()
    {
        QList<QByteArray> out;
        for (const QVariant &v : column(QStringLiteral("json")))
            out << v.toByteArray();
        return out;
    }

private:
    QString m_name;
    bool m_ok = false;
};

} // namespace

class TestPalletStore : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void schemaAndPragmas()
    {
        QTemporaryDir dir;
        {
            RcTestClient c(false, dir.path());
            QVERIFY(c.opened);
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", "{\"name\":\"a\"}")), 0);
        }
        // The file is a WAL database with our schema version.
        QVERIFY(QFile::exists(dir.filePath("trays.sqlite")));
        {
            RcTestClient c(false, dir.path());
            QVERIFY(c.opened);
            QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.list")).toArray().size(), 1);
        }
    }

    void pageSize_data()
    {
        QTest::addColumn<int>("existing");
        QTest::addColumn<int>("expected");
        QTest::newRow("new store") << 0 << 65536;
        QTest::newRow("store made with 4 KiB pages") << 4096 << 4096;
    }
    // New stores take large pages; a store made before keeps its own and goes on working.
    void pageSize()
    {
        QFETCH(int, existing);
        QFETCH(int, expected);
        QTemporaryDir dir;
        if (existing) {
            Intruder before(dir.path());
            QVERIFY(before.ok());
            QVERIFY(before.exec(QStringLiteral("PRAGMA page_size=%1").arg(existing)));
            QVERIFY(before.exec(QStringLiteral("PRAGMA journal_mode=WAL")));
            QVERIFY(before.exec(QStringLiteral("CREATE TABLE pallets (position INTEGER PRIMARY KEY, name TEXT NOT NULL, "
                                               "json BLOB NOT NULL)")));
            QVERIFY(before.exec(QStringLiteral("PRAGMA user_version = 1")));
            QVERIFY(before.exec(QStringLiteral("INSERT INTO pallets VALUES (0, 'old', '{\"name\":\"old\",\"index\":0}')")));
        }
        const QByteArray big = testpallets::full(QStringLiteral("big"), 1200);
        {
            RcTestClient c(false, dir.path());
            QVERIFY2(c.opened, qPrintable(c.openError));
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", big)), 0);
        }
        {
            RcTestClient c(false, dir.path());
            QVERIFY2(c.opened, qPrintable(c.openError));
            const QJsonArray list = RcTestClient::data(c.call("exec", "tray.query.list")).toArray();
            QCOMPARE(list.size(), existing ? 2 : 1);
            QCOMPARE(list.last().toObject().value("name").toString(), QStringLiteral("big"));
        }
        const QString name = QStringLiteral("pagesize-%1").arg(existing);
        {
            QSqlDatabase db = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), name);
            db.setDatabaseName(dir.filePath("trays.sqlite"));
            QVERIFY(db.open());
            QSqlQuery q(db);
            QVERIFY(q.exec(QStringLiteral("PRAGMA page_size")) && q.next());
            QCOMPARE(q.value(0).toInt(), expected);
            QSqlQuery count(db);
            QVERIFY(count.exec(QStringLiteral("SELECT count(*) FROM pallets")) && count.next());
            QCOMPARE(count.value(0).toInt(), existing ? 2 : 1);
            db.close();
        }
        QSqlDatabase::removeDatabase(name);
    }

    void killedWhileWriting_data()
    {
        QTest::addColumn<int>("seed");
        QTest::newRow("run 1") << 1;
        QTest::newRow("run 2") << 2;
    }
    void killedWhileWriting()
    {
        QFETCH(int, seed);
        QTemporaryDir dir;
        QRandomGenerator gen{quint32(seed)};
        enum Op { Add, Set, Remove };
        // name -> acknowledged JSON, the list's order, and the request that was in flight when
        // the process died.
        std::map<QString, QByteArray> acked;
        QStringList order;
        int named = 0;
        int landed = 0;
        int removals = 0;
        for (int round = 0; round < 4; ++round) {
            RcsimProcess sim;
            QVERIFY(sim.start(dir.path()));
            LineClient client;
            QVERIFY(client.connect(sim.port));
            const int writes = 3 + int(gen.bounded(10));
            QString pendingName;
            QByteArray pendingJson;
            Op pendingOp = Set;
            for (int i = 0; i <= writes; ++i) {
                const int roll = int(gen.bounded(6));
                const Op op = order.isEmpty() || roll < 2 ? Add : roll == 2 && order.size() >= 2 ? Remove : Set;
                const int at = op == Add ? order.size() : int(gen.bounded(order.size()));
                const QString name = op == Add ? QString("p%1").arg(named++) : order.at(at);
                const QByteArray json = revision(name, round * 100 + i, 100 + int(gen.bounded(300)), gen);
                const char *method = op == Add ? "tray.add_one" : op == Set ? "tray.set.one" : "tray.del_one";
                const QByteArray params = op == Remove ? "{\"index\":" + QByteArray::number(at) + ",\"name\":\"" + name.toUtf8() + "\"}" : json;
                QVERIFY(client.send(requestLine(i, "exec", method, params).chopped(1)));
                if (i == writes) {
                    // The last write is cut off at a random moment, reply unseen.
                    client.socket.flush();
                    QThread::usleep(gen.bounded(4000));
                    sim.kill();
                    pendingName = name;
                    pendingJson = json;
                    pendingOp = op;
                    break;
                }
                const QJsonObject r = QJsonDocument::fromJson(client.reply()).object();
                QCOMPARE(RcTestClient::status(r), 0);
                if (op == Remove) {
                    order.removeAt(at);
                    acked.erase(name);
                    ++removals;
                    continue;
                }
                acked[name] = json;
                if (op == Add)
                    order << name;
            }
            // Reopen in-process and compare: the list is the acknowledged one, or the one the
            // write in flight made.
            RcTestClient c(false, dir.path());
            QVERIFY2(c.opened, qPrintable(c.openError));
            QStringList names;
            for (const QJsonValue &v : RcTestClient::data(c.call("exec", "tray.query.list")).toArray())
                names << v.toObject().value("name").toString();
            QStringList changed = order;
            if (pendingOp == Add)
                changed << pendingName;
            else if (pendingOp == Remove)
                changed.removeOne(pendingName);
            QVERIFY2(names == order || names == changed, qPrintable(names.join(',')));
            bool pendingLanded = pendingOp != Set && names == changed;
            for (int i = 0; i < names.size(); ++i) {
                const QString &name = names.at(i);
                const QByteArray reply = c.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.one\",\"params\":"
                                                + QByteArray::number(i) + "}");
                orba::ModuleObject r;
                QVERIFY(r.importFromJson(nullptr, reply));
                // Each pallet carries its place as its index, whatever was removed before it.
                const QByteArray stored = r.r("result.data")->exportToJson(true);
                const bool old = acked.count(name) && samePallet(stored, acked[name], i);
                const bool written = pendingOp != Remove && name == pendingName && samePallet(stored, pendingJson, i);
                QVERIFY2(old || written, qPrintable(QString("round %1, pallet %2").arg(round).arg(name)));
                if (written && !old) {
                    acked[name] = pendingJson;
                    pendingLanded = true;
                }
            }
            if (pendingLanded) {
                ++landed;
                if (pendingOp == Remove)
                    acked.erase(pendingName);
            }
            order = names;
        }
        QVERIFY(order.size() >= 2);
        qInfo("writes in flight at the kill that had committed: %d of 4; removals acknowledged: %d", landed, removals);
    }

    void namesSurviveARestart_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("byte order mark first") << QString(QChar(0xFEFF)) + "pallet";
        QTest::newRow("reversed byte order mark first") << QString(QChar(0xFFFE)) + "pallet";
        QTest::newRow("byte order mark alone") << QString(QChar(0xFEFF));
        QTest::newRow("marks inside") << "a" + QString(QChar(0xFEFF)) + "b" + QString(QChar(0xFFFE));
        QTest::newRow("noncharacter last") << "p" + QString(QChar(0xFFFF));
        QTest::newRow("astral") << QString::fromUtf8("\xF0\x9F\x98\x80 box");
        QTest::newRow("nul inside") << QString::fromUtf16(u"a\u0000b", 3);
        QTest::newRow("control characters") << "a\tb\nc\x01";
    }
    void namesSurviveARestart()
    {
        QFETCH(QString, name);
        QTemporaryDir dir;
        {
            RcTestClient c(false, dir.path());
            QVERIFY2(c.opened, qPrintable(c.openError));
            const QJsonObject r = c.call("exec", "tray.add_one", namedPallet(name));
            QVERIFY2(RcTestClient::status(r) == 0, QJsonDocument(r).toJson().constData());
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet("plain"))), 0);
            QCOMPARE(listNames(c), QStringList({name, "plain"}));
        }
        RcTestClient c(false, dir.path());
        QVERIFY2(c.opened, qPrintable(c.openError));
        // The name comes back exactly, so the pallet is still addressed by it...
        QCOMPARE(listNames(c), QStringList({name, "plain"}));
        QCOMPARE(queriedName(c, 0), name);
        const QJsonObject set = c.call("exec", "tray.set.one", namedPallet(name));
        QCOMPARE(RcTestClient::status(set), 0);
        QCOMPARE(RcTestClient::data(set).toObject().value("index").toInt(), 0);
        // ...and no second pallet can take it.
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet(name))), -1);
        QCOMPARE(listNames(c).size(), 2);
        const QByteArray del = "{\"index\":0,\"name\":" + escaped(name) + "}";
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", del)), 0);
        QCOMPARE(listNames(c), QStringList({"plain"}));
        // A rename brings the name in through the stored tree; it too survives.
        const QString renamed = name + "2";
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.name", "{\"index\":0,\"name\":" + escaped(renamed) + "}")), 0);
        const QString path = c.m_dir.path();
        c.session.reset();
        c.controller.reset();
        RcTestClient again(false, dir.path());
        QVERIFY2(again.opened, qPrintable(again.openError));
        QCOMPARE(listNames(again), QStringList({renamed}));
        QCOMPARE(queriedName(again, 0), renamed);
    }

    void unstorableNamesAreRefused_data()
    {
        QTest::addColumn<QString>("op");
        QTest::addColumn<QString>("method");
        QTest::addColumn<QByteArray>("params");
        const QList<QPair<QByteArray, QByteArray>> names = {
            {"lone high surrogate", "\"x\\ud800\""},
            {"lone low surrogate", "\"\\udc00x\""},
            {"swapped pair", "\"\\udc00\\ud800\""},
        };
        for (const auto &n : names) {
            const QByteArray pallet = "{\"name\":" + n.second + ",\"desc\":\"d\"}";
            QTest::addRow("%s, add", n.first.constData()) << "exec" << "tray.add_one" << pallet;
            QTest::addRow("%s, set", n.first.constData()) << "exec" << "tray.set.one" << pallet;
            QTest::addRow("%s, rename", n.first.constData())
                << "exec" << "tray.set.name" << ("{\"index\":0,\"name\":" + n.second + ",\"desc\":\"d\"}");
            QTest::addRow("%s, whole list", n.first.constData())
                << "set" << "tray.data" << ("[{\"name\":\"keep\"}," + pallet + "]");
        }
    }
    void unstorableNamesAreRefused()
    {
        QFETCH(QString, op);
        QFETCH(QString, method);
        QFETCH(QByteArray, params);
        QTemporaryDir dir;
        {
            RcTestClient c(false, dir.path());
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet("keep"))), 0);
            const QByteArray before = c.send("{\"id\":1,\"op\":\"get\",\"method\":\"tray.data\"}");
            const QJsonObject r = c.call(op, method, params);
            QCOMPARE(RcTestClient::errorCode(r), -32602);
            const QString message = r.value("error").toObject().value("message").toString();
            QVERIFY2(message.contains("surrogate"), qPrintable(message));
            QCOMPARE(c.send("{\"id\":1,\"op\":\"get\",\"method\":\"tray.data\"}"), before);
        }
        RcTestClient c(false, dir.path());
        QCOMPARE(listNames(c), QStringList({"keep"}));
        QCOMPARE(queriedName(c, 0), QString("keep"));
    }

    void secondOwnerIsRefused()
    {
        QTemporaryDir dir;
        auto first = std::make_unique<rc::PalletStore>();
        QString error;
        QVERIFY2(first->open(dir.path(), &error), qPrintable(error));
        QVERIFY(first->append({"a", "{\"name\":\"a\",\"index\":0}"}, &error));

        rc::PalletStore second;
        QVERIFY(!second.open(dir.path(), &error));
        QVERIFY2(error.contains("in use"), qPrintable(error));
        QVERIFY(!second.isOpen());
        QVERIFY(!second.append({"b", "{\"name\":\"b\"}"}, &error));

        // A whole controller on the same directory does not start either.
        RcTestClient c(false, dir.path());
        QVERIFY(!c.opened);
        QVERIFY2(c.openError.contains("in use"), qPrintable(c.openError));
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", "{\"name\":\"c\"}")), -2);

        // Once the owner has gone, the store opens with what the owner wrote.
        first.reset();
        QVERIFY2(second.open(dir.path(), &error), qPrintable(error));
        QCOMPARE(second.count(), 1);
        QCOMPARE(second.at(0).name, QString("a"));
    }

    void secondProcessIsRefused()
    {
        QTemporaryDir dir;
        RcsimProcess sim;
        QVERIFY(sim.start(dir.path()));
        {
            LineClient client;
            QVERIFY(client.connect(sim.port));
            QVERIFY(client.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"name\":\"a\"}}"));
            QVERIFY(client.reply().contains("\"status\":0"));
        }
        // Neither this process...
        {
            RcTestClient c(false, dir.path());
            QVERIFY(!c.opened);
            QVERIFY2(c.openError.contains("in use"), qPrintable(c.openError));
        }
        // ...nor a second server gets the store.
        QProcess second;
        second.start(QStringLiteral(RCSIM_PATH), {"--listen", "127.0.0.1:0", "--data", dir.path()});
        QVERIFY(second.waitForFinished(10000));
        QCOMPARE(second.exitCode(), 1);
        const QByteArray err = second.readAllStandardError();
        QVERIFY2(err.contains("in use"), err.constData());

        // The lock of a killed owner is taken over.
        sim.kill();
        RcTestClient c(false, dir.path());
        QVERIFY2(c.opened, qPrintable(c.openError));
        QCOMPARE(listNames(c), QStringList({"a"}));
    }

    void writeWhoseRowVanishedFails()
    {
        QTemporaryDir dir;
        RcTestClient c(false, dir.path());
        for (const char *n : {"a", "b", "c"})
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet(n))), 0);
        const QByteArray before = c.send("{\"id\":1,\"op\":\"get\",\"method\":\"tray.data\"}");
        Intruder other(dir.path());
        QVERIFY(other.ok());
        QVERIFY(other.exec("DELETE FROM pallets WHERE position = 1"));

        const QList<QPair<QString, QByteArray>> writes = {
            {"tray.set.one", namedPallet("b")},
            {"tray.set.name", "{\"index\":1,\"name\":\"bb\"}"},
            {"tray.del_one", "{\"index\":1,\"name\":\"b\"}"},
        };
        for (const auto &w : writes) {
            const QJsonObject r = c.call("exec", w.first, w.second);
            QVERIFY2(RcTestClient::status(r) == -2, qPrintable(w.first));
            const QString msg = RcTestClient::data(r).toObject().value("msg").toString();
            QVERIFY2(msg.contains("another writer"), qPrintable(msg));
        }
        const QJsonObject all = c.call("set", "tray.data", "[{\"name\":\"x\"}]");
        QCOMPARE(RcTestClient::status(all), -2);
        // Nothing was acknowledged, and the cache still says what it said.
        QCOMPARE(c.send("{\"id\":1,\"op\":\"get\",\"method\":\"tray.data\"}"), before);
        QCOMPARE(other.positions(), QList<qint64>({0, 2}));
    }

    void gapsInPositionsKeepTheOrder_data()
    {
        QTest::addColumn<QList<qint64>>("positions");
        QTest::addColumn<QList<qint64>>("after");
        QTest::newRow("0, 2, 5") << QList<qint64>{0, 2, 5} << QList<qint64>{0, 5, 6};
        QTest::newRow("from 1") << QList<qint64>{1, 2, 3} << QList<qint64>{1, 3, 4};
        QTest::newRow("negative first") << QList<qint64>{-3, 0, 7} << QList<qint64>{-3, 7, 8};
        QTest::newRow("far apart") << QList<qint64>{100, 2000, 30000} << QList<qint64>{100, 30000, 30001};
        // Keys that leave no room to append after them are written anew as 0..n-1 first.
        QTest::newRow("last at 2^62") << QList<qint64>{0, 1, qint64(1) << 62} << QList<qint64>{0, 2, 3};
        QTest::newRow("last at the largest key")
            << QList<qint64>{-5, 0, std::numeric_limits<qint64>::max()} << QList<qint64>{0, 2, 3};
        QTest::newRow("just below 2^62") << QList<qint64>{0, 1, (qint64(1) << 62) - 2}
                                         << QList<qint64>{0, (qint64(1) << 62) - 2, (qint64(1) << 62) - 1};
    }
    void gapsInPositionsKeepTheOrder()
    {
        QFETCH(QList<qint64>, positions);
        QFETCH(QList<qint64>, after);
        QTemporaryDir dir;
        {
            RcTestClient c(false, dir.path());
            for (const char *n : {"a", "b", "c"})
                QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet(n))), 0);
        }
        {
            Intruder other(dir.path());
            QVERIFY(other.ok());
            // Moved out of the way first, then to the wanted places, keeping their order.
            QVERIFY(other.exec("UPDATE pallets SET position = -position - 1000000"));
            for (int i = 0; i < 3; ++i)
                QVERIFY(other.exec(QString("UPDATE pallets SET position = %1 WHERE position = %2").arg(positions.at(i)).arg(-1000000 - i)));
            QCOMPARE(other.positions(), positions);
        }
        for (int round = 0; round < 2; ++round) {
            RcTestClient c(false, dir.path());
            QVERIFY2(c.opened, qPrintable(c.openError));
            if (round == 0) {
                QCOMPARE(listNames(c), QStringList({"a", "b", "c"}));
                for (int i = 0; i < 3; ++i) {
                    const QJsonObject one = RcTestClient::data(c.call("exec", "tray.query.one", QByteArray::number(i))).toObject();
                    QCOMPARE(one.value("index").toInt(), i);
                }
                QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet("d"))), 0);
                QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":1,\"name\":\"b\"}")), 0);
            }
            // The same after a restart, from the rows as they are now.
            QCOMPARE(listNames(c), QStringList({"a", "c", "d"}));
            for (int i = 0; i < 3; ++i) {
                const QJsonObject one = RcTestClient::data(c.call("exec", "tray.query.one", QByteArray::number(i))).toObject();
                QCOMPARE(one.value("index").toInt(), i);
                QCOMPARE(one.value("name").toString(), listNames(c).at(i));
            }
        }
        Intruder other(dir.path());
        QCOMPARE(other.positions(), after);
    }

    void removalLeavesTheRowsAfterIt()
    {
        QTemporaryDir dir;
        QList<QByteArray> before;
        {
            RcTestClient c(false, dir.path());
            for (const char *n : {"a", "b", "c"})
                QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet(n))), 0);
            {
                Intruder other(dir.path());
                before = other.texts();
            }
            QCOMPARE(before.size(), 3);
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":0,\"name\":\"a\"}")), 0);
            {
                // Only the row of "a" went; the others were not written again.
                Intruder other(dir.path());
                QCOMPARE(other.positions(), QList<qint64>({1, 2}));
                QCOMPARE(other.texts(), before.mid(1));
            }
            // Every read gives each pallet its place.
            const QJsonArray all = RcTestClient::data(c.call("get", "tray.data", "null")).toArray();
            QCOMPARE(all.size(), 2);
            for (int i = 0; i < 2; ++i) {
                QCOMPARE(all.at(i).toObject().value("index").toInt(), i);
                QCOMPARE(all.at(i).toObject().value("name").toString(), QString(QChar('b' + i)));
                const QJsonObject one = RcTestClient::data(c.call("exec", "tray.query.one", QByteArray::number(i))).toObject();
                QCOMPARE(one, all.at(i).toObject());
            }
            // Writes find the rows by their keys.
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.name", "{\"index\":1,\"name\":\"cc\"}")), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", namedPallet("d"))), 0);
            QCOMPARE(listNames(c), QStringList({"b", "cc", "d"}));
        }
        RcTestClient c(false, dir.path());
        QVERIFY2(c.opened, qPrintable(c.openError));
        QCOMPARE(listNames(c), QStringList({"b", "cc", "d"}));
        for (int i = 0; i < 3; ++i) {
            const QJsonObject one = RcTestClient::data(c.call("exec", "tray.query.one", QByteArray::number(i))).toObject();
            QCOMPARE(one.value("index").toInt(), i);
        }
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":2,\"name\":\"d\"}")), 0);
        Intruder other(dir.path());
        QCOMPARE(other.positions(), QList<qint64>({1, 2}));
        QCOMPARE(other.texts().at(0), before.at(1));
    }

    void serverOverTcp()
    {
        QTemporaryDir dir;
        RcsimProcess sim;
        QVERIFY(sim.start(dir.path(), {"--legacy"}));
        LineClient client;
        QVERIFY(client.connect(sim.port));
        QVERIFY(client.send("{\"id\":1,\"op\":\"get\",\"method\":\"tservice.proto.command\"}"));
        const QByteArray caps = client.reply();
        QVERIFY(caps.contains("tray.data"));
        QVERIFY(!caps.contains("tray.query.one"));
        QVERIFY(client.send("\x01\x02 not json"));
        QVERIFY(client.reply().contains("-32700"));
        QVERIFY(client.send("{\"id\":2,\"op\":\"ping\"}"));
        QVERIFY(client.reply().contains("\"id\":2"));

        // A line past the cap drops the connection; the server lives on.
        QByteArray huge(orbat::Transport::maxLineBytes() + 16, 'x');
        client.socket.write(huge);
        QElapsedTimer t;
        t.start();
        while (client.socket.state() == QAbstractSocket::ConnectedState && t.elapsed() < 10000) {
            client.socket.waitForBytesWritten(100);
            client.socket.waitForReadyRead(100);
        }
        QVERIFY(client.socket.state() != QAbstractSocket::ConnectedState);
        LineClient again;
        QVERIFY(again.connect(sim.port));
        QVERIFY(again.send("{\"id\":3,\"op\":\"get\",\"method\":\"sys.power\"}"));
        QVERIFY(again.reply().contains("\"on\""));
        QCOMPARE(sim.process.state(), QProcess::Running);
    }

    void motionStopsWhenTheClientDrops()
    {
        QTemporaryDir dir;
        RcsimProcess sim;
        QVERIFY(sim.start(dir.path()));
        LineClient mover;
        QVERIFY(mover.connect(sim.port));
        QVERIFY(mover.send("{\"id\":1,\"op\":\"exec\",\"method\":\"sim.jog.start\",\"params\":{\"frame\":\"joint\",\"axis\":0,\"speed\":0.5}}"));
        QVERIFY(mover.reply().contains("\"status\":0"));
        QThread::msleep(100);
        mover.socket.abort();
        QThread::msleep(100);
        LineClient observer;
        QVERIFY(observer.connect(sim.port));
        QVERIFY(observer.send("{\"id\":1,\"op\":\"get\",\"method\":\"sys.posture\"}"));
        const QByteArray a = observer.reply();
        QThread::msleep(150);
        QVERIFY(observer.send("{\"id\":1,\"op\":\"get\",\"method\":\"sys.posture\"}"));
        QCOMPARE(observer.reply(), a);
    }
};

QTEST_GUILESS_MAIN(TestPalletStore)
#include "tst_palletstore.moc"
