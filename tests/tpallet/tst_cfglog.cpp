#include "palletfixture.h"

#include "module/tpallet.h"
#include "pages/newpalletdialog.h"
#include "pages/palletpage.h"

#include <kx/globaluniqueptr.h>
#include <kx/kx.h>

#include <QDialog>
#include <QPointer>
#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>
#include <QtTest>

#include <memory>

class TstCfgLog : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fx.setUp(); }
    void cleanup() { m_fx.tearDown(); }

    void recordWritesEntryIntoCurrentLog_data();
    void recordWritesEntryIntoCurrentLog();
    void entryFieldsAreInOrder();
    void repeatedMessageIsRecordedTwice();
    void uniqueWidgetCarriesHandleAndAttributes();
    void uniqueWidgetReplacesPreviousOfSameKey();
    void uniqueKeyIsReleasedWhenWidgetCloses();
    void moveDialogHasItsOwnKey();
    void editReplacesConfigurationDialogButNotMoveDialog();
    void boundDialogIsRejectedWhenNodeIsDestroyed();
    void deletingPalletRejectsItsOpenDialog();

private:
    PalletFixture m_fx;
};

void TstCfgLog::recordWritesEntryIntoCurrentLog_data()
{
    QTest::addColumn<bool>("error");
    QTest::addColumn<QString>("level");
    QTest::newRow("error entry") << true << "error";
    QTest::newRow("warning entry") << false << "warning";
}

void TstCfgLog::recordWritesEntryIntoCurrentLog()
{
    QFETCH(bool, error);
    QFETCH(QString, level);
    orba::m()->set(nullptr, QStringLiteral("tcore.r.id"), QStringLiteral("rc-unit-7"), true);
    const QString title = QStringLiteral("The name is used by another pallet!");

    tpallet::recordCfgLog(title, error);

    const QVariant current = orba::m(QStringLiteral("tormo.log.current"))->value();
    QVERIFY(current.isValid());
    bool ok = false;
    const QVariantMap entry = orba::json::toVariant(current.toString().toUtf8(), &ok).toMap();
    QVERIFY(ok);
    QCOMPARE(entry.value(QStringLiteral("level")).toString(), level);
    QCOMPARE(entry.value(QStringLiteral("title")).toString(), title);
    QCOMPARE(entry.value(QStringLiteral("rcid")).toString(), QStringLiteral("rc-unit-7"));
    const QString stamp = entry.value(QStringLiteral("date_time")).toString();
    QVERIFY2(QRegularExpression(QStringLiteral("^\\d{4}-\\d\\d-\\d\\d/\\d\\d:\\d\\d:\\d\\d$")).match(stamp).hasMatch(),
             qPrintable(stamp));
    const QDateTime when = QDateTime::fromString(stamp, QStringLiteral("yyyy-MM-dd/HH:mm:ss"));
    QVERIFY(when.isValid());
    QVERIFY(qAbs(when.secsTo(QDateTime::currentDateTime())) < 5);

    // The host takes it into the operator log.
    const QList<QVariantMap> history = tcore::ManagerHelper::instance()->logHistory();
    QVERIFY(!history.isEmpty());
    QCOMPARE(history.last().value(QStringLiteral("level")).toString(), level);
    QCOMPARE(history.last().value(QStringLiteral("title")).toString(), title);
}

void TstCfgLog::entryFieldsAreInOrder()
{
    tpallet::recordCfgLog(QStringLiteral("x"), false);
    orba::ModuleObject entry(QStringLiteral("log"));
    QVERIFY(entry.importFromJson(nullptr, orba::m(QStringLiteral("tormo.log.current"))->value().toString().toUtf8()));
    QCOMPARE(entry.cmobjNames(), (QStringList{"level", "title", "date_time", "rcid"}));
    // Only two levels exist: no "info" for informative notes.
    QCOMPARE(entry.c(QStringLiteral("level"), false)->getString(), QStringLiteral("warning"));
    QCOMPARE(entry.c(QStringLiteral("rcid"), false)->getString(), QString());
}

void TstCfgLog::repeatedMessageIsRecordedTwice()
{
    tcore::ManagerHelper::instance()->clearLogHistory();
    tpallet::recordCfgLog(QStringLiteral("same"), true);
    tpallet::recordCfgLog(QStringLiteral("same"), true);
    QCOMPARE(tcore::ManagerHelper::instance()->logHistory().size(), 2);
}

void TstCfgLog::uniqueWidgetCarriesHandleAndAttributes()
{
    QPointer<QDialog> dialog = new QDialog;
    tpallet::makeUniqueDialog(dialog);
    QVERIFY(dialog->testAttribute(Qt::WA_DeleteOnClose));
    QVERIFY(dialog->testAttribute(Qt::WA_StyleSheet));
    QCOMPARE(int(Qt::WA_DeleteOnClose), 55);
    QCOMPARE(int(Qt::WA_StyleSheet), 97);
    const QVariant unique = dialog->property("unique");
    QVERIFY(unique.isValid());
    QCOMPARE(unique.userType(), QMetaType::type("std::shared_ptr<kx::GlobalUniquePtr<QWidget>>"));
    QVERIFY(unique.userType() != QMetaType::UnknownType);
    const auto handle = unique.value<std::shared_ptr<kx::GlobalUniquePtr<QWidget>>>();
    QVERIFY(handle);
    QCOMPARE(handle->get(), dialog.data());
    QCOMPARE(handle->key(), QStringLiteral("tpallet.dialog"));
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), dialog.data());
    QCOMPARE(kx::globalNode(QStringLiteral("tpallet.dialog"))->value().value<QObject *>(), dialog.data());
    delete dialog.data();
}

