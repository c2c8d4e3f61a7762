#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <orba/json.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

using tcore::ManagerHelper;

namespace {

// Runs `action` on the message box once it is up (the box runs its own event loop, in which the
// timer keeps looking for it). Lives on the caller's stack, so nothing outlives the test.
class BoxWatcher
{
public:
    explicit BoxWatcher(std::function<void(QWidget *)> action) : m_action(std::move(action))
    {
        m_timer.setInterval(10);
        QObject::connect(&m_timer, &QTimer::timeout, [this]() {
            for (QWidget *w : QApplication::topLevelWidgets()) {
                if (w->objectName() == QLatin1String("msgBox") && w->isVisible()) {
                    m_timer.stop();
                    m_action(w);
                    return;
                }
            }
        });
        m_timer.start();
    }

private:
    std::function<void(QWidget *)> m_action;
    QTimer m_timer;
};

} // namespace

class TestManagerHelper : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void queuedAnswers_data();
    void queuedAnswers();
    void historyRecordsEveryBox();
    void observerSeesEveryBox();
    void realBoxIsClicked_data();
    void realBoxIsClicked();
    void realInfoBoxHasOnlyOk();

    void logNodeFillsHistory_data();
    void logNodeFillsHistory();
    void logNodeIgnoresGarbage_data();
    void logNodeIgnoresGarbage();
    void logHistoryIsLimited();
    void logNodeFollowedAfterTreeReset();
    void throwLogWritesEntry();
    void throwLogWithTitleAndText();
    void throwLogTwiceGivesTwoEntries();

    void languageChangeLoadsTranslator();
    void missingTranslationKeepsEnglish();
    void settingsPersistInIniFile();
    void controllerManagerIsTheServices();
};

void TestManagerHelper::init()
{
    orba::ModuleManager::resetRoot();
    ManagerHelper *h = ManagerHelper::instance();
    h->setMsgTestMode(true);
    h->clearMsgHistory();
    h->clearLogHistory();
    h->setMsgBoxObserver(nullptr);
}

void TestManagerHelper::cleanup()
{
    ManagerHelper *h = ManagerHelper::instance();
    h->setMsgTestMode(false);
    h->setMsgBoxObserver(nullptr);
    tcore::SettingManager::instance()->setStorage(QString());
    tcore::SettingManager::instance()->clear();
    orba::ModuleManager::resetRoot();
}

void TestManagerHelper::queuedAnswers_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QList<bool>>("queued");
    QTest::addColumn<QList<bool>>("expected");
    QTest::newRow("question, empty queue declines") << "q" << QList<bool>{} << QList<bool>{false, false};
    QTest::newRow("warning, empty queue confirms") << "warning" << QList<bool>{} << QList<bool>{true};
    QTest::newRow("question answered yes then no") << "q" << QList<bool>{true, false} << QList<bool>{true, false, false};
    QTest::newRow("info answered no") << "info" << QList<bool>{false} << QList<bool>{false, true};
}

void TestManagerHelper::queuedAnswers()
{
    QFETCH(QString, kind);
    QFETCH(QList<bool>, queued);
    QFETCH(QList<bool>, expected);
    ManagerHelper *h = ManagerHelper::instance();
    for (bool answer : queued)
        h->queueMsgAnswer(answer);
    for (bool want : expected)
        QCOMPARE(h->execMsgOk(kind, QStringLiteral("text")), want);
    // No box was ever shown.
    for (QWidget *w : QApplication::topLevelWidgets())
        QVERIFY(w->objectName() != QLatin1String("msgBox") || !w->isVisible());
}

void TestManagerHelper::historyRecordsEveryBox()
{
    ManagerHelper *h = ManagerHelper::instance();
    QSignalSpy asked(h, &ManagerHelper::messageAsked);
    h->execMsgOk(QStringLiteral("warning"), QStringLiteral("Please select a pallet!"), QStringLiteral("_"));
    h->execMsgOk(QStringLiteral("q"), QStringLiteral("Are you sure to delete a"));
    const QList<ManagerHelper::MsgRecord> history = h->msgHistory();
    QCOMPARE(history.size(), 2);
    QCOMPARE(history[0].kind, QStringLiteral("warning"));
    QCOMPARE(history[0].text, QStringLiteral("Please select a pallet!"));
    QCOMPARE(history[0].button, QStringLiteral("_"));
    QCOMPARE(history[1].kind, QStringLiteral("q"));
    QCOMPARE(history[1].button, QStringLiteral("_"));
    QCOMPARE(asked.count(), 2);
    QCOMPARE(asked.at(1).at(1).toString(), QStringLiteral("Are you sure to delete a"));
    h->clearMsgHistory();
    QVERIFY(h->msgHistory().isEmpty());
}

