#include "palletfixture.h"

#include "dialogs/imexportdialog.h"
#include "module/tpallet.h"
#include "pages/newpalletdialog.h"
#include "pages/palletpage.h"
#include "pages/palletsetdialog.h"

#include <kx/globaluniqueptr.h>
#include <kx/kx.h>
#include <tcore/settingmanager.h>

#include <QFile>
#include <QHeaderView>
#include <QLineEdit>
#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QTableWidget>
#include <QtTest>

namespace {

const QStringList kButtons{"btnImport", "btnExport", "btnAdd", "btnEdit", "btnCfg", "btnPointCheck", "btnDel"};
const QStringList kFullProtocol{"tray.query.list", "tray.query.one", "tray.data", "tray.add_one",
                                "tray.del_one", "tray.set.one", "tray.set.name"};

// The enabled buttons, in form order.
QStringList enabledButtons(QWidget *page)
{
    QStringList enabled;
    for (const QString &name : kButtons) {
        if (page->findChild<QPushButton *>(name)->isEnabled())
            enabled << name;
    }
    return enabled;
}

} // namespace

class TstPalletPage : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formHasButtonsWithLabels_data();
    void formHasButtonsWithLabels();
    void buttonIconsAreTintedWhite_data();
    void buttonIconsAreTintedWhite();
    void tableHasFiveColumnsAndRowSelection();
    void backgroundWidgetStyle();
    void pageIsOpenAtEveryLevel();
    void levelRulesEnableButtons_data();
    void levelRulesEnableButtons();
    void disconnectedControllerDisablesEverything_data();
    void disconnectedControllerDisablesEverything();
    void refreshTableShowsPalletsInTreeOrder();
    void totalIsRowTimesColumnEvenForOneByOne();
    void refreshTriggerRebuildsTable();
    void commandsWithoutSelectionWarn_data();
    void commandsWithoutSelectionWarn();
    void configureAndPointCheckPassTheirModes_data();
    void configureAndPointCheckPassTheirModes();
    void deleteAsksAndDeclinedSendsNothing();
    void deleteWithZeroReplyRemovesRow();
    void deleteWithNonZeroReplyKeepsBothSides_data();
    void deleteWithNonZeroReplyKeepsBothSides();
    void addOpensNewPalletDialog();
    void importAndExportOpenTheExchangeDialog_data();
    void importAndExportOpenTheExchangeDialog();
    void acceptedImportRebuildsTable();
    void editOpensDialogForSelectedPallet();
    void pageStaysUsableAfterFailedLoad();
    void textsFollowHostLanguage_data();
    void textsFollowHostLanguage();

private:
    QWidget *page() const { return m_fx.module()->page()->wgt(); }
    QTableWidget *table() const { return page()->findChild<QTableWidget *>(QStringLiteral("tableWidget")); }
    QPushButton *button(const QString &name) const { return page()->findChild<QPushButton *>(name); }
    void setLevel(int level) { orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), level, true); }
    void refresh() { tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false)->trigger(nullptr); }

    PalletFixture m_fx;
};

void TstPalletPage::init()
{
    m_fx.setUp();
    m_fx.module()->init();
    m_fx.module()->setup();
    setLevel(3);
}

void TstPalletPage::cleanup()
{
    m_fx.tearDown();
}

void TstPalletPage::formHasButtonsWithLabels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("label");
    QTest::newRow("import") << "btnImport" << "Import";
    QTest::newRow("export") << "btnExport" << "Export";
    QTest::newRow("add") << "btnAdd" << "Add";
    QTest::newRow("edit") << "btnEdit" << "Edit";
    QTest::newRow("configure") << "btnCfg" << "Configure";
    QTest::newRow("point check") << "btnPointCheck" << "Point Check";
    QTest::newRow("delete") << "btnDel" << "Delete";
}

void TstPalletPage::formHasButtonsWithLabels()
{
    QFETCH(QString, name);
    QFETCH(QString, label);
    QPushButton *b = button(name);
    QVERIFY2(b, qPrintable(name));
    QCOMPARE(b->text(), label);
}

void TstPalletPage::buttonIconsAreTintedWhite_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("resource");
    QTest::newRow("import") << "btnImport" << ":/tormo/images/project/import.png";
    QTest::newRow("export") << "btnExport" << ":/tormo/images/project/export.png";
    QTest::newRow("add") << "btnAdd" << ":/tormo/images/project/add.png";
    QTest::newRow("edit") << "btnEdit" << ":/tormo/images/project/edit.png";
    QTest::newRow("configure") << "btnCfg" << ":/tormo/images/body/tool.png";
    QTest::newRow("point check") << "btnPointCheck" << ":/tormo/images/body/tool.png";
    QTest::newRow("delete") << "btnDel" << ":/tormo/images/project/remove.png";
}

