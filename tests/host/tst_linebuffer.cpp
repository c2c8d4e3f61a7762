#include <orbat/linebuffer.h>

#include <QBuffer>
#include <QtTest>

namespace {

// Feeds `chunks` one pull at a time and collects every line taken after each.
QList<QByteArray> feed(orbat::LineBuffer *rx, const QList<QByteArray> &chunks, qint64 maxBytes = 1 << 30)
{
    QList<QByteArray> lines;
    for (const QByteArray &chunk : chunks) {
        QByteArray bytes = chunk;
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        while (device.bytesAvailable() > 0) {
            if (rx->pull(&device, maxBytes) <= 0)
                break;
            QByteArray line;
            while (rx->takeLine(&line))
                lines << line;
        }
    }
    return lines;
}

} // namespace

class TestLineBuffer : public QObject
{
    Q_OBJECT

private slots:
    void lines_data()
    {
        QTest::addColumn<QList<QByteArray>>("chunks");
        QTest::addColumn<QList<QByteArray>>("lines");
        QTest::addColumn<qint64>("pending");
        QTest::newRow("one line") << QList<QByteArray>{"abc\n"} << QList<QByteArray>{"abc"} << qint64(0);
        QTest::newRow("crlf") << QList<QByteArray>{"abc\r\n"} << QList<QByteArray>{"abc"} << qint64(0);
        QTest::newRow("split anywhere") << QList<QByteArray>{"a", "bc", "\nde", "f\r", "\n"}
                                        << QList<QByteArray>{"abc", "def"} << qint64(0);
        QTest::newRow("several in one chunk") << QList<QByteArray>{"1\n22\n333\n4"}
                                              << QList<QByteArray>{"1", "22", "333"} << qint64(1);
        QTest::newRow("empty lines kept") << QList<QByteArray>{"\n\nx\n"} << QList<QByteArray>{"", "", "x"} << qint64(0);
        QTest::newRow("no end yet") << QList<QByteArray>{"abc", "def"} << QList<QByteArray>{} << qint64(6);
        const QByteArray big(3 * 1000 * 1000, 'z');
        QTest::newRow("large line, then a short one started") << QList<QByteArray>{big.left(100), big.mid(100) + "\nsh"}
                                                              << QList<QByteArray>{big} << qint64(2);
        QTest::newRow("short lines around a large one") << QList<QByteArray>{"a\n" + big + "\nb\n"}
                                                         << QList<QByteArray>{"a", big, "b"} << qint64(0);
    }

    void lines()
    {
        QFETCH(QList<QByteArray>, chunks);
        QFETCH(QList<QByteArray>, lines);
        QFETCH(qint64, pending);
        orbat::LineBuffer rx;
        QCOMPARE(feed(&rx, chunks), lines);
        QCOMPARE(rx.pendingBytes(), pending);
    }

    // Many short lines: the handled ones are dropped at the next pull, the unfinished one kept.
    void manyShortLines()
    {
        orbat::LineBuffer rx;
        QByteArray text;
        for (int i = 0; i < 10000; ++i)
            text += QByteArray::number(i) + '\n';
        const QList<QByteArray> got = feed(&rx, {text + "tail", "-end\n"});
        QCOMPARE(got.size(), 10001);
        QCOMPARE(got.at(9999), QByteArray("9999"));
        QCOMPARE(got.last(), QByteArray("tail-end"));
        QCOMPARE(rx.pendingBytes(), qint64(0));
    }

    void pullTakesAtMostWhatIsAsked()
    {
        orbat::LineBuffer rx;
        QByteArray bytes("0123456789\n");
        QBuffer device(&bytes);
        device.open(QIODevice::ReadOnly);
        QCOMPARE(rx.pull(&device, 4), qint64(4));
        QCOMPARE(rx.pendingBytes(), qint64(4));
        QByteArray line;
        QVERIFY(!rx.takeLine(&line));
        QCOMPARE(rx.pull(&device, 100), qint64(7));
        QVERIFY(rx.takeLine(&line));
        QCOMPARE(line, QByteArray("0123456789"));
        QCOMPARE(rx.pull(&device, 100), qint64(0));
    }

    void clearForgetsEverything()
    {
        orbat::LineBuffer rx;
        feed(&rx, {"half"});
        QCOMPARE(rx.pendingBytes(), qint64(4));
        rx.clear();
        QCOMPARE(rx.pendingBytes(), qint64(0));
        QCOMPARE(feed(&rx, {"x\n"}), QList<QByteArray>{"x"});
    }
};

QTEST_GUILESS_MAIN(TestLineBuffer)
#include "tst_linebuffer.moc"