void TstCfgLog::uniqueWidgetReplacesPreviousOfSameKey()
{
    QPointer<QDialog> first = new QDialog;
    tpallet::makeUniqueDialog(first);
    first->show();
    QPointer<QDialog> second = new QDialog;
    tpallet::makeUniqueDialog(second);
    // Deleted at once, without asking.
    QVERIFY(!first);
    QVERIFY(second);
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), second.data());
    delete second.data();
}

void TstCfgLog::uniqueKeyIsReleasedWhenWidgetCloses()
{
    QPointer<QDialog> dialog = new QDialog;
    tpallet::makeUniqueDialog(dialog);
    dialog->show();
    dialog->reject();
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), nullptr);
}

void TstCfgLog::moveDialogHasItsOwnKey()
{
    QPointer<QDialog> dialog = new QDialog;
    QPointer<QDialog> move = new QDialog;
    tpallet::makeUniqueDialog(dialog);
    tpallet::makeUniqueMoveDialog(move);
    QVERIFY(dialog);
    QVERIFY(move);
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.move.dialog")), move.data());
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), dialog.data());
    QPointer<QDialog> move2 = new QDialog;
    tpallet::makeUniqueMoveDialog(move2);
    QVERIFY(!move);
    QVERIFY(dialog);
    delete dialog.data();
    delete move2.data();
}

void TstCfgLog::editReplacesConfigurationDialogButNotMoveDialog()
{
    m_fx.module()->init();
    m_fx.module()->setup();
    m_fx.connectController();
    orba::ModuleObject *pallet = PalletFixture::addLocalPallet(QStringLiteral("p1"), 2, 2);
    tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false)->trigger(nullptr);

    // Stand-ins for an open configuration dialog and move-to dialog.
    QPointer<QDialog> configuration = new QDialog;
    tpallet::makeUniqueDialog(configuration);
    tpallet::bindDialogToNode(configuration, pallet);
    configuration->show();
    QPointer<QDialog> move = new QDialog;
    tpallet::makeUniqueMoveDialog(move);
    move->show();

    QWidget *page = m_fx.module()->page()->wgt();
    page->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->setCurrentCell(0, 0);
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    QPushButton *edit = page->findChild<QPushButton *>(QStringLiteral("btnEdit"));
    QVERIFY(edit->isEnabled());
    QTest::mouseClick(edit, Qt::LeftButton);

    QVERIFY(!configuration);
    QVERIFY(move);
    QVERIFY(move->isVisible());
    QObject *current = kx::uniqueObject(QStringLiteral("tpallet.dialog"));
    QVERIFY(qobject_cast<NewPalletDialog *>(current));
    delete current;
    delete move.data();
}

void TstCfgLog::boundDialogIsRejectedWhenNodeIsDestroyed()
{
    auto *node = new orba::ModuleObject(QStringLiteral("pallet"));
    QPointer<QDialog> dialog = new QDialog;
    tpallet::makeUniqueDialog(dialog);
    tpallet::bindDialogToNode(dialog, node);
    QSignalSpy rejected(dialog.data(), &QDialog::rejected);
    QSignalSpy finished(dialog.data(), &QDialog::finished);
    dialog->show();
    delete node;
    QCOMPARE(rejected.count(), 1);
    QCOMPARE(finished.count(), 1);
    QCOMPARE(finished.at(0).at(0).toInt(), int(QDialog::Rejected));
    QVERIFY(!dialog->isVisible());
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);

    // The empty node never goes away: binding to it is refused.
    QDialog plain;
    tpallet::bindDialogToNode(&plain, orba::ModuleManager::emptyMobj());
    QCOMPARE(plain.result(), 0);
}

void TstCfgLog::deletingPalletRejectsItsOpenDialog()
{
    m_fx.module()->init();
    m_fx.module()->setup();
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    orba::ModuleObject *b = PalletFixture::addLocalPallet(QStringLiteral("b"), 1, 1);
    tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false)->trigger(nullptr);

    QPointer<QDialog> configuration = new QDialog;
    tpallet::makeUniqueDialog(configuration);
    tpallet::bindDialogToNode(configuration, b);
    QSignalSpy rejected(configuration.data(), &QDialog::rejected);
    configuration->show();

    PalletPage *page = m_fx.module()->page();
    page->wgt()->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->setCurrentCell(1, 0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    m_fx.transport()->queueReply(QStringLiteral("tray.del_one"), 0);
    page->delPallet();

    QCOMPARE(rejected.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!configuration);
    QCOMPARE(tpallet::palletsNode()->size(), 1);
}

QTEST_MAIN(TstCfgLog)
#include "tst_cfglog.moc"