void TstPalletPage::buttonIconsAreTintedWhite()
{
    QFETCH(QString, name);
    QFETCH(QString, resource);
    QVERIFY2(QFile::exists(resource), qPrintable(resource));
    const QIcon icon = button(name)->icon();
    QVERIFY(!icon.isNull());
    const QImage shown = icon.pixmap(icon.availableSizes().value(0, QSize(32, 32))).toImage();
    const QImage expected = kx::ttheme::pixmap(resource, QColor(Qt::white)).toImage();
    QCOMPARE(shown.size(), expected.size());
    int opaque = 0;
    for (int y = 0; y < shown.height(); ++y) {
        for (int x = 0; x < shown.width(); ++x) {
            const QColor c = shown.pixelColor(x, y);
            if (c.alpha() == 0)
                continue;
            ++opaque;
            QCOMPARE(c.rgb() & 0xffffff, QRgb(0xffffff));
        }
    }
    QVERIFY(opaque > 0);
}

void TstPalletPage::tableHasFiveColumnsAndRowSelection()
{
    QTableWidget *t = table();
    QVERIFY(t);
    QCOMPARE(t->columnCount(), 5);
    const QStringList headers{"Name", "Total", "Row", "Column", "Desc"};
    for (int i = 0; i < 5; ++i)
        QCOMPARE(t->horizontalHeaderItem(i)->text(), headers.at(i));
    QCOMPARE(t->selectionMode(), QAbstractItemView::SingleSelection);
    QCOMPARE(t->selectionBehavior(), QAbstractItemView::SelectRows);
    QVERIFY(t->horizontalHeader()->minimumHeight() >= 36);
    page()->window()->resize(1024, 640);
    page()->window()->show();
    QVERIFY(QTest::qWaitForWindowExposed(page()->window()));
    QVERIFY(t->horizontalHeader()->height() >= 36);
}

void TstPalletPage::backgroundWidgetStyle()
{
    QWidget *background = page()->findChild<QWidget *>(QStringLiteral("widget"));
    QVERIFY(background);
    QCOMPARE(background->styleSheet(), QStringLiteral("QWidget#widget{background:#333;}\n"));
}

void TstPalletPage::pageIsOpenAtEveryLevel()
{
    PalletPage *p = m_fx.module()->page();
    for (int level = 0; level <= 4; ++level) {
        setLevel(level);
        QVERIFY(p->isLevelAvailable());
    }
}

void TstPalletPage::levelRulesEnableButtons_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<QStringList>("enabled");
    QTest::newRow("level 0") << 0 << QStringList{};
    QTest::newRow("level 1") << 1 << QStringList{};
    QTest::newRow("level 2: configure and check only") << 2 << QStringList{"btnCfg", "btnPointCheck"};
    QTest::newRow("level 3: all") << 3 << kButtons;
    QTest::newRow("level 4: all") << 4 << kButtons;
}

void TstPalletPage::levelRulesEnableButtons()
{
    QFETCH(int, level);
    QFETCH(QStringList, enabled);
    m_fx.connectController();
    setLevel(level);
    QVERIFY(m_fx.module()->page()->isAvailable());
    QCOMPARE(enabledButtons(page()), enabled);
}

void TstPalletPage::disconnectedControllerDisablesEverything_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("level 2") << 2;
    QTest::newRow("level 3") << 3;
    QTest::newRow("level 4") << 4;
}

void TstPalletPage::disconnectedControllerDisablesEverything()
{
    QFETCH(int, level);
    m_fx.connectController();
    setLevel(level);
    QVERIFY(!enabledButtons(page()).isEmpty());
    m_fx.disconnectController();
    QVERIFY(!m_fx.module()->page()->isAvailable());
    QCOMPARE(enabledButtons(page()), QStringList());
    setLevel(level + 1);
    QCOMPARE(enabledButtons(page()), QStringList());
}

void TstPalletPage::refreshTableShowsPalletsInTreeOrder()
{
    PalletFixture::addLocalPallet(QStringLiteral("alpha"), 2, 3, QStringLiteral("first"));
    PalletFixture::addLocalPallet(QStringLiteral("beta"), 40, 30, QStringLiteral("second"));
    m_fx.module()->page()->refreshTable();
    QTableWidget *t = table();
    QCOMPARE(t->rowCount(), 2);
    const QList<QStringList> rows{{"alpha", "6", "2", "3", "first"}, {"beta", "1200", "40", "30", "second"}};
    for (int r = 0; r < rows.size(); ++r) {
        for (int c = 0; c < 5; ++c)
            QCOMPARE(t->item(r, c)->text(), rows.at(r).at(c));
    }
    QVERIFY(!(t->item(0, 0)->flags() & Qt::ItemIsEditable) || t->editTriggers() == QAbstractItemView::NoEditTriggers);
}

