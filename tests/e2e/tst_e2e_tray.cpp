#include "e2eshell.h"

#include <orba/moduleobject.h>
#include <orbat/tservice.h>

#include <QApplication>
#include <QDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QTableWidget>
#include <QtTest>

#include <cmath>
#include <memory>

class TestE2eTray : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void addedPalletSurvivesRestartOfPendantAndController();
    void addedPalletSurvivesRcsimRestart();
    void editRenamesAndResizes();
    void deleteAsksAndRemovesFromController();
    void configurePatternStoresNewOrder();
    void configurePatternStoresNewOrderOverTcp();

private:
    ShellOptions options() const;
    QTableWidget *table(Shell &shell) const { return palletTable(shell); }
    void addPallet(Shell &shell, const QString &name, int rows, int cols) { addPalletThroughDialog(shell, name, rows, cols); }
    void configurePattern(Shell &shell);
    std::unique_ptr<QTemporaryDir> m_data;
};

void TestE2eTray::init()
{
    resetHost();
    m_data = std::make_unique<QTemporaryDir>();
    QVERIFY(m_data->isValid());
}

void TestE2eTray::cleanup()
{
    m_data.reset();
}

ShellOptions TestE2eTray::options() const
{
    ShellOptions o;
    o.modulesDir = QStringLiteral(TPALLET_MODULE_DIR);
    o.dataDir = m_data->filePath(QStringLiteral("controller"));
    o.level = 3;
    o.page = QStringLiteral("tpallet.page");
    return o;
}

void TestE2eTray::addedPalletSurvivesRestartOfPendantAndController()
{
    {
        Shell shell(options());
        QVERIFY(startShell(shell));
        QTableWidget *t = table(shell);
        QCOMPARE(t->rowCount(), 0);

        addPallet(shell, QStringLiteral("e2e_a"), 3, 4);
        QTRY_COMPARE(t->rowCount(), 1);
        QCOMPARE(t->item(0, 0)->text(), QStringLiteral("e2e_a"));
        QCOMPARE(t->item(0, 1)->text(), QStringLiteral("12"));

        // The controller holds the whole pallet, its twelve places included.
        orba::ModuleObject param(QStringLiteral("param"));
        param.setValue(nullptr, 0);
        QCOMPARE(tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param), 0);
        QCOMPARE(param.r(QStringLiteral("data.name"))->getString(), QStringLiteral("e2e_a"));
        QCOMPARE(param.r(QStringLiteral("data.points"))->size(), 12);
        QCOMPARE(param.r(QStringLiteral("data.pattern.row"))->getInt(), 3);
    }
    // A new pendant, and with it a new embedded controller, on the same data.
    Shell shell(options());
    QVERIFY(startShell(shell));
    QTableWidget *t = table(shell);
    QTRY_COMPARE(t->rowCount(), 1);
    QCOMPARE(t->item(0, 0)->text(), QStringLiteral("e2e_a"));
    QCOMPARE(t->item(0, 1)->text(), QStringLiteral("12"));
    QCOMPARE(orba::m(QStringLiteral("tpallet.pallets.#0.points"))->size(), 12);
}

void TestE2eTray::addedPalletSurvivesRcsimRestart()
{
    const QString rcData = m_data->filePath(QStringLiteral("rcsim"));
    QProcess rcsim;
    quint16 port = startRcsim(&rcsim, rcData);
    QVERIFY2(port != 0, rcsim.readAllStandardError().constData());
    {
        ShellOptions o = options();
        o.rcHost = QStringLiteral("127.0.0.1");
        o.rcPort = port;
        Shell shell(o);
        QVERIFY(startShell(shell));
        addPallet(shell, QStringLiteral("tcp_a"), 2, 2);
        QTRY_COMPARE(table(shell)->rowCount(), 1);
    }
    rcsim.kill();
    rcsim.waitForFinished(5000);

    QProcess again;
    port = startRcsim(&again, rcData);
    QVERIFY(port != 0);
    ShellOptions o = options();
    o.rcHost = QStringLiteral("127.0.0.1");
    o.rcPort = port;
    {
        Shell shell(o);
        QVERIFY(startShell(shell));
        QTableWidget *t = table(shell);
        QTRY_COMPARE(t->rowCount(), 1);
        QCOMPARE(t->item(0, 0)->text(), QStringLiteral("tcp_a"));
        QCOMPARE(t->item(0, 1)->text(), QStringLiteral("4"));
    }
    again.kill();
    again.waitForFinished(5000);
}

