#include "e2eshell.h"
#include "simcell.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>
#include <tcore/widgets.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFileInfo>
#include <QDoubleSpinBox>
#include <QFileSystemModel>
#include <QListView>
#include <QProcess>
#include <QStackedWidget>
#include <QTimer>

#include <memory>

// An operator's whole configuration of a pallet on the running pendant, through the widgets:
// add, configure every step on the simulated robot, check, adjust, export, delete, import, and
// restart everything. With TPALLET_WALKTHROUGH_SHOTS set to a folder, it also saves the
// pictures of the operator's guide there.
namespace {

constexpr double kGripper = 0.2; // the project tool "gripper": 200 mm along the flange's z axis
constexpr double kPlaceHeight = 0.08;
constexpr double kApproachHeight = 0.18;
constexpr double kRetractSide = 0.03;
constexpr int kRows = 4;
constexpr int kCols = 5;

void shot(QWidget *widget, const QString &name)
{
    const QString dir = qEnvironmentVariable("TPALLET_WALKTHROUGH_SHOTS");
    if (dir.isEmpty() || !widget)
        return;
    QCoreApplication::processEvents();
    QDir().mkpath(dir);
    widget->grab().save(QDir(dir).filePath(name + QStringLiteral(".png")));
}

template<typename T>
T *child(QWidget *parent, const QString &name)
{
    T *found = parent ? parent->findChild<T *>(name) : nullptr;
    if (!found)
        qFatal("widget %s missing", qPrintable(name));
    return found;
}

void click(QWidget *parent, const QString &name)
{
    QTest::mouseClick(child<QPushButton>(parent, name), Qt::LeftButton);
}

// Answers the module's file dialog, when it opens, as the operator does: into the folder that
// holds `path`, a tap on `path`, "Ok".
void chooseInFileDialog(const QString &path)
{
    auto *timer = new QTimer(qApp);
    timer->setInterval(20);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, path] {
        QDialog *d = openDialog(QStringLiteral("tFileDialog"));
        if (!d)
            return;
        auto *view = d->findChild<QListView *>(QStringLiteral("listView"));
        auto *model = view ? qobject_cast<QFileSystemModel *>(view->model()) : nullptr;
        if (!model)
            return;
        const QString folder = QFileInfo(path).absolutePath();
        const QString shown = model->filePath(view->rootIndex());
        if (QFileInfo(path).isFile() && shown != folder) {
            if (model->index(folder).isValid() && model->rowCount(view->rootIndex()) > 0)
                emit view->doubleClicked(model->index(folder));
            return;
        }
        const QModelIndex index = model->index(path);
        if (!index.isValid() || !view->visualRect(index).isValid())
            return;
        timer->stop();
        timer->deleteLater();
        shot(d, QStringLiteral("10-file-dialog"));
        QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, view->visualRect(index).center());
        QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("btnOk")), Qt::LeftButton);
    });
    timer->start();
}

orba::MobjPtr storedPallet(int index)
{
    auto param = std::make_unique<orba::ModuleObject>(QStringLiteral("param"));
    param->setValue(nullptr, index);
    if (tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), param.get()) != 0)
        return nullptr;
    orba::MobjPtr data(param->take(nullptr, param->c(QStringLiteral("data"))));
    return data;
}

} // namespace

class TestE2eWalkthrough : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void configureCheckExchange_data();
    void configureCheckExchange();

private:
    ShellOptions options(bool overTcp) const;
    void configure(Shell &shell);
    void pointCheckAndAdjust(Shell &shell);
    void exportDeleteImport(Shell &shell);
    void checkPlaces(const orba::ModuleObject *pallet);
    bool putRobotAt(const Eigen::Vector3d &position) { return putSimRobotAt(m_cell.toolAt(position), kGripper, &m_joints); }

    std::unique_ptr<QTemporaryDir> m_data;
    QString m_usb;
    quint16 m_rcPort = 0;
    SimCellPallet m_cell;
    rc::Joints m_joints = rc::Joints::Zero();
    QByteArray m_exported;
};

void TestE2eWalkthrough::init()
{
    resetHost();
    m_data = std::make_unique<QTemporaryDir>();
    QVERIFY(m_data->isValid());
    m_usb = m_data->filePath(QStringLiteral("usb"));
    QVERIFY(QDir().mkpath(m_usb + QStringLiteral("/backup")));
    m_joints = rc::RobotModel::defaultArm().home;
}

void TestE2eWalkthrough::cleanup()
{
    m_data.reset();
}