void TstPalletPage::totalIsRowTimesColumnEvenForOneByOne()
{
    PalletFixture::addLocalPallet(QStringLiteral("single"), 1, 1);
    m_fx.module()->page()->refreshTable();
    QCOMPARE(table()->item(0, 1)->text(), QStringLiteral("1"));
    QCOMPARE(table()->item(0, 2)->text(), QStringLiteral("1"));
    QCOMPARE(table()->item(0, 3)->text(), QStringLiteral("1"));
}

void TstPalletPage::refreshTriggerRebuildsTable()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 2);
    QCOMPARE(table()->rowCount(), 0);
    refresh();
    QCOMPARE(table()->rowCount(), 1);
    tpallet::palletsNode()->clear(nullptr, true, false);
    refresh();
    QCOMPARE(table()->rowCount(), 0);
}

void TstPalletPage::commandsWithoutSelectionWarn_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("edit") << "btnEdit";
    QTest::newRow("configure") << "btnCfg";
    QTest::newRow("point check") << "btnPointCheck";
    QTest::newRow("delete") << "btnDel";
}

void TstPalletPage::commandsWithoutSelectionWarn()
{
    QFETCH(QString, name);
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    refresh();
    table()->setCurrentCell(-1, -1);
    QCOMPARE(table()->currentRow(), -1);
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearMsgHistory();

    QTest::mouseClick(button(name), Qt::LeftButton);

    const auto boxes = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.at(0).kind, QStringLiteral("warning"));
    QCOMPARE(boxes.at(0).text, QStringLiteral("Please select a pallet!"));
    QCOMPARE(boxes.at(0).button, QStringLiteral("_"));
    QVERIFY(m_fx.palletMethods().isEmpty());
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), nullptr);
    QCOMPARE(tpallet::palletsNode()->size(), 1);
}

void TstPalletPage::configureAndPointCheckPassTheirModes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("step");
    for (int level = 1; level <= 4; ++level) {
        // Below level 2 the buttons are disabled: nothing opens.
        const bool opens = level >= 2;
        QTest::newRow(qPrintable(QStringLiteral("configure at level %1").arg(level))) << "btnCfg" << level << (opens ? 0 : -1);
        QTest::newRow(qPrintable(QStringLiteral("point check at level %1").arg(level)))
            << "btnPointCheck" << level << (opens ? 4 : -1);
    }
}

void TstPalletPage::configureAndPointCheckPassTheirModes()
{
    QFETCH(QString, name);
    QFETCH(int, level);
    QFETCH(int, step);
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    PalletFixture::addLocalPallet(QStringLiteral("b"), 2, 2);
    refresh();
    table()->setCurrentCell(1, 0);
    setLevel(level);
    QTest::mouseClick(button(name), Qt::LeftButton);
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    auto *dialog = qobject_cast<PalletSetDialog *>(kx::uniqueObject(QStringLiteral("tpallet.dialog")));
    if (step < 0) {
        QVERIFY(!dialog);
        return;
    }
    QVERIFY(dialog);
    QPointer<PalletSetDialog> guard(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QCOMPARE(dialog->currentStep(), step);
    QCOMPARE(dialog->findChild<QLabel *>(QStringLiteral("lblPallet"))->text(), QStringLiteral("Current Pallet: b"));
    QCOMPARE(dialog->findChild<QPushButton *>(QStringLiteral("btnConfirm"))->isVisibleTo(dialog), step == 4);
    delete guard.data();
}

void TstPalletPage::deleteAsksAndDeclinedSendsNothing()
{
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    PalletFixture::addLocalPallet(QStringLiteral("P2"), 1, 1);
    refresh();
    table()->setCurrentCell(1, 0);
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->queueMsgAnswer(false);

    QTest::mouseClick(button(QStringLiteral("btnDel")), Qt::LeftButton);

    const auto boxes = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.at(0).kind, QStringLiteral("q"));
    QCOMPARE(boxes.at(0).text, QStringLiteral("Are you sure to delete P2"));
    QCOMPARE(boxes.at(0).button, QStringLiteral("_"));
    QVERIFY(m_fx.palletMethods().isEmpty());
    QCOMPARE(tpallet::palletsNode()->size(), 2);
    QCOMPARE(table()->rowCount(), 2);
}