void TestManagerHelper::observerSeesEveryBox()
{
    ManagerHelper *h = ManagerHelper::instance();
    QStringList seen;
    h->setMsgBoxObserver([&seen](const ManagerHelper::MsgRecord &r) { seen << r.kind + QLatin1Char(':') + r.text; });
    h->execMsgOk(QStringLiteral("info"), QStringLiteral("one"));
    h->execMsgOk(QStringLiteral("q"), QStringLiteral("two"));
    QCOMPARE(seen, (QStringList{QStringLiteral("info:one"), QStringLiteral("q:two")}));
}

void TestManagerHelper::realBoxIsClicked_data()
{
    QTest::addColumn<QString>("button");
    QTest::addColumn<bool>("expected");
    QTest::newRow("ok confirms") << "btnMsgOk" << true;
    QTest::newRow("cancel declines") << "btnMsgCancel" << false;
}

void TestManagerHelper::realBoxIsClicked()
{
    QFETCH(QString, button);
    QFETCH(bool, expected);
    ManagerHelper *h = ManagerHelper::instance();
    h->setMsgTestMode(false);

    QString shownText;
    QSize okSize, cancelSize;
    bool modal = false;
    BoxWatcher watcher([&](QWidget *box) {
        modal = box->isModal();
        shownText = box->findChild<QLabel *>(QStringLiteral("lblMsgText"))->text();
        okSize = box->findChild<QPushButton *>(QStringLiteral("btnMsgOk"))->size();
        cancelSize = box->findChild<QPushButton *>(QStringLiteral("btnMsgCancel"))->size();
        QTest::mouseClick(box->findChild<QPushButton *>(button), Qt::LeftButton);
    });
    const bool answer = h->execMsgOk(QStringLiteral("q"), QStringLiteral("Are you sure to delete t1"));
    QCOMPARE(answer, expected);
    QVERIFY(modal);
    QCOMPARE(shownText, QStringLiteral("Are you sure to delete t1"));
    QVERIFY(okSize.width() >= 108 && okSize.height() >= 48);
    QVERIFY(cancelSize.width() >= 108 && cancelSize.height() >= 48);
    QCOMPARE(h->msgHistory().size(), 1);
}

void TestManagerHelper::realInfoBoxHasOnlyOk()
{
    ManagerHelper *h = ManagerHelper::instance();
    h->setMsgTestMode(false);
    bool hasCancel = true;
    QString title;
    BoxWatcher watcher([&](QWidget *box) {
        hasCancel = box->findChild<QPushButton *>(QStringLiteral("btnMsgCancel")) != nullptr;
        title = box->windowTitle();
        QTest::mouseClick(box->findChild<QPushButton *>(QStringLiteral("btnMsgOk")), Qt::LeftButton);
    });
    QVERIFY(h->execMsgOk(QStringLiteral("warning"), QStringLiteral("careful")));
    QVERIFY(!hasCancel);
    QCOMPARE(title, QStringLiteral("Warning"));
}

void TestManagerHelper::logNodeFillsHistory_data()
{
    QTest::addColumn<QVariant>("value");
    const QByteArray json = R"({"level":"error","title":"Calibrate failed","date_time":"2026-11-21/10:00:00","rcid":"rc-7"})";
    QVariantMap map{{QStringLiteral("level"), QStringLiteral("error")},
                    {QStringLiteral("title"), QStringLiteral("Calibrate failed")},
                    {QStringLiteral("date_time"), QStringLiteral("2026-11-21/10:00:00")},
                    {QStringLiteral("rcid"), QStringLiteral("rc-7")}};
    QTest::newRow("json text") << QVariant(QString::fromUtf8(json));
    QTest::newRow("json bytes") << QVariant(json);
    QTest::newRow("map") << QVariant(map);
}