void TestE2eTray::editRenamesAndResizes()
{
    Shell shell(options());
    QVERIFY(startShell(shell));
    addPallet(shell, QStringLiteral("before"), 2, 2);
    QTableWidget *t = table(shell);
    QTRY_COMPARE(t->rowCount(), 1);

    t->selectRow(0);
    t->setCurrentCell(0, 0);
    QTest::mouseClick(shell.window()->findChild<QPushButton *>(QStringLiteral("btnEdit")), Qt::LeftButton);
    QDialog *dialog = nullptr;
    QTRY_VERIFY((dialog = openDialog(QStringLiteral("NewPalletDialog"))) != nullptr);
    auto *edtName = dialog->findChild<QLineEdit *>(QStringLiteral("edtName"));
    QCOMPARE(edtName->text(), QStringLiteral("before"));
    edtName->clear();
    QTest::keyClicks(edtName, QStringLiteral("after"));
    dialog->findChild<QSpinBox *>(QStringLiteral("spnRow"))->setValue(5);
    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnOk")), Qt::LeftButton);

    QTRY_COMPARE(t->item(0, 0)->text(), QStringLiteral("after"));
    QCOMPARE(t->item(0, 1)->text(), QStringLiteral("10"));

    orba::ModuleObject param(QStringLiteral("param"));
    param.setValue(nullptr, 0);
    QCOMPARE(tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param), 0);
    QCOMPARE(param.r(QStringLiteral("data.name"))->getString(), QStringLiteral("after"));
    QCOMPARE(param.r(QStringLiteral("data.points"))->size(), 10);
}

void TestE2eTray::deleteAsksAndRemovesFromController()
{
    Shell shell(options());
    QVERIFY(startShell(shell));
    addPallet(shell, QStringLiteral("doomed"), 1, 1);
    addPallet(shell, QStringLiteral("kept"), 1, 2);
    QTableWidget *t = table(shell);
    QTRY_COMPARE(t->rowCount(), 2);

    t->setCurrentCell(0, 0);
    tcore::ManagerHelper::instance()->clearMsgHistory();
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    QTest::mouseClick(shell.window()->findChild<QPushButton *>(QStringLiteral("btnDel")), Qt::LeftButton);
    QTRY_COMPARE(t->rowCount(), 1);
    const auto asked = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first().kind, QStringLiteral("q"));
    QVERIFY(asked.first().text.contains(QStringLiteral("doomed")));
    QCOMPARE(t->item(0, 0)->text(), QStringLiteral("kept"));

    orba::MobjPtr list = tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"));
    QCOMPARE(list->getInt(-1), 0);
    QCOMPARE(list->r(QStringLiteral("data"))->size(), 1);
    QCOMPARE(list->r(QStringLiteral("data.#0.name"))->getString(), QStringLiteral("kept"));
}

