#include "logview.h"
#include "pendanttestutil.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QtTest>

class TestLogView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void showsHistory();
    void levels_data();
    void levels();
    void entryWrittenByModule();
    void textOf_data();
    void textOf();
};

void TestLogView::init()
{
    resetHost();
}

void TestLogView::showsHistory()
{
    tcore::ManagerHelper::instance()->throwLog(nullptr, QStringLiteral("warning"), QStringLiteral("before"));
    LogView view;
    QCOMPARE(view.objectName(), QStringLiteral("lstLog"));
    QCOMPARE(view.count(), 1);
    QVERIFY(view.item(0)->text().contains(QStringLiteral("before")));
    tcore::ManagerHelper::instance()->throwLog(nullptr, QStringLiteral("error"), QStringLiteral("after"));
    QCOMPARE(view.count(), 2);
    QVERIFY(view.item(1)->text().contains(QStringLiteral("after")));
}

void TestLogView::levels_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<bool>("red");
    QTest::newRow("error is red") << "error" << true;
    QTest::newRow("warning is not red") << "warning" << false;
    QTest::newRow("info is not red") << "info" << false;
}

void TestLogView::levels()
{
    QFETCH(QString, level);
    QFETCH(bool, red);
    LogView view;
    tcore::ManagerHelper::instance()->throwLog(nullptr, level, QStringLiteral("message"));
    QCOMPARE(view.count(), 1);
    const QColor colour = view.item(0)->foreground().color();
    QCOMPARE(colour, LogView::colourOf(level));
    const bool isRed = colour.red() > 200 && colour.green() < 100 && colour.blue() < 100;
    QCOMPARE(isRed, red);
    QCOMPARE(view.item(0)->data(Qt::UserRole).toString(), level);
}

void TestLogView::entryWrittenByModule()
{
    // Modules write a JSON entry straight into "tormo.log.current".
    LogView view;
    kx::globalNode(QStringLiteral("tormo.log.current"))
        ->setValue(nullptr, QStringLiteral("{\"level\":\"error\",\"title\":\"Name exists\","
                                           "\"date_time\":\"2026-01-02/03:04:05\",\"rcid\":\"rc\"}"));
    QCOMPARE(view.count(), 1);
    QCOMPARE(view.item(0)->text(), QStringLiteral("03:04:05  Name exists"));
    QCOMPARE(view.item(0)->foreground().color(), LogView::colourOf(QStringLiteral("error")));
}

void TestLogView::textOf_data()
{
    QTest::addColumn<QVariantMap>("entry");
    QTest::addColumn<QString>("text");
    QTest::newRow("title only") << QVariantMap{{"title", "T"}, {"date_time", "2026-01-02/10:00:00"}} << "10:00:00  T";
    QTest::newRow("title and text")
        << QVariantMap{{"title", "T"}, {"text", "why"}, {"date_time", "2026-01-02/10:00:00"}} << "10:00:00  T: why";
    QTest::newRow("no time") << QVariantMap{{"title", "T"}} << "  T";
}

void TestLogView::textOf()
{
    QFETCH(QVariantMap, entry);
    QFETCH(QString, text);
    QCOMPARE(LogView::textOf(entry), text);
}

QTEST_MAIN(TestLogView)
#include "tst_logview.moc"