void TestManagerHelper::logNodeFillsHistory()
{
    QFETCH(QVariant, value);
    ManagerHelper *h = ManagerHelper::instance();
    QSignalSpy added(h, &ManagerHelper::logEntryAdded);
    orba::m()->set(nullptr, QStringLiteral("tormo.log.current"), value);
    QCOMPARE(added.count(), 1);
    const QList<QVariantMap> history = h->logHistory();
    QCOMPARE(history.size(), 1);
    QCOMPARE(history[0].value(QStringLiteral("level")).toString(), QStringLiteral("error"));
    QCOMPARE(history[0].value(QStringLiteral("title")).toString(), QStringLiteral("Calibrate failed"));
    QCOMPARE(history[0].value(QStringLiteral("rcid")).toString(), QStringLiteral("rc-7"));
    QCOMPARE(added.at(0).at(0).toMap(), history[0]);
}

void TestManagerHelper::logNodeIgnoresGarbage_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::newRow("not json") << QVariant(QStringLiteral("{level: broken"));
    QTest::newRow("json array") << QVariant(QStringLiteral("[1,2]"));
    QTest::newRow("number") << QVariant(42);
    QTest::newRow("empty text") << QVariant(QString());
}

void TestManagerHelper::logNodeIgnoresGarbage()
{
    QFETCH(QVariant, value);
    ManagerHelper *h = ManagerHelper::instance();
    QSignalSpy added(h, &ManagerHelper::logEntryAdded);
    orba::m()->set(nullptr, QStringLiteral("tormo.log.current"), value);
    QCOMPARE(added.count(), 0);
    QVERIFY(h->logHistory().isEmpty());
    // A good entry afterwards still arrives.
    orba::m()->set(nullptr, QStringLiteral("tormo.log.current"), QStringLiteral(R"({"level":"warning","title":"ok"})"));
    QCOMPARE(h->logHistory().size(), 1);
}

void TestManagerHelper::logHistoryIsLimited()
{
    ManagerHelper *h = ManagerHelper::instance();
    const int extra = 5;
    for (int i = 0; i < ManagerHelper::historyLimit() + extra; ++i) {
        orba::m()->set(nullptr, QStringLiteral("tormo.log.current"),
                       QStringLiteral(R"({"level":"warning","title":"entry %1"})").arg(i));
    }
    const QList<QVariantMap> history = h->logHistory();
    QCOMPARE(history.size(), ManagerHelper::historyLimit());
    QCOMPARE(history.first().value(QStringLiteral("title")).toString(), QStringLiteral("entry %1").arg(extra));
    QCOMPARE(history.last().value(QStringLiteral("title")).toString(),
             QStringLiteral("entry %1").arg(ManagerHelper::historyLimit() + extra - 1));
}

void TestManagerHelper::logNodeFollowedAfterTreeReset()
{
    ManagerHelper *h = ManagerHelper::instance();
    for (int round = 0; round < 3; ++round) {
        orba::ModuleManager::resetRoot();
        orba::m()->set(nullptr, QStringLiteral("tormo.log.current"),
                       QStringLiteral(R"({"level":"error","title":"round %1"})").arg(round));
    }
    const QList<QVariantMap> history = h->logHistory();
    QCOMPARE(history.size(), 3);
    QCOMPARE(history.last().value(QStringLiteral("title")).toString(), QStringLiteral("round 2"));
}

