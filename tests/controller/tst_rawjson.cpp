#include "controllerprivate.h"
#include "rawjson.h"
#include "testpallets.h"

#include <orba/json.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QRandomGenerator>
#include <QtTest>

using namespace rc;

namespace {

// A pallet the way the pendant sends it, with the "index" of each place.
QByteArray pendantPallet(const QString &name, int places)
{
    return testpallets::full(name, places, 11, true);
}

using testpallets::serialisedForm;

// The compact form a client writes for this JSON.
QByteArray canonical(const QByteArray &text)
{
    orba::ModuleObject p;
    if (!p.importFromJson(nullptr, text))
        return QByteArray("unparsable");
    return p.exportToJson(true);
}

} // namespace

class TestRawJson : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void withIndexIsTheSerialisedForm_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("index");
        QTest::newRow("real pallet, index absent") << pendantPallet("big", 1200) << 3;
        QByteArray withIndex = pendantPallet("big", 40);
        withIndex = serialisedForm(withIndex, 17);
        QTest::newRow("real pallet, index last") << withIndex << 4;
        QTest::newRow("index absent") << QByteArray("{\"name\":\"a\",\"desc\":\"x\"}") << 0;
        QTest::newRow("index first") << QByteArray("{\"index\":7,\"name\":\"a\",\"desc\":\"x\"}") << 12;
        QTest::newRow("index last") << QByteArray("{\"name\":\"a\",\"desc\":\"x\",\"index\":2}") << 1;
        QTest::newRow("index in the middle") << QByteArray("{\"name\":\"a\",\"index\":2,\"desc\":\"x\"}") << 123456;
        QTest::newRow("same index") << QByteArray("{\"name\":\"a\",\"index\":2}") << 2;
        QTest::newRow("index null") << QByteArray("{\"name\":\"a\",\"index\":null,\"desc\":\"x\"}") << 5;
        QTest::newRow("index a string") << QByteArray("{\"index\":\"two\",\"name\":\"a\"}") << 5;
        QTest::newRow("index a double") << QByteArray("{\"name\":\"a\",\"index\":2.5}") << 5;
        QTest::newRow("nested index keys, none on top")
            << QByteArray("{\"name\":\"a\",\"points\":[{\"index\":9,\"wobj\":{\"index\":1}}],\"x\":{\"index\":2},\"y\":[[{\"index\":3}]]}") << 6;
        QTest::newRow("nested index keys before the top one")
            << QByteArray("{\"name\":\"a\",\"points\":[{\"index\":9,\"wobj\":{\"index\":1}}],\"index\":4,\"x\":{\"index\":2}}") << 0;
        QTest::newRow("index inside strings")
            << QByteArray("{\"name\":\"\\\"index\\\":1,{\",\"desc\":\"} \\\\\\\" \\\"index\\\":[\",\"k\\\"index\":{\"index\":3}}") << 8;
        QTest::newRow("brackets in strings")
            << QByteArray("{\"name\":\"[{\",\"desc\":\"}]\",\"points\":[{\"a\":\"]}]}\"}],\"index\":1}") << 2;
        QTest::newRow("unicode name") << QByteArray("{\"name\":\"\xEF\xBB\xBF\xF0\x9F\x98\x80 \xE2\x82\xAC\",\"index\":0}") << 1;
        QTest::newRow("only a name") << QByteArray("{\"name\":\"a\"}") << 9;
        QTest::newRow("a value beside children") << QByteArray("{\"@value\":3,\"name\":\"a\",\"index\":1}") << 7;
        QTest::newRow("negative index") << QByteArray("{\"name\":\"a\",\"index\":-4}") << 0;
    }
    void withIndexIsTheSerialisedForm()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, index);
        // The pendant writes its trees compactly; start from that form.
        const QByteArray sent = canonical(text);
        QVERIFY(sent != "unparsable");
        const QByteArray spliced = rawjson::withIndex(sent, index);
        QVERIFY(!spliced.isNull());
        QCOMPARE(spliced, serialisedForm(sent, index));
        // Renumbering after a removal gives the same.
        QCOMPARE(renumberedPallet(sent, index), serialisedForm(sent, index));
    }

    void withIndexLeavesOtherTextsToTheTree_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::newRow("spaces") << QByteArray("{\"name\": \"a\", \"index\": 1}");
        QTest::newRow("space inside a value") << QByteArray("{\"name\":\"a\",\"p\":[1, 2]}");
        QTest::newRow("tab at the end") << QByteArray("{\"name\":\"a\"}\t");
        QTest::newRow("an array") << QByteArray("[{\"name\":\"a\"}]");
        QTest::newRow("unterminated") << QByteArray("{\"name\":\"a\",\"p\":[1,2}");
        QTest::newRow("trailing text") << QByteArray("{\"name\":\"a\"}x");
        QTest::newRow("unterminated string") << QByteArray("{\"name\":\"a");
        QTest::newRow("empty") << QByteArray();
    }
    void withIndexLeavesOtherTextsToTheTree()
    {
        QFETCH(QByteArray, text);
        QVERIFY(rawjson::withIndex(text, 1).isNull());
    }

    void renumberedPalletFallsBackToTheTree()
    {
        // A stored text with whitespace (written by hand) still gets its index, in the written form.
        const QByteArray stored = "{\"name\": \"a\", \"index\": 5, \"p\": [1, 2]}";
        QCOMPARE(renumberedPallet(stored, 2), QByteArray("{\"name\":\"a\",\"index\":2,\"p\":[1,2]}"));
        // Garbage stays as it is.
        QCOMPARE(renumberedPallet("not json", 2), QByteArray("not json"));
    }

    void topLevelString_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<bool>("found");
        QTest::addColumn<QString>("name");
        QTest::newRow("plain") << QByteArray("{\"index\":0,\"name\":\"abc\"}") << true << "abc";
        QTest::newRow("escapes") << QByteArray("{\"name\":\"a\\u00e9\\\"\\\\\\n\"}") << true << QString::fromUtf8("a\xC3\xA9\"\\\n");
        QTest::newRow("byte order mark first") << QByteArray("{\"name\":\"\\ufeffp\"}") << true << (QString(QChar(0xFEFF)) + "p");
        QTest::newRow("escaped key") << QByteArray("{\"n\\u0061me\":\"k\"}") << true << "k";
        QTest::newRow("first of two") << QByteArray("{\"name\":\"one\",\"name\":\"two\"}") << true << "one";
        QTest::newRow("nested only") << QByteArray("{\"p\":{\"name\":\"x\"}}") << false << QString();
        QTest::newRow("not a string") << QByteArray("{\"name\":5}") << false << QString();
        QTest::newRow("an object") << QByteArray("{\"name\":{\"a\":1}}") << false << QString();
        QTest::newRow("reserved at sign") << QByteArray("{\"name\":\"@@x\"}") << true << "@x";
        QTest::newRow("with spaces") << QByteArray(" { \"a\" : [ 1 , 2 ] , \"name\" : \"s\" } ") << true << "s";
        QTest::newRow("broken") << QByteArray("{\"name\":\"s\"") << false << QString();
    }
    void topLevelString()
    {
        QFETCH(QByteArray, text);
        QFETCH(bool, found);
        QFETCH(QString, name);
        QString got;
        QCOMPARE(rawjson::topLevelString(text, QLatin1String("name"), &got), found);
        if (found)
            QCOMPARE(got, name);
    }

    void storedHead_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<int>("index");
        QTest::addColumn<bool>("hasName");
        QTest::addColumn<QString>("name");
        QTest::addColumn<bool>("indexIs");
        QTest::newRow("both, in place") << QByteArray("{\"name\":\"a\",\"index\":3}") << 3 << true << "a" << true;
        QTest::newRow("older index") << QByteArray("{\"name\":\"a\",\"index\":4}") << 3 << true << "a" << false;
        QTest::newRow("index with more digits") << QByteArray("{\"index\":10,\"name\":\"a\"}") << 1 << true << "a" << false;
        QTest::newRow("index with fewer digits") << QByteArray("{\"index\":1,\"name\":\"a\"}") << 10 << true << "a" << false;
        QTest::newRow("index zero") << QByteArray("{\"index\":0}") << 0 << false << QString() << true;
        QTest::newRow("index written as a double") << QByteArray("{\"index\":1.0}") << 1 << false << QString() << false;
        QTest::newRow("index as text") << QByteArray("{\"index\":\"1\"}") << 1 << false << QString() << false;
        QTest::newRow("no index") << QByteArray("{\"name\":\"a\"}") << 0 << true << "a" << false;
        QTest::newRow("index only nested") << QByteArray("{\"p\":{\"index\":0},\"name\":\"a\"}") << 0 << true << "a" << false;
        QTest::newRow("first index counts") << QByteArray("{\"index\":2,\"index\":5}") << 2 << false << QString() << true;
        QTest::newRow("escaped name") << QByteArray("{\"name\":\"\\u00e9\",\"index\":7}") << 7 << true << QString(QChar(0xE9)) << true;
        QTest::newRow("name not a string") << QByteArray("{\"name\":5,\"index\":0}") << 0 << false << QString() << true;
        QTest::newRow("with spaces") << QByteArray(" { \"index\" : 12 , \"name\" : \"s\" } ") << 12 << true << "s" << true;
        QTest::newRow("broken") << QByteArray("{\"name\":\"a\",\"index\":0") << 0 << false << QString() << false;
        QTest::newRow("not an object") << QByteArray("[0]") << 0 << false << QString() << false;
    }
    void storedHead()
    {
        QFETCH(QByteArray, text);
        QFETCH(int, index);
        QFETCH(bool, hasName);
        QFETCH(QString, name);
        QFETCH(bool, indexIs);
        const rawjson::StoredHead head = rawjson::storedHead(text, index);
        QCOMPARE(head.hasName, hasName);
        if (hasName)
            QCOMPARE(head.name, name);
        QCOMPARE(head.indexIs, indexIs);
    }

    void scanRequest()
    {
        const QByteArray params = "{\"name\":\"a\",\"method\":\"inner\",\"points\":[{\"op\":\"x\"}]}";
        const QByteArray line = "\xEF\xBB\xBF{\"id\":4,\"op\":\"exec\",\"meth\\u006fd\":\"tray.set.one\",\"params\":" + params + "}";
        const rawjson::RequestHead head = rawjson::scanRequest(line);
        QVERIFY(head.object);
        QCOMPARE(head.op, QString("exec"));
        QCOMPARE(head.method, QString("tray.set.one"));
        QCOMPARE(line.mid(head.params.begin, head.params.size()), params);
        QCOMPARE(line.mid(head.id.begin, head.id.size()), QByteArray("4"));

        // Garbage is survived, whatever it is.
        QRandomGenerator gen(3);
        for (int i = 0; i < 2000; ++i) {
            QByteArray junk = line;
            for (int k = 0; k < 4; ++k)
                junk[int(gen.bounded(junk.size()))] = char(gen.bounded(256));
            junk.truncate(int(gen.bounded(junk.size() + 1)));
            const rawjson::RequestHead h = rawjson::scanRequest(junk);
            if (h.params.isValid())
                QVERIFY(h.params.begin >= 0 && h.params.end <= junk.size() && h.params.begin < h.params.end);
        }
        QVERIFY(!rawjson::scanRequest("[1,2]").object);
        QVERIFY(!rawjson::scanRequest("").object);
    }

    void excerpt()
    {
        QCOMPARE(rawjson::excerpt(QString("short")), QString("short"));
        const QString longText(1000, QChar('x'));
        QCOMPARE(rawjson::excerpt(longText), QString(64, QChar('x')) + "...");
        QCOMPARE(rawjson::excerpt(QByteArray(100000, 'y')), QString(64, QChar('y')) + "...");
        // A character outside the basic plane is not cut in two.
        QString pairs;
        for (int i = 0; i < 40; ++i)
            pairs += QString::fromUtf8("\xF0\x9F\x98\x80");
        const QString cut = rawjson::excerpt(pairs);
        QVERIFY(cut.endsWith("..."));
        QCOMPARE(cut.size(), 64 + 3);
        QVERIFY(cut.at(63).isLowSurrogate());
        QCOMPARE(rawjson::excerpt(pairs.toUtf8()), cut);
    }
};

QTEST_GUILESS_MAIN(TestRawJson)
#include "tst_rawjson.moc"