// Configure opens on the pattern step with the pallet's picture; choosing origin, order and
// ranking changes picture and corner captions; "Next Step" stores the places in the new order.
void TestE2eTray::configurePattern(Shell &shell)
{
    addPallet(shell, QStringLiteral("pattern"), 3, 4);
    QTableWidget *t = table(shell);
    QTRY_COMPARE(t->rowCount(), 1);
    // As a calibration would have left it: a 400 x 300 mm pallet.
    orba::m(QStringLiteral("tpallet.pallets.#0"))->set(nullptr, QStringLiteral("calibrate.x_span"), 0.4, true);
    orba::m(QStringLiteral("tpallet.pallets.#0"))->set(nullptr, QStringLiteral("calibrate.y_span"), 0.3, true);

    t->setCurrentCell(0, 0);
    QTest::mouseClick(shell.window()->findChild<QPushButton *>(QStringLiteral("btnCfg")), Qt::LeftButton);
    QDialog *dialog = nullptr;
    QTRY_VERIFY((dialog = openDialog(QStringLiteral("PalletSetDialog"))) != nullptr);
    QWidget *pattern = dialog->findChild<QWidget *>(QStringLiteral("wgtPattern"));
    QVERIFY(pattern);
    QCOMPARE(dialog->findChild<QLabel *>(QStringLiteral("lblTitle0"))->styleSheet(),
             QStringLiteral("font: 75 10pt; color: rgb(0, 124, 249)"));
    QCOMPARE(pattern->property("image").toString(), QStringLiteral(":/tpallet/images/pallet/p_h_0.png"));
    QVERIFY(!QPixmap(pattern->property("image").toString()).isNull());
    auto corner = [pattern](int i) { return pattern->findChild<QPushButton *>(QStringLiteral("btnOrigin%1").arg(i)); };
    QCOMPARE(corner(0)->text(), QStringLiteral("1"));
    QCOMPARE(corner(1)->text(), QStringLiteral("4"));
    QCOMPARE(corner(2)->text(), QStringLiteral("12"));
    QCOMPARE(corner(3)->text(), QStringLiteral("9"));

    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnSType")), Qt::LeftButton);
    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnRankV")), Qt::LeftButton);
    QTest::mouseClick(corner(2), Qt::LeftButton);
    QCOMPARE(pattern->property("image").toString(), QStringLiteral(":/tpallet/images/pallet/s_v_2.png"));
    QCOMPARE(corner(2)->text(), QStringLiteral("1"));
    QCOMPARE(corner(1)->text(), QStringLiteral("3"));
    QCOMPARE(corner(3)->text(), QStringLiteral("10"));
    QCOMPARE(corner(0)->text(), QStringLiteral("12"));

    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnNext")), Qt::LeftButton);
    QTRY_COMPARE(dialog->findChild<QLabel *>(QStringLiteral("lblTitle1"))->styleSheet(),
                 QStringLiteral("font: 75 10pt; color: rgb(0, 124, 249)"));

    orba::ModuleObject param(QStringLiteral("param"));
    param.setValue(nullptr, 0);
    QCOMPARE(tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param), 0);
    orba::ModuleObject *stored = param.c(QStringLiteral("data"));
    QCOMPARE(stored->r(QStringLiteral("pattern.origin"))->getInt(), 2);
    QCOMPARE(stored->r(QStringLiteral("pattern.s_type"))->getBool(), true);
    QCOMPARE(stored->r(QStringLiteral("pattern.rank_v"))->getBool(), true);
    QCOMPARE(stored->r(QStringLiteral("points"))->size(), 12);
    // From the bottom-right corner (P1) up the right-hand column towards P2 (the x axis), then
    // back down the next column, one column step (100 mm) along y towards P3.
    const double expected[6][2] = {{0.0, 0.0}, {0.2, 0.0}, {0.4, 0.0}, {0.4, 0.1}, {0.2, 0.1}, {0.0, 0.1}};
    for (int i = 0; i < 6; ++i) {
        orba::ModuleObject *place = stored->r(QStringLiteral("points.#%1.wobj.trans").arg(i));
        QVERIFY2(std::abs(place->c(0)->getDouble() - expected[i][0]) < 1e-12, qPrintable(QString::number(i)));
        QVERIFY2(std::abs(place->c(1)->getDouble() - expected[i][1]) < 1e-12, qPrintable(QString::number(i)));
    }
    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnCancel")), Qt::LeftButton);
    QTRY_VERIFY(!openDialog(QStringLiteral("PalletSetDialog")));
}

void TestE2eTray::configurePatternStoresNewOrder()
{
    Shell shell(options());
    QVERIFY(startShell(shell));
    configurePattern(shell);
}

void TestE2eTray::configurePatternStoresNewOrderOverTcp()
{
    QProcess rcsim;
    const quint16 port = startRcsim(&rcsim, m_data->filePath(QStringLiteral("rcsim")));
    QVERIFY2(port != 0, rcsim.readAllStandardError().constData());
    {
        ShellOptions o = options();
        o.rcHost = QStringLiteral("127.0.0.1");
        o.rcPort = port;
        Shell shell(o);
        QVERIFY(startShell(shell));
        configurePattern(shell);
    }
    rcsim.kill();
    rcsim.waitForFinished(5000);
}

QTEST_MAIN(TestE2eTray)
#include "tst_e2e_tray.moc"