ShellOptions TestE2eWalkthrough::options(bool overTcp) const
{
    ShellOptions o;
    o.modulesDir = QStringLiteral(TPALLET_MODULE_DIR);
    o.dataDir = m_data->filePath(QStringLiteral("controller"));
    o.level = 3;
    o.page = QStringLiteral("tpallet.page");
    o.usbDir = m_usb;
    if (overTcp) {
        o.rcHost = QStringLiteral("127.0.0.1");
        o.rcPort = m_rcPort;
    }
    return o;
}

// Pattern, tool, calibration, way points and the check, as an operator does them.
void TestE2eWalkthrough::configure(Shell &shell)
{
    QTableWidget *table = palletTable(shell);
    table->setCurrentCell(0, 0);
    shot(shell.window(), QStringLiteral("01-tray"));
    click(shell.window(), QStringLiteral("btnCfg"));
    QDialog *dialog = nullptr;
    QTRY_VERIFY((dialog = openDialog(QStringLiteral("PalletSetDialog"))) != nullptr);

    // Pattern: serpentine, vertical, origin at corner 2.
    click(dialog, QStringLiteral("btnSType"));
    click(dialog, QStringLiteral("btnRankV"));
    click(dialog, QStringLiteral("btnOrigin2"));
    shot(dialog, QStringLiteral("02-pattern"));
    click(dialog, QStringLiteral("btnNext"));

    // Tool: the project's robot-held gripper.
    auto *tools = child<QComboBox>(dialog, QStringLiteral("cmbTool"));
    QTRY_VERIFY(tools->findText(QStringLiteral("gripper")) >= 0);
    tools->setCurrentIndex(tools->findText(QStringLiteral("gripper")));
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    click(dialog, QStringLiteral("btnImport"));
    QCOMPARE(child<QDoubleSpinBox>(dialog, QStringLiteral("dspnZ"))->value(), 200.0);
    shot(dialog, QStringLiteral("03-tool"));
    click(dialog, QStringLiteral("btnNext"));

    // Calibration: the robot on each corner of the pallet, "Accquire", then "Calibrate".
    for (int i = 0; i < 4; ++i) {
        QVERIFY(putRobotAt(m_cell.corner(i)));
        click(dialog, QStringLiteral("btnAccquireP%1").arg(i + 1));
    }
    tcore::ManagerHelper::instance()->clearMsgHistory();
    click(dialog, QStringLiteral("btnCalibrate"));
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    shot(dialog, QStringLiteral("04-calibrate"));
    click(dialog, QStringLiteral("btnNext"));

    // Way points over the first place.
    QVERIFY(putRobotAt(m_cell.p1 + kApproachHeight * m_cell.n));
    click(dialog, QStringLiteral("btnAccquireApproach"));
    QVERIFY(putRobotAt(m_cell.p1 + kPlaceHeight * m_cell.n));
    click(dialog, QStringLiteral("btnAccquireWobj"));
    QVERIFY(putRobotAt(m_cell.p1 + kApproachHeight * m_cell.n - kRetractSide * m_cell.y));
    click(dialog, QStringLiteral("btnAccquireRetract"));
    shot(dialog, QStringLiteral("05-waypoints"));
    click(dialog, QStringLiteral("btnNext"));

    // The check of every path passes.
    tcore::ManagerHelper::instance()->clearMsgHistory();
    click(dialog, QStringLiteral("btnCheck"));
    QTRY_VERIFY(!tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    const auto report = tcore::ManagerHelper::instance()->msgHistory().last();
    QCOMPARE(report.kind, QStringLiteral("info"));
    QCOMPARE(report.text, QStringLiteral("Check is passed!"));
    shot(dialog, QStringLiteral("06-check"));
    QPointer<QDialog> guard(dialog);
    click(dialog, QStringLiteral("btnNext"));
    QTRY_VERIFY(!guard || !guard->isVisible());
}

// "Point Check" again: one place is retouched and stored; the robot is driven to it.
void TestE2eWalkthrough::pointCheckAndAdjust(Shell &shell)
{
    palletTable(shell)->setCurrentCell(0, 0);
    click(shell.window(), QStringLiteral("btnPointCheck"));
    QDialog *dialog = nullptr;
    QTRY_VERIFY((dialog = openDialog(QStringLiteral("PalletSetDialog"))) != nullptr);
    QVERIFY(child<QPushButton>(dialog, QStringLiteral("btnConfirm"))->isVisible());
    auto *index = child<QComboBox>(dialog, QStringLiteral("cmbPoint"));
    QCOMPARE(index->count(), kRows * kCols);
    click(dialog, QStringLiteral("btnAddIndex"));
    click(dialog, QStringLiteral("btnAddIndex"));
    QCOMPARE(index->currentIndex(), 2);
    auto *z = child<QDoubleSpinBox>(dialog, QStringLiteral("dspnZ_2"));
    const double before = z->value();
    z->setValue(before + 5.0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    click(dialog, QStringLiteral("btnSaveWobj"));
    QCOMPARE(tcore::ManagerHelper::instance()->msgHistory().last().text, QStringLiteral("Are you sure to adjust Wobj Point 3?"));

    // The move-to dialog on what is shown; its monitor page after "Confirm".
    click(dialog, QStringLiteral("btnMoveToWobj"));
    QDialog *move = nullptr;
    QTRY_VERIFY((move = openDialog(QStringLiteral("MoveToDialog"))) != nullptr);
    shot(move, QStringLiteral("07-move-to"));
    click(move, QStringLiteral("btnConfirm"));
    QCOMPARE(child<QStackedWidget>(move, QStringLiteral("stackedWidget"))->currentWidget()->objectName(),
             QStringLiteral("pgMonitor"));
    auto *hold = child<TouchButton>(move, QStringLiteral("btnMove"));
    QTest::mousePress(hold, Qt::LeftButton);
    QCoreApplication::processEvents();
    const orba::ModuleObject *target = orba::m(QStringLiteral("tpallet.pallets.#0.points.#2.wobj.trans"));
    const Eigen::Vector3d goal = vectorOf(target);
    QTRY_VERIFY_WITH_TIMEOUT((vectorOf(tservice()->get(nullptr, QStringLiteral("sys.posture"))->r(QStringLiteral("trans"))) - goal).norm() < 1e-6,
                             15000);
    shot(move, QStringLiteral("08-move-monitor"));
    QTest::mouseRelease(hold, Qt::LeftButton);
    QPointer<QDialog> moveGuard(move);
    click(move, QStringLiteral("btnClose"));
    QTRY_VERIFY(!moveGuard || !moveGuard->isVisible());

    shot(dialog, QStringLiteral("09-point-check"));
    QPointer<QDialog> guard(dialog);
    click(dialog, QStringLiteral("btnConfirm"));
    QTRY_VERIFY(!guard || !guard->isVisible());

    orba::MobjPtr stored = storedPallet(0);
    QVERIFY(stored);
    QCOMPARE(stored->r(QStringLiteral("points.#2.wobj.trans.#2"))->getDouble(), (before + 5.0) / 1000.0);
}

// Export to the stand-in USB disk, delete, import back.
void TestE2eWalkthrough::exportDeleteImport(Shell &shell)
{
    orba::MobjPtr before = storedPallet(0);
    QVERIFY(before);
    m_exported = before->exportToJson(true);

    click(shell.window(), QStringLiteral("btnExport"));
    QDialog *exporter = nullptr;
    QTRY_VERIFY((exporter = openDialog(QStringLiteral("ImExportDialog"))) != nullptr);
    chooseInFileDialog(m_usb + QStringLiteral("/backup"));
    click(exporter, QStringLiteral("btnOpen"));
    QTRY_VERIFY(!child<QLineEdit>(exporter, QStringLiteral("edtPath"))->text().isEmpty());
    auto *all = child<QCheckBox>(exporter, QStringLiteral("chbSelectAll"));
    if (!all->isChecked())
        QTest::mouseClick(all, Qt::LeftButton);
    QPointer<QDialog> exportGuard(exporter);
    click(exporter, QStringLiteral("btnOk"));
    QTRY_VERIFY(!exportGuard || !exportGuard->isVisible());
    const QString file = m_usb + QStringLiteral("/backup/tray.xml");
    QTRY_VERIFY(QFile::exists(file));

    palletTable(shell)->setCurrentCell(0, 0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    click(shell.window(), QStringLiteral("btnDel"));
    QTRY_COMPARE(palletTable(shell)->rowCount(), 0);
    QCOMPARE(tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"))->r(QStringLiteral("data"))->cmobjCount(), 0);

    click(shell.window(), QStringLiteral("btnImport"));
    QDialog *importer = nullptr;
    QTRY_VERIFY((importer = openDialog(QStringLiteral("ImExportDialog"))) != nullptr);
    chooseInFileDialog(file);
    click(importer, QStringLiteral("btnOpen"));
    auto *rows = child<QTableWidget>(importer, QStringLiteral("tableWidget"));
    QTRY_COMPARE(rows->rowCount(), 1);
    shot(importer, QStringLiteral("11-import"));
    QPointer<QDialog> importGuard(importer);
    click(importer, QStringLiteral("btnOk"));
    QTRY_VERIFY(!importGuard || !importGuard->isVisible());
    QTRY_COMPARE(palletTable(shell)->rowCount(), 1);
}

// Every stored place is on the pallet in the cell: the places of a 4 x 5 grid over its corners,
// each once, at the taught height; approach and retract above it.
void TestE2eWalkthrough::checkPlaces(const orba::ModuleObject *pallet)
{
    const orba::ModuleObject *ref = pallet->r(QStringLiteral("calibrate.toolset.ref"));
    const Eigen::Matrix3d frame = eulerRotation(ref->r(QStringLiteral("rot.#0"))->getDouble(), ref->r(QStringLiteral("rot.#1"))->getDouble(),
                                                ref->r(QStringLiteral("rot.#2"))->getDouble());
    const Eigen::Vector3d origin = vectorOf(ref->r(QStringLiteral("trans")));
    const orba::ModuleObject *points = pallet->r(QStringLiteral("points"));
    QCOMPARE(points->cmobjCount(), kRows * kCols);
    // Origin at corner 2 is an even corner: rows run along P1->P2, columns along P1->P3.
    QVector<bool> used(kRows * kCols, false);
    for (int k = 0; k < points->cmobjCount(); ++k) {
        const Eigen::Vector3d wobj = frame * vectorOf(points->c(k)->r(QStringLiteral("wobj.trans"))) + origin;
        int match = -1;
        double best = 1.0;
        for (int i = 0; i < kRows; ++i) {
            for (int j = 0; j < kCols; ++j) {
                const double d = (wobj - (m_cell.grid(double(i) / (kRows - 1), double(j) / (kCols - 1)) + kPlaceHeight * m_cell.n)).norm();
                if (d < best) {
                    best = d;
                    match = i * kCols + j;
                }
            }
        }
        // Place 3 was raised by 5 mm on purpose.
        const double allowed = k == 2 ? 0.005 + 1e-6 : 1e-6;
        QVERIFY2(best < allowed, qPrintable(QStringLiteral("place %1 is %2 m off").arg(k).arg(best)));
        QVERIFY2(!used[match], qPrintable(QStringLiteral("place %1 repeats another").arg(k)));
        used[match] = true;
    }
    QVERIFY(((frame * vectorOf(points->r(QStringLiteral("#0.wobj.trans"))) + origin) - (m_cell.p1 + kPlaceHeight * m_cell.n)).norm() < 1e-6);
}

void TestE2eWalkthrough::configureCheckExchange_data()
{
    QTest::addColumn<bool>("overTcp");
    QTest::newRow("embedded controller") << false;
    QTest::newRow("rcsim over TCP") << true;
}

void TestE2eWalkthrough::configureCheckExchange()
{
    QFETCH(bool, overTcp);
    QProcess rcsim;
    const QString rcData = m_data->filePath(QStringLiteral("rcsim"));
    if (overTcp) {
        m_rcPort = startRcsim(&rcsim, rcData);
        QVERIFY(m_rcPort != 0);
    }
    {
        Shell shell(options(overTcp));
        QVERIFY(startShell(shell));
        orba::ModuleObject on(QStringLiteral("on"));
        on.setValue(nullptr, true);
        QCOMPARE(tservice()->execCommand(nullptr, QStringLiteral("sim.power"), &on)->getInt(-1), 0);
        addPalletThroughDialog(shell, QStringLiteral("walk"), kRows, kCols);
        QTRY_COMPARE(palletTable(shell)->rowCount(), 1);
        configure(shell);
        pointCheckAndAdjust(shell);
        exportDeleteImport(shell);
    }
    if (overTcp) {
        rcsim.kill();
        rcsim.waitForFinished(5000);
        m_rcPort = startRcsim(&rcsim, rcData);
        QVERIFY(m_rcPort != 0);
    }
    // A new pendant (and with it a new embedded controller) on the same data.
    Shell shell(options(overTcp));
    QVERIFY(startShell(shell));
    QTRY_COMPARE(palletTable(shell)->rowCount(), 1);
    shot(shell.window(), QStringLiteral("12-tray-after-restart"));
    orba::MobjPtr stored = storedPallet(0);
    QVERIFY(stored);
    orba::ModuleObject exported;
    QVERIFY(exported.importFromJson(nullptr, m_exported));
    // equals() compares names, order, types and doubles bit for bit.
    QVERIFY(stored->equals(&exported));
    checkPlaces(stored.get());
    if (overTcp) {
        rcsim.kill();
        rcsim.waitForFinished(5000);
    }
}

QTEST_MAIN(TestE2eWalkthrough)
#include "tst_e2e_walkthrough.moc"