void TstPalletPage::deleteWithZeroReplyRemovesRow()
{
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    PalletFixture::addLocalPallet(QStringLiteral("P2"), 2, 2);
    PalletFixture::addLocalPallet(QStringLiteral("c"), 3, 3);
    refresh();
    table()->setCurrentCell(1, 0);
    m_fx.transport()->clearRequests();
    m_fx.transport()->queueReply(QStringLiteral("tray.del_one"), 0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);

    QTest::mouseClick(button(QStringLiteral("btnDel")), Qt::LeftButton);

    QCOMPARE(m_fx.palletMethods(), QStringList{"tray.del_one"});
    const auto sent = m_fx.requestsOf(QStringLiteral("tray.del_one"));
    QCOMPARE(sent.at(0).op, QStringLiteral("exec"));
    QCOMPARE(sent.at(0).paramsJson, QByteArray("{\"index\":1,\"name\":\"P2\"}"));
    orba::ModuleObject *pallets = tpallet::palletsNode();
    QCOMPARE(pallets->size(), 2);
    QCOMPARE(pallets->c(1)->c(QStringLiteral("name"), false)->getString(), QStringLiteral("c"));
    // Still an array: elements are "#0", "#1".
    QCOMPARE(pallets->cmobjNames(), (QStringList{"#0", "#1"}));
    QCOMPARE(pallets->r(QStringLiteral("#1")), pallets->c(1));
    QCOMPARE(table()->rowCount(), 2);
    QCOMPARE(table()->item(1, 0)->text(), QStringLiteral("c"));
}

void TstPalletPage::deleteWithNonZeroReplyKeepsBothSides_data()
{
    QTest::addColumn<int>("status");
    QTest::newRow("refused") << -1;
    QTest::newRow("positive") << 3;
}

void TstPalletPage::deleteWithNonZeroReplyKeepsBothSides()
{
    QFETCH(int, status);
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    refresh();
    table()->setCurrentCell(0, 0);
    m_fx.transport()->queueReply(QStringLiteral("tray.del_one"), status);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    tcore::ManagerHelper::instance()->clearMsgHistory();

    QTest::mouseClick(button(QStringLiteral("btnDel")), Qt::LeftButton);

    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.del_one")).size(), 1);
    QCOMPARE(tpallet::palletsNode()->size(), 1);
    QCOMPARE(table()->rowCount(), 1);
    // Silently: only the question was shown.
    QCOMPARE(tcore::ManagerHelper::instance()->msgHistory().size(), 1);
}

void TstPalletPage::addOpensNewPalletDialog()
{
    m_fx.connectController();
    QTest::mouseClick(button(QStringLiteral("btnAdd")), Qt::LeftButton);
    auto *dialog = qobject_cast<NewPalletDialog *>(kx::uniqueObject(QStringLiteral("tpallet.dialog")));
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
    delete dialog;
}

void TstPalletPage::importAndExportOpenTheExchangeDialog_data()
{
    QTest::addColumn<QString>("buttonName");
    QTest::addColumn<bool>("import");
    QTest::newRow("import") << "btnImport" << true;
    QTest::newRow("export") << "btnExport" << false;
}

void TstPalletPage::importAndExportOpenTheExchangeDialog()
{
    QFETCH(QString, buttonName);
    QFETCH(bool, import);
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    QTest::mouseClick(button(buttonName), Qt::LeftButton);
    QPointer<ImExportDialog> dialog = qobject_cast<ImExportDialog *>(kx::uniqueObject(QStringLiteral("tpallet.dialog")));
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QVERIFY(!dialog->isModal());
    QCOMPARE(dialog->isImport(), import);
    QCOMPARE(dialog->findChild<QTableWidget *>(QStringLiteral("tableWidget"))->rowCount(), import ? 0 : 1);
    delete dialog.data();
}

void TstPalletPage::acceptedImportRebuildsTable()
{
    m_fx.connectController();
    QTest::mouseClick(button(QStringLiteral("btnImport")), Qt::LeftButton);
    QPointer<ImExportDialog> dialog = qobject_cast<ImExportDialog *>(kx::uniqueObject(QStringLiteral("tpallet.dialog")));
    QVERIFY(dialog);
    // A pallet arrives without a refresh of its own; accepting the import rebuilds the table.
    PalletFixture::addLocalPallet(QStringLiteral("imported"), 2, 2);
    QCOMPARE(table()->rowCount(), 0);
    dialog->accept();
    QCOMPARE(table()->rowCount(), 1);
    QCOMPARE(table()->item(0, 0)->text(), QStringLiteral("imported"));
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
}