void TestManagerHelper::throwLogWritesEntry()
{
    orba::m()->set(nullptr, QStringLiteral("tcore.r.id"), QStringLiteral("RC-0042"));
    ManagerHelper *h = ManagerHelper::instance();
    QSignalSpy added(h, &ManagerHelper::logEntryAdded);
    h->throwLog(this, QStringLiteral("warning"), QStringLiteral("Swithed to pallet wobj"));
    QCOMPARE(added.count(), 1);

    const QVariant raw = orba::m(QStringLiteral("tormo.log.current"))->value();
    QCOMPARE(raw.userType(), int(QMetaType::QString));
    bool ok = false;
    const QVariantMap entry = orba::json::toVariant(raw.toString().toUtf8(), &ok).toMap();
    QVERIFY(ok);
    QCOMPARE(entry.value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
    QCOMPARE(entry.value(QStringLiteral("title")).toString(), QStringLiteral("Swithed to pallet wobj"));
    QCOMPARE(entry.value(QStringLiteral("rcid")).toString(), QStringLiteral("RC-0042"));
    QVERIFY(QRegularExpression(QStringLiteral("^\\d{4}-\\d{2}-\\d{2}/\\d{2}:\\d{2}:\\d{2}$"))
                .match(entry.value(QStringLiteral("date_time")).toString())
                .hasMatch());
    QCOMPARE(h->logHistory().last(), entry);
}

void TestManagerHelper::throwLogWithTitleAndText()
{
    ManagerHelper *h = ManagerHelper::instance();
    h->throwLog(nullptr, QStringLiteral("error"), QStringLiteral("Tray"), QStringLiteral("save failed"), 1);
    const QVariantMap entry = h->logHistory().last();
    QCOMPARE(entry.value(QStringLiteral("level")).toString(), QStringLiteral("error"));
    QCOMPARE(entry.value(QStringLiteral("title")).toString(), QStringLiteral("Tray"));
    QCOMPARE(entry.value(QStringLiteral("text")).toString(), QStringLiteral("save failed"));
    QVERIFY(entry.contains(QStringLiteral("rcid")));
}

void TestManagerHelper::throwLogTwiceGivesTwoEntries()
{
    ManagerHelper *h = ManagerHelper::instance();
    h->throwLog(nullptr, QStringLiteral("error"), QStringLiteral("same"));
    h->throwLog(nullptr, QStringLiteral("error"), QStringLiteral("same"));
    QCOMPARE(h->logHistory().size(), 2);
}

void TestManagerHelper::languageChangeLoadsTranslator()
{
    ManagerHelper *h = ManagerHelper::instance();
    h->registQrcAlias(QStringLiteral("tsthost"));
    QVERIFY(h->qrcAliases().contains(QStringLiteral("tsthost")));
    QVERIFY(QFile::exists(QStringLiteral(":/tsthost/language/tsthost_cn.qm")));
    QCOMPARE(tr("Hello"), QStringLiteral("Hello"));

    QSignalSpy changed(tcore::SettingManager::instance(), &tcore::SettingManager::changed);
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("cn"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0).toString(), QStringLiteral("language"));
    QCOMPARE(tr("Hello"), QStringLiteral("Ni hao"));

    // Setting the same language again changes nothing.
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("cn"));
    QCOMPARE(changed.count(), 1);

    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    QCOMPARE(tr("Hello"), QStringLiteral("Hello"));
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("language")), QStringLiteral("en"));
}

void TestManagerHelper::missingTranslationKeepsEnglish()
{
    ManagerHelper *h = ManagerHelper::instance();
    h->registQrcAlias(QStringLiteral("tsthost"));
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("ru"));
    QCOMPARE(tr("Hello"), QStringLiteral("Hello"));
}

void TestManagerHelper::settingsPersistInIniFile()
{
    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString ini = dir.filePath(QStringLiteral("host.ini"));
    tcore::SettingManager *s = tcore::SettingManager::instance();
    tcore::SettingManager::setStr(QStringLiteral("unit"), QStringLiteral("mm"));
    s->setStorage(ini);
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("unit")), QStringLiteral("mm"));
    tcore::SettingManager::set(QStringLiteral("speed"), 250);

    QSettings file(ini, QSettings::IniFormat);
    QCOMPARE(file.value(QStringLiteral("unit")).toString(), QStringLiteral("mm"));
    QCOMPARE(file.value(QStringLiteral("speed")).toInt(), 250);

    s->setStorage(QString());
    QCOMPARE(tcore::SettingManager::get(QStringLiteral("speed")).toInt(), 250);
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("missing"), QStringLiteral("def")), QStringLiteral("def"));
}

void TestManagerHelper::controllerManagerIsTheServices()
{
    QVERIFY(ManagerHelper::instance()->controllerManager() != nullptr);
    QCOMPARE(ManagerHelper::instance()->controllerManager(), tservice()->controllerManager());
}

QTEST_MAIN(TestManagerHelper)
#include "tst_managerhelper.moc"