void TstPalletPage::editOpensDialogForSelectedPallet()
{
    m_fx.connectController();
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    orba::ModuleObject *b = PalletFixture::addLocalPallet(QStringLiteral("b"), 1, 1);
    refresh();
    table()->setCurrentCell(1, 0);
    QTest::mouseClick(button(QStringLiteral("btnEdit")), Qt::LeftButton);
    QPointer<NewPalletDialog> dialog = qobject_cast<NewPalletDialog *>(kx::uniqueObject(QStringLiteral("tpallet.dialog")));
    QVERIFY(dialog);
    QVERIFY(dialog->isVisible());
    QCOMPARE(dialog->findChild<QLineEdit *>(QStringLiteral("edtName"))->text(), QStringLiteral("b"));
    // Bound to its pallet: removing the pallet closes it.
    tpallet::palletsNode()->remove(nullptr, b);
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
}

void TstPalletPage::pageStaysUsableAfterFailedLoad()
{
    m_fx.setCapabilities(kFullProtocol);
    m_fx.transport()->setReply(QStringLiteral("tray.query.list"), 0, "[{\"index\":0},{\"index\":1}]");
    m_fx.transport()->setReply(QStringLiteral("tray.query.one"), -5);
    m_fx.connectController();
    // Both positions are there, empty: the failed replies bring nothing into them.
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.query.one")).size(), 2);
    QCOMPARE(tpallet::palletsNode()->size(), 2);
    QCOMPARE(tpallet::palletsNode()->c(0)->cmobjCount(), 0);
    QCOMPARE(tpallet::palletsNode()->c(1)->cmobjCount(), 0);
    QCOMPARE(table()->rowCount(), 2);
    for (int r = 0; r < 2; ++r) {
        QCOMPARE(table()->item(r, 0)->text(), QString());
        QCOMPARE(table()->item(r, 1)->text(), QStringLiteral("0"));
    }
    QCOMPARE(enabledButtons(page()), kButtons);
    QVERIFY(!m_fx.module()->page()->progressDialog()->isVisible());

    // The next connection with a working controller replaces the empty rows.
    m_fx.disconnectController();
    m_fx.transport()->setReply(QStringLiteral("tray.query.one"), 0, PalletFixture::palletJson(QStringLiteral("back"), 2, 3, 0));
    m_fx.connectController();
    QCOMPARE(table()->rowCount(), 2);
    QCOMPARE(table()->item(1, 0)->text(), QStringLiteral("back"));
    QCOMPARE(table()->item(1, 1)->text(), QStringLiteral("6"));
}

void TstPalletPage::textsFollowHostLanguage_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QString>("add");
    QTest::addColumn<QString>("header");
    QTest::addColumn<QString>("warning");
    QTest::newRow("chinese") << "cn" << QString::fromUtf8("添加") << QString::fromUtf8("名称") << QString::fromUtf8("请选择一个托盘！");
    QTest::newRow("japanese") << "jp" << QString::fromUtf8("追加") << QString::fromUtf8("名前") << QString::fromUtf8("パレットを選択してください！");
    QTest::newRow("korean") << "kr" << QString::fromUtf8("추가") << QString::fromUtf8("이름") << QString::fromUtf8("팔레트를 선택하십시오!");
    QTest::newRow("russian") << "ru" << QString::fromUtf8("Добавить") << QString::fromUtf8("Имя") << QString::fromUtf8("Выберите паллету!");
}

void TstPalletPage::textsFollowHostLanguage()
{
    QFETCH(QString, language);
    QFETCH(QString, add);
    QFETCH(QString, header);
    QFETCH(QString, warning);
    m_fx.connectController();
    tcore::SettingManager::setStr(QStringLiteral("language"), language);
    QCoreApplication::processEvents();
    const QString shownAdd = button(QStringLiteral("btnAdd"))->text();
    const QString shownHeader = table()->horizontalHeaderItem(0)->text();
    QTest::mouseClick(button(QStringLiteral("btnEdit")), Qt::LeftButton);
    const QString shownWarning = tcore::ManagerHelper::instance()->msgHistory().value(0).text;
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
    QCoreApplication::processEvents();
    QCOMPARE(shownAdd, add);
    QCOMPARE(shownHeader, header);
    QCOMPARE(shownWarning, warning);
    QCOMPARE(button(QStringLiteral("btnAdd"))->text(), QStringLiteral("Add"));
}

QTEST_MAIN(TstPalletPage)
#include "tst_palletpage.moc"
