#include "palletfixture.h"
#include "pendanttestutil.h"

#include "dialogs/imexportdialog.h"
#include "dialogs/tfiledialog.h"
#include "module/pointgen.h"
#include "module/toolset.h"
#include "pages/newpalletdialog.h"

#include <kx/globaluniqueptr.h>
#include <kx/kx.h>

#include <QApplication>
#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileSystemModel>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QTimer>
#include <QScopeGuard>
#include <QtTest>

#include <functional>

namespace {

tFileDialog *openFileDialog()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (auto *d = qobject_cast<tFileDialog *>(w)) {
            if (d->isVisible())
                return d;
        }
    }
    return nullptr;
}

// Owner of the actions still waiting for a dialog: a test that ends leaves none behind.
QObject *pendingActions()
{
    static QObject owner;
    return &owner;
}

void whenFileDialogShows(std::function<void(tFileDialog *)> act)
{
    auto *timer = new QTimer(pendingActions());
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        if (tFileDialog *d = openFileDialog()) {
            timer->stop();
            timer->deleteLater();
            act(d);
        }
    });
    timer->start();
}

// Chooses `path` (a file in open mode, a folder in the directory scheme) in the file dialog.
void choose(tFileDialog *d, const QString &path)
{
    auto *view = d->findChild<QListView *>(QStringLiteral("listView"));
    auto *model = qobject_cast<QFileSystemModel *>(view->model());
    QVERIFY(model);
    QTRY_VERIFY(model->index(path).isValid() && model->rowCount(view->rootIndex()) > 0);
    // A file in a folder: go into the folder first, as the operator does.
    const QString folder = QFileInfo(path).absolutePath();
    if (QFileInfo(path).isFile() && folder != d->rootPath()) {
        emit view->doubleClicked(model->index(folder));
        QTRY_VERIFY(model->rowCount(view->rootIndex()) > 0);
    }
    const QModelIndex index = model->index(path);
    QTest::mouseClick(view->viewport(), Qt::LeftButton, Qt::NoModifier, view->visualRect(index).center());
    QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("btnOk")), Qt::LeftButton);
}

// A pallet with every key the module writes, as the controller keeps it.
QByteArray listJson()
{
    return tpallet::palletsNode()->exportToJson(true);
}

} // namespace

class TestImExportDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formWidgets();
    void exportFillsTableImportWaitsForFile();
    void tableLayout();
    void getNewName_data();
    void getNewName();
    void xmlSuffix_data();
    void xmlSuffix();
    void selectAllTwiceTicksEveryRow();
    void oneDialogAtATimeClosedWithItsList();
    void exportWithNoRowCheckedWritesEmptyList();
    void exportEmptyPathStaysOpen();
    void exportLaysPalletsOverDefault();
    void exportThroughFileDialogRemembersFolder();
    void exportWriteFailureSays();
    void importOffersFileThroughFileDialog();
    void importRenameAfterExistingNames();
    void importReplaceRefusedKeepsBoth();
    void importReplaceAccepted();
    void importDiscardSendsNothing();
    void importWithoutOptionKeepsDuplicate();
    void importCountMismatchIsLogged();
    void importLeavesOutPalletsOfAnotherLayout();
    void badFileChangesNothing_data();
    void badFileChangesNothing();
    void palletDefects_data();
    void palletDefects();
    void checkKeepsNumbersCompact();
    void dialogDeletedDuringImport();
    void listDeletedDuringImport();
    void dialogDeletedDuringExport();
    void roundTripOnSimulator();
    void clashesOnSimulator_data();
    void clashesOnSimulator();

private:
    ImExportDialog *open(bool import);
    QTableWidget *table() { return m_dialog->findChild<QTableWidget *>(QStringLiteral("tableWidget")); }
    QCheckBox *rowBox(int row) { return qobject_cast<QCheckBox *>(table()->cellWidget(row, 0)); }
    QPushButton *button(const char *name) { return m_dialog->findChild<QPushButton *>(QLatin1String(name)); }
    QRadioButton *radio(const char *name) { return m_dialog->findChild<QRadioButton *>(QLatin1String(name)); }
    void useDisk();
    QString writeList(const QString &fileName, const QList<orba::ModuleObject *> &pallets);
    void openImportFile(const QString &path);
    void exportTo(const QString &folder);
    bool cfgLogged(const QString &title) const;
    void answerAddOne();

    PalletFixture m_fx;
    QTemporaryDir *m_dir = nullptr;
    QString m_usb;
    QPointer<ImExportDialog> m_dialog;
};

void TestImExportDialog::init()
{
    m_fx.setUp();
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    m_dir = new QTemporaryDir;
    QVERIFY(m_dir->isValid());
    m_usb = m_dir->path() + QStringLiteral("/usb");
    QVERIFY(QDir().mkpath(m_usb + QStringLiteral("/out")));
    useDisk();
}

void TestImExportDialog::cleanup()
{
    qDeleteAll(pendingActions()->children());
    delete m_dialog.data();
    PalletFixture::flushDeletes();
    qunsetenv("TPALLET_USB_ROOT");
    qunsetenv("TPALLET_USB_PRESENT");
    delete m_dir;
    m_dir = nullptr;
    m_fx.tearDown();
}

void TestImExportDialog::useDisk()
{
    qputenv("TPALLET_USB_ROOT", m_usb.toLocal8Bit());
    qputenv("TPALLET_USB_PRESENT", "1");
}

void TestImExportDialog::answerAddOne()
{
    // The controller's count follows the local list, as a healthy controller's does.
    m_fx.transport()->setHandler([](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method == QLatin1String("tray.add_one"))
            reply.dataJson = QStringLiteral("{\"size\":%1}").arg(tpallet::palletsNode()->cmobjCount()).toUtf8();
        return reply;
    });
}

ImExportDialog *TestImExportDialog::open(bool import)
{
    m_dialog = new ImExportDialog(import, tpallet::palletsNode(), nullptr);
    m_dialog->show();
    return m_dialog;
}

QString TestImExportDialog::writeList(const QString &fileName, const QList<orba::ModuleObject *> &pallets)
{
    orba::ModuleObject list(QStringLiteral("temp_list"));
    for (orba::ModuleObject *pallet : pallets)
        list.append(nullptr, QString())->copyFrom(nullptr, pallet, true, false);
    const QString path = m_usb + QLatin1Char('/') + fileName;
    if (!orba::ModuleManager::writeToXmlFile(path, &list, true, true))
        qWarning("%s", qPrintable(orba::ModuleManager::lastError()));
    return path;
}

void TestImExportDialog::openImportFile(const QString &path)
{
    whenFileDialogShows([path](tFileDialog *d) { choose(d, path); });
    QTest::mouseClick(button("btnOpen"), Qt::LeftButton);
}

void TestImExportDialog::exportTo(const QString &folder)
{
    whenFileDialogShows([folder](tFileDialog *d) { choose(d, folder); });
    QTest::mouseClick(button("btnOpen"), Qt::LeftButton);
}

bool TestImExportDialog::cfgLogged(const QString &title) const
{
    for (const QVariantMap &entry : tcore::ManagerHelper::instance()->logHistory()) {
        if (entry.value(QStringLiteral("title")).toString() == title)
            return true;
    }
    return false;
}

void TestImExportDialog::formWidgets()
{
    open(true);
    QCOMPARE(m_dialog->windowTitle(), QStringLiteral("Import/Export"));
    QCOMPARE(m_dialog->objectName(), QStringLiteral("ImExportDialog"));
    QCOMPARE(m_dialog->findChild<QGroupBox *>(QStringLiteral("groupBox"))->title(), QStringLiteral("Select File"));
    QCOMPARE(m_dialog->findChild<QGroupBox *>(QStringLiteral("gpbOptions"))->title(), QStringLiteral("Import Options"));
    QCOMPARE(m_dialog->findChild<QGroupBox *>(QStringLiteral("groupBox_2"))->title(), QStringLiteral("Select Items"));
    QVERIFY(m_dialog->findChild<QLineEdit *>(QStringLiteral("edtPath")));
    QCOMPARE(button("btnOpen")->text(), QStringLiteral("Open"));
    QCOMPARE(button("btnCancel")->text(), QStringLiteral("Cancel"));
    QCOMPARE(button("btnOk")->text(), QStringLiteral("Ok"));
    QCOMPARE(radio("rbtnRename")->text(), QStringLiteral("Rename"));
    QCOMPARE(radio("rbtnReplace")->text(), QStringLiteral("Replace"));
    QCOMPARE(radio("rbtnDiscard")->text(), QStringLiteral("Discard"));
    QVERIFY(radio("rbtnRename")->isChecked());
    QCOMPARE(m_dialog->findChild<QCheckBox *>(QStringLiteral("chbSelectAll"))->text(), QStringLiteral("Select All"));
    QVERIFY(m_dialog->findChild<QLabel *>(QStringLiteral("lblOptions"))->text().startsWith(
        QStringLiteral("If have duplicate elements in the imported content, choose one of the following.The new")));
    QVERIFY(m_dialog->findChild<QGroupBox *>(QStringLiteral("gpbOptions"))->isVisible());
    for (const char *name : {"btnOpen", "btnCancel", "btnOk"})
        QVERIFY2(button(name)->height() >= 36, name);
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), m_dialog.data());
    QVERIFY(m_dialog->testAttribute(Qt::WA_DeleteOnClose));
    QVERIFY(!m_dialog->isModal());

    QSignalSpy rejected(m_dialog.data(), &QDialog::rejected);
    QTest::mouseClick(button("btnCancel"), Qt::LeftButton);
    QCOMPARE(rejected.count(), 1);
}

void TestImExportDialog::exportFillsTableImportWaitsForFile()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 2, 3, QStringLiteral("first"));
    PalletFixture::addLocalPallet(QStringLiteral("b"), 1, 1);
    open(false);
    QVERIFY(!m_dialog->findChild<QGroupBox *>(QStringLiteral("gpbOptions"))->isVisible());
    QCOMPARE(table()->rowCount(), 2);
    QCOMPARE(table()->item(0, 1)->text(), QStringLiteral("a"));
    QCOMPARE(table()->item(0, 2)->text(), QStringLiteral("first"));
    QCOMPARE(table()->item(1, 2)->text(), QString());
    QVERIFY(rowBox(0)->isChecked() && rowBox(1)->isChecked());
    QVERIFY(m_dialog->findChild<QCheckBox *>(QStringLiteral("chbSelectAll"))->isChecked());

    open(true);
    QCOMPARE(table()->rowCount(), 0);
    QVERIFY(m_dialog->importList());
    QCOMPARE(m_dialog->importList()->name(), QStringLiteral("import"));
    QCOMPARE(m_dialog->importList()->cmobjCount(), 0);
}

void TestImExportDialog::tableLayout()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 2, 3, QStringLiteral("first"));
    open(false);
    QTableWidget *t = table();
    QCOMPARE(t->columnCount(), 3);
    QCOMPARE(t->horizontalHeaderItem(1)->text(), QStringLiteral("Name"));
    QCOMPARE(t->horizontalHeaderItem(2)->text(), QStringLiteral("Description"));
    QCOMPARE(t->horizontalHeader()->sectionResizeMode(0), QHeaderView::Interactive);
    QCOMPARE(t->horizontalHeader()->sectionResizeMode(1), QHeaderView::Interactive);
    QCOMPARE(t->horizontalHeader()->sectionResizeMode(2), QHeaderView::Stretch);
    QCOMPARE(t->verticalHeader()->defaultAlignment(), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(Qt::Alignment(t->item(0, 1)->textAlignment()), Qt::Alignment(Qt::AlignCenter));
    QCOMPARE(Qt::Alignment(t->item(0, 2)->textAlignment()), Qt::Alignment(Qt::AlignCenter));
    QVERIFY(t->rowHeight(0) >= 36);
}

void TestImExportDialog::getNewName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no digits") << "box" << "box1";
    QTest::newRow("one digit") << "box1" << "box2";
    QTest::newRow("leading zero") << "box09" << "box10";
    QTest::newRow("carry into a new digit") << "pallet 99" << "pallet 100";
    QTest::newRow("zero") << "a0" << "a1";
    QTest::newRow("all zeros") << "a000" << "a1";
    QTest::newRow("digits inside stay") << "a1b" << "a1b1";
    QTest::newRow("only digits") << "9" << "10";
    QTest::newRow("longer than any integer") << "t99999999999999999999999" << "t100000000000000000000000";
}

void TestImExportDialog::getNewName()
{
    QFETCH(QString, name);
    QFETCH(QString, expected);
    QCOMPARE(ImExportDialog::getNewName(name), expected);
}

void TestImExportDialog::xmlSuffix_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("expected");
    QTest::newRow("no suffix") << "/media/korvel/stack" << "/media/korvel/stack.xml";
    QTest::newRow("xml suffix") << "/media/korvel/tray.xml" << "/media/korvel/tray.xml";
    QTest::newRow("contains .xml") << "/media/korvel/stack.xml.bak" << "/media/korvel/stack.xml.bak";
}

void TestImExportDialog::xmlSuffix()
{
    QFETCH(QString, path);
    QFETCH(QString, expected);
    QCOMPARE(ImExportDialog::withXmlSuffix(path), expected);
}

void TestImExportDialog::selectAllTwiceTicksEveryRow()
{
    for (int i = 0; i < 3; ++i)
        PalletFixture::addLocalPallet(QStringLiteral("p%1").arg(i), 1, 1);
    open(false);
    auto *all = m_dialog->findChild<QCheckBox *>(QStringLiteral("chbSelectAll"));
    QTest::mouseClick(rowBox(1), Qt::LeftButton, Qt::NoModifier, QPoint(8, rowBox(1)->height() / 2));
    QVERIFY(!rowBox(1)->isChecked());
    all->toggle();
    QVERIFY(!rowBox(0)->isChecked() && !rowBox(1)->isChecked() && !rowBox(2)->isChecked());
    all->toggle();
    QVERIFY(rowBox(0)->isChecked() && rowBox(1)->isChecked() && rowBox(2)->isChecked());
}

void TestImExportDialog::oneDialogAtATimeClosedWithItsList()
{
    QPointer<ImExportDialog> first = open(false);
    QPointer<ImExportDialog> second = open(true);
    QVERIFY(!first);
    QVERIFY(second);
    // A dialog bound to a list that goes away closes as cancelled.
    auto *list = new orba::ModuleObject(QStringLiteral("pallets"));
    QPointer<ImExportDialog> bound = new ImExportDialog(false, list, nullptr);
    QVERIFY(!second);
    bound->show();
    QSignalSpy rejected(bound.data(), &QDialog::rejected);
    delete list;
    QCOMPARE(rejected.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!bound);
}

void TestImExportDialog::exportWithNoRowCheckedWritesEmptyList()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    const QString path = m_usb + QStringLiteral("/out/tray.xml");
    QCOMPARE(m_dialog->findChild<QLineEdit *>(QStringLiteral("edtPath"))->text(), QDir::current().relativeFilePath(path));
    m_dialog->findChild<QCheckBox *>(QStringLiteral("chbSelectAll"))->setChecked(false);
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
    orba::ModuleObject back;
    QVERIFY2(orba::ModuleManager::readFromXmlFile(nullptr, &back, path), qPrintable(orba::ModuleManager::lastError()));
    QCOMPARE(back.cmobjCount(), 0);
    QFile written(path);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QVERIFY(written.readAll().contains("<node name=\"temp_list\" type=\"null\"/>"));
    QVERIFY(cfgLogged(QStringLiteral("Export success to tray!")));
}

void TestImExportDialog::exportEmptyPathStaysOpen()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    open(false);
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(accepted.count(), 0);
    QVERIFY(m_dialog && m_dialog->isVisible());
    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QVERIFY(!log.isEmpty());
    QCOMPARE(log.last().value(QStringLiteral("title")).toString(), QStringLiteral("Export path can not be empty!"));
    QCOMPARE(log.last().value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
}

void TestImExportDialog::exportLaysPalletsOverDefault()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("a"), 2, 3, QStringLiteral("first"));
    orba::ModuleObject *b = PalletFixture::addLocalPallet(QStringLiteral("b"), 4, 5);
    // An older pallet without a key of today's layout, and with a key the layout does not know.
    b->r(QStringLiteral("calibrate"))->remove(nullptr, b->r(QStringLiteral("calibrate.use_p4")));
    b->set(nullptr, QStringLiteral("pattern.s_type"), true, true);
    b->set(nullptr, QStringLiteral("extra.note"), QStringLiteral("kept"), true);
    Q_UNUSED(a)
    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    // Unticking row 0 exports the pallet of row 1 only.
    rowBox(0)->setChecked(false);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    orba::ModuleObject back;
    QVERIFY(orba::ModuleManager::readFromXmlFile(nullptr, &back, m_usb + QStringLiteral("/out/tray.xml")));
    QCOMPARE(back.cmobjCount(), 1);
    orba::ModuleObject *p = back.c(0);
    QCOMPARE(p->name(), QString());
    QCOMPARE(p->c(QStringLiteral("name"))->getString(), QStringLiteral("b"));
    QCOMPARE(p->r(QStringLiteral("pattern.row"))->getInt(), 4);
    QCOMPARE(p->r(QStringLiteral("pattern.s_type"))->value(), QVariant(true));
    QCOMPARE(p->r(QStringLiteral("calibrate.use_p4"))->value(), QVariant(true));
    QCOMPARE(p->r(QStringLiteral("extra.note"))->getString(), QStringLiteral("kept"));
    const QStringList layout = orba::m(QStringLiteral("tpallet.default"))->cmobjNames(false);
    QCOMPARE(p->cmobjNames(false).mid(0, layout.size()), layout);
    QCOMPARE(p->r(QStringLiteral("calibrate"))->cmobjNames(false),
             orba::m(QStringLiteral("tpallet.default.calibrate"))->cmobjNames(false));
}

void TestImExportDialog::exportThroughFileDialogRemembersFolder()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    QCOMPARE(orba::m(QStringLiteral("tormo.help.file_path.export"))->getString(), m_usb + QStringLiteral("/out/"));
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(QFile::exists(m_usb + QStringLiteral("/out/tray.xml")));
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
    // Without a disk nothing is chosen and the path stays empty.
    open(false);
    qputenv("TPALLET_USB_PRESENT", "0");
    QTest::mouseClick(button("btnOpen"), Qt::LeftButton);
    QVERIFY(m_dialog->findChild<QLineEdit *>(QStringLiteral("edtPath"))->text().isEmpty());
}

void TestImExportDialog::exportWriteFailureSays()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    // The disk is pulled before OK.
    QVERIFY(QDir(m_usb + QStringLiteral("/out")).removeRecursively());
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(m_dialog && m_dialog->isVisible());
    const auto boxes = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.at(0).kind, QStringLiteral("warning"));
    QVERIFY(boxes.at(0).text.contains(QLatin1String("tray.xml")));
    QVERIFY(!cfgLogged(QStringLiteral("Export success to tray!")));
}

void TestImExportDialog::importOffersFileThroughFileDialog()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("x1"), 2, 2, QStringLiteral("one"));
    orba::ModuleObject *b = PalletFixture::addLocalPallet(QStringLiteral("x2"), 3, 2);
    const QString path = writeList(QStringLiteral("in.xml"), {a, b});
    tpallet::palletsNode()->clear(nullptr);
    open(true);
    openImportFile(path);
    QCOMPARE(m_dialog->findChild<QLineEdit *>(QStringLiteral("edtPath"))->text(), QDir::current().relativeFilePath(path));
    QCOMPARE(orba::m(QStringLiteral("tormo.help.file_path.import"))->getString(), m_usb + QLatin1Char('/'));
    QCOMPARE(table()->rowCount(), 2);
    QCOMPARE(table()->item(1, 1)->text(), QStringLiteral("x2"));
    answerAddOne();
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 2);
    QCOMPARE(tpallet::palletsNode()->c(1)->name(), QStringLiteral("#1"));
    QCOMPARE(m_fx.palletMethods(), (QStringList{"tray.add_one", "tray.add_one"}));
    QVERIFY(cfgLogged(QStringLiteral("Import success!")));
}

void TestImExportDialog::importRenameAfterExistingNames()
{
    orba::ModuleObject *incoming = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1);
    const QString path = writeList(QStringLiteral("a.xml"), {incoming});
    PalletFixture::addLocalPallet(QStringLiteral("A1"), 1, 1);
    answerAddOne();
    open(true);
    openImportFile(path);
    QVERIFY(radio("rbtnRename")->isChecked());
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 3);
    QCOMPARE(tpallet::palletsNode()->c(2)->c(QStringLiteral("name"))->getString(), QStringLiteral("A2"));
    const auto adds = m_fx.requestsOf(QStringLiteral("tray.add_one"));
    QCOMPARE(adds.size(), 1);
    QCOMPARE(adds.at(0).params->c(QStringLiteral("name"))->getString(), QStringLiteral("A2"));
}

void TestImExportDialog::importReplaceRefusedKeepsBoth()
{
    orba::ModuleObject *old = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1, QStringLiteral("old"));
    orba::ModuleObject copy;
    copy.copyFrom(nullptr, old);
    copy.set(nullptr, QStringLiteral("desc"), QStringLiteral("new"), true);
    const QString path = writeList(QStringLiteral("a.xml"), {&copy});
    answerAddOne();
    m_fx.transport()->setReply(QStringLiteral("tray.del_one"), -1);
    open(true);
    openImportFile(path);
    radio("rbtnReplace")->setChecked(true);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 2);
    QCOMPARE(tpallet::palletsNode()->c(0)->c(QStringLiteral("desc"))->getString(), QStringLiteral("old"));
    QCOMPARE(tpallet::palletsNode()->c(1)->c(QStringLiteral("desc"))->getString(), QStringLiteral("new"));
    QCOMPARE(tpallet::palletsNode()->c(1)->c(QStringLiteral("name"))->getString(), QStringLiteral("A"));
    QCOMPARE(m_fx.palletMethods(), (QStringList{"tray.del_one", "tray.add_one"}));
    const auto del = m_fx.requestsOf(QStringLiteral("tray.del_one")).at(0);
    QCOMPARE(del.params->c(QStringLiteral("index"))->getInt(-1), 0);
    QCOMPARE(del.params->c(QStringLiteral("name"))->getString(), QStringLiteral("A"));
}

void TestImExportDialog::importReplaceAccepted()
{
    PalletFixture::addLocalPallet(QStringLiteral("Z"), 1, 1);
    orba::ModuleObject *old = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1, QStringLiteral("old"));
    PalletFixture::addLocalPallet(QStringLiteral("B"), 1, 1);
    orba::ModuleObject copy;
    copy.copyFrom(nullptr, old);
    copy.set(nullptr, QStringLiteral("desc"), QStringLiteral("new"), true);
    const QString path = writeList(QStringLiteral("a.xml"), {&copy});
    answerAddOne();
    m_fx.transport()->setReply(QStringLiteral("tray.del_one"), 0);
    open(true);
    openImportFile(path);
    radio("rbtnReplace")->setChecked(true);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    orba::ModuleObject *list = tpallet::palletsNode();
    QCOMPARE(list->cmobjCount(), 3);
    QCOMPARE(list->cmobjNames(), (QStringList{"#0", "#1", "#2"}));
    QCOMPARE(list->c(1)->c(QStringLiteral("name"))->getString(), QStringLiteral("B"));
    QCOMPARE(list->c(2)->c(QStringLiteral("desc"))->getString(), QStringLiteral("new"));
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.del_one")).at(0).params->c(QStringLiteral("index"))->getInt(-1), 1);
}

void TestImExportDialog::importDiscardSendsNothing()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1);
    orba::ModuleObject *c = PalletFixture::addLocalPallet(QStringLiteral("C"), 1, 1);
    const QString path = writeList(QStringLiteral("a.xml"), {a, c});
    tpallet::palletsNode()->remove(nullptr, c);
    const QByteArray before = listJson();
    answerAddOne();
    open(true);
    openImportFile(path);
    radio("rbtnDiscard")->setChecked(true);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    // Only the pallet without a clash went to the controller.
    const auto adds = m_fx.requestsOf(QStringLiteral("tray.add_one"));
    QCOMPARE(adds.size(), 1);
    QCOMPARE(adds.at(0).params->c(QStringLiteral("name"))->getString(), QStringLiteral("C"));
    QVERIFY(m_fx.requestsOf(QStringLiteral("tray.del_one")).isEmpty());
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 2);
    QVERIFY(listJson().startsWith(before.left(before.size() - 1)));
}

void TestImExportDialog::importWithoutOptionKeepsDuplicate()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1);
    const QString path = writeList(QStringLiteral("a.xml"), {a});
    answerAddOne();
    open(true);
    openImportFile(path);
    for (const char *name : {"rbtnRename", "rbtnReplace", "rbtnDiscard"}) {
        radio(name)->setAutoExclusive(false);
        radio(name)->setChecked(false);
    }
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 2);
    QCOMPARE(tpallet::palletsNode()->c(1)->c(QStringLiteral("name"))->getString(), QStringLiteral("A"));
}

void TestImExportDialog::importCountMismatchIsLogged()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1);
    const QString path = writeList(QStringLiteral("a.xml"), {a});
    tpallet::palletsNode()->clear(nullptr);
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), -1);
    open(true);
    openImportFile(path);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 1);
    QVERIFY(m_fx.logMessages().contains(QStringLiteral("import pallet add error!")));
    bool red = false;
    for (const orba::LogLine &line : m_fx.logLines()) {
        if (line.message == QLatin1String("import pallet add error!"))
            red = line.colour == QLatin1String("\033[31m") && line.tag.startsWith(QLatin1String("[E|"));
    }
    QVERIFY(red);
}

void TestImExportDialog::importLeavesOutPalletsOfAnotherLayout()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("A"), 1, 1);
    orba::ModuleObject *b = PalletFixture::addLocalPallet(QStringLiteral("B"), 1, 1);
    b->remove(nullptr, b->c(QStringLiteral("waypoint")));
    const QString path = writeList(QStringLiteral("mixed.xml"), {a, b});
    tpallet::palletsNode()->clear(nullptr);
    open(true);
    openImportFile(path);
    QCOMPARE(table()->rowCount(), 1);
    QCOMPARE(table()->item(0, 1)->text(), QStringLiteral("A"));
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
}

void TestImExportDialog::badFileChangesNothing_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("mentions");
    // The rows are built on the module's default pallet, which exists only with the module.
    m_fx.setUp();
    auto done = qScopeGuard([this] { m_fx.tearDown(); });

    // A sound pallet the rows below spoil.
    orba::ModuleObject good(QStringLiteral("temp_list"));
    orba::ModuleObject *pallet = good.append(nullptr, QString());
    pallet->copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")));
    pallet->set(nullptr, QStringLiteral("name"), QStringLiteral("G"), true);
    const QByteArray sound = orba::ModuleManager::toXml(&good, true);
    auto spoiled = [&](const std::function<void(orba::ModuleObject *)> &spoil) {
        orba::ModuleObject list(QStringLiteral("temp_list"));
        list.copyFrom(nullptr, &good);
        spoil(list.c(0));
        return orba::ModuleManager::toXml(&list, true);
    };

    QTest::newRow("malformed") << QByteArray("<node name=\"temp_list\" type=\"null\"><node></nod></node>") << "bad.xml";
    QTest::newRow("truncated") << sound.left(sound.size() / 2) << "bad.xml";
    QTest::newRow("not xml at all") << QByteArray("name,row,col\nA,1,1\n") << "bad.xml";
    QTest::newRow("entity expansion")
        << QByteArray("<?xml version=\"1.0\"?><!DOCTYPE l [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;&a;\">]>"
                      "<node name=\"temp_list\" type=\"string\">&b;&b;&b;</node>")
        << "bad.xml";
    QByteArray deep("<node name=\"temp_list\" type=\"null\">");
    for (int i = 0; i < 300; ++i)
        deep += "<node name=\"n\" type=\"null\">";
    for (int i = 0; i < 301; ++i)
        deep += "</node>";
    QTest::newRow("deep nesting") << deep << "bad.xml";
    QTest::newRow("a lone value") << QByteArray("<node name=\"temp_list\" type=\"int\">5</node>") << "does not hold";
    QTest::newRow("list of values")
        << QByteArray("<node name=\"temp_list\" type=\"null\"><node name=\"\" type=\"int\">1</node></node>")
        << "does not hold";
    QTest::newRow("a single pallet, not a list") << orba::ModuleManager::toXml(pallet, true) << "does not hold";
    QTest::newRow("row is text") << spoiled([](orba::ModuleObject *p) {
        p->set(nullptr, QStringLiteral("pattern.row"), QStringLiteral("many"), true);
    }) << "pattern.row";
    QTest::newRow("row missing") << spoiled([](orba::ModuleObject *p) {
        p->r(QStringLiteral("pattern"))->remove(nullptr, p->r(QStringLiteral("pattern.row")));
    }) << "pattern.row";
    QTest::newRow("too many places") << spoiled([](orba::ModuleObject *p) {
        p->set(nullptr, QStringLiteral("pattern.row"), 100, true);
        p->set(nullptr, QStringLiteral("pattern.col"), 13, true);
    }) << "pattern.col";
    QTest::newRow("flag is a number") << spoiled([](orba::ModuleObject *p) {
        p->set(nullptr, QStringLiteral("calibrate.use_p4"), 1, true);
    }) << "calibrate.use_p4";
    QTest::newRow("name is a number") << spoiled([](orba::ModuleObject *p) {
        p->set(nullptr, QStringLiteral("name"), 7, true);
    }) << "name";
    QTest::newRow("name missing") << spoiled([](orba::ModuleObject *p) {
        p->remove(nullptr, p->c(QStringLiteral("name")));
    }) << "name";
    QTest::newRow("place with two coordinates") << spoiled([](orba::ModuleObject *p) {
        orba::ModuleObject *place = p->r(QStringLiteral("points"))->append(nullptr, QStringLiteral("#0"));
        for (const char *key : {"approach", "wobj", "retract"})
            tpallet::identityPointNode(place->append(nullptr, QLatin1String(key)));
        place->r(QStringLiteral("wobj.trans"))->remove(nullptr, 2);
    }) << "points.#0.wobj.trans";
    QTest::newRow("span is text") << spoiled([](orba::ModuleObject *p) {
        p->set(nullptr, QStringLiteral("calibrate.x_span"), QStringLiteral("wide"), true);
    }) << "calibrate.x_span";
    orba::ModuleObject twice(QStringLiteral("temp_list"));
    twice.append(nullptr, QString())->copyFrom(nullptr, pallet);
    twice.append(nullptr, QString())->copyFrom(nullptr, pallet);
    QTest::newRow("duplicate names") << orba::ModuleManager::toXml(&twice, true) << "used twice";
    QTest::newRow("larger than the cap") << QByteArray() << "too large";
}

void TestImExportDialog::badFileChangesNothing()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, mentions);

    PalletFixture::addLocalPallet(QStringLiteral("G"), 1, 1);
    PalletFixture::addLocalPallet(QStringLiteral("H"), 2, 2);
    const QByteArray before = listJson();
    const QString path = m_usb + QStringLiteral("/bad.xml");
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    if (content.isEmpty()) {
        f.write("<node name=\"temp_list\" type=\"null\">");
        QVERIFY(f.resize(orba::ModuleManager::maxXmlBytes() + 1));
    } else {
        f.write(content);
    }
    f.close();
    answerAddOne();
    open(true);
    openImportFile(path);

    const auto boxes = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(boxes.size(), 1);
    QCOMPARE(boxes.at(0).kind, QStringLiteral("warning"));
    QVERIFY2(boxes.at(0).text.contains(mentions), qPrintable(boxes.at(0).text));
    QVERIFY2(boxes.at(0).text.contains(QLatin1String("bad.xml")), qPrintable(boxes.at(0).text));
    QCOMPARE(table()->rowCount(), 0);
    QCOMPARE(m_dialog->importList()->cmobjCount(), 0);
    QVERIFY(m_dialog->findChild<QLineEdit *>(QStringLiteral("edtPath"))->text().isEmpty());

    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(m_fx.palletMethods().isEmpty());
    QCOMPARE(listJson(), before);
    QVERIFY(!cfgLogged(QStringLiteral("Import success!")));
}

void TestImExportDialog::palletDefects_data()
{
    QTest::addColumn<QByteArray>("json");
    QTest::addColumn<QString>("defect");
    QTest::newRow("sound") << QByteArray(R"({"name":"a_1-B","index":3})") << "";
    QTest::newRow("name with a blank") << QByteArray(R"({"name":"a b"})") << "name";
    QTest::newRow("name too long") << QByteArray(R"({"name":"abcdefghijklmnopqrstuvwxyz0123456"})") << "name";
    QTest::newRow("desc is an object") << QByteArray(R"({"name":"a","desc":{"x":1}})") << "desc";
    QTest::newRow("index is text") << QByteArray(R"({"name":"a","index":"3"})") << "index";
    QTest::newRow("origin out of range") << QByteArray(R"({"name":"a","pattern":{"origin":4}})") << "pattern.origin";
    QTest::newRow("infinite span") << QByteArray(R"({"name":"a","calibrate":{"y_span":"@inf"}})") << "calibrate.y_span";
    QTest::newRow("toolset mass is text") << QByteArray(R"({"name":"a","calibrate":{"toolset":{"load":{"mass":"x"}}}})")
                                          << "calibrate.toolset.load.mass";
    QTest::newRow("way point without rot") << QByteArray(R"({"name":"a","waypoint":{"wobj":{"trans":[0,0,0]}}})")
                                           << "waypoint.wobj.rot";
    QTest::newRow("grid place of three") << QByteArray(R"({"name":"a","calibrate":{"points":[[[0.0,0.0,1.0]]]}})")
                                         << "calibrate.points.#0.#0";
    QTest::newRow("points not an array") << QByteArray(R"({"name":"a","points":{"x":1}})") << "points";
    QTest::newRow("way point element is an object")
        << QByteArray(R"({"name":"a","waypoint":{"wobj":{"trans":[0,{"x":1},0],"rot":[0,0,0]}}})") << "waypoint.wobj.trans";
    QTest::newRow("way point is an array") << QByteArray(R"({"name":"a","waypoint":{"approach":[1,2]}})")
                                          << "waypoint.approach.trans";
    QTest::newRow("near of seven")
        << QByteArray(R"({"name":"a","waypoint":{"retract":{"trans":[0,0,0],"rot":[0,0,0],"near":[0,0,0,0,0,0,0]}}})")
        << "waypoint.retract.near";
    QTest::newRow("near is text")
        << QByteArray(R"({"name":"a","waypoint":{"retract":{"trans":[0,0,0],"rot":[0,0,0],"near":"x"}}})")
        << "waypoint.retract.near";
    QTest::newRow("place rot of two")
        << QByteArray(R"({"name":"a","points":[{"approach":{"trans":[0,0,0],"rot":[0,0]}}]})") << "points.#0.approach.rot";
    QTest::newRow("place trans with text")
        << QByteArray(R"({"name":"a","points":[{"approach":{"trans":[0,0,0],"rot":[0,0,0]},"wobj":{"trans":[0,"1",0],"rot":[0,0,0]}}]})")
        << "points.#0.wobj.trans";
    QTest::newRow("place without retract")
        << QByteArray(R"({"name":"a","points":[{"approach":{"trans":[0,0,0],"rot":[0,0,0]},"wobj":{"trans":[0,0,0],"rot":[0,0,0]}}]})")
        << "points.#0.retract.trans";
    QTest::newRow("sound place, integers and a short near")
        << QByteArray(R"({"name":"a","points":[{"approach":{"trans":[0,1,2],"rot":[0.5,0,0],"near":[1]},"wobj":{"trans":[0,0,0],"rot":[0,0,0]},"retract":{"trans":[0,0,0],"rot":[0,0,0]}}]})")
        << "";
}

void TestImExportDialog::palletDefects()
{
    QFETCH(QByteArray, json);
    QFETCH(QString, defect);
    orba::ModuleObject pallet;
    pallet.copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")));
    orba::ModuleObject patch;
    QVERIFY(patch.importFromJson(nullptr, json));
    pallet.overlayFrom(nullptr, &patch);
    QCOMPARE(ImExportDialog::palletDefect(&pallet, orba::m(QStringLiteral("tpallet.default"))), defect);
}

// Checking a file looks at every number of every place without making an object of each: a file
// of twenty full pallets holds over a million of them.
void TestImExportDialog::checkKeepsNumbersCompact()
{
    orba::ModuleObject *full = PalletFixture::addFullPallet(QStringLiteral("full"), 40, 30, 1);
    const QString file = writeList(QStringLiteral("one.xml"), {full});
    tpallet::palletsNode()->clear(nullptr);
    open(true);
    const qint64 before = orba::ModuleObject::liveObjects();
    openImportFile(file);
    QCOMPARE(table()->rowCount(), 1);
    // 1200 places of three poses each, each pose three arrays of up to six numbers: about 62,000
    // nodes. What the check holds: the places and their poses, and the pallet's upper levels.
    const qint64 made = orba::ModuleObject::liveObjects() - before;
    QVERIFY2(made > 1200 && made < 8000, qPrintable(QString::number(made)));
}

void TestImExportDialog::dialogDeletedDuringImport()
{
    QList<orba::ModuleObject *> source;
    for (int i = 0; i < 4; ++i)
        source << PalletFixture::addLocalPallet(QStringLiteral("p%1").arg(i), 1, 1);
    const QString path = writeList(QStringLiteral("four.xml"), source);
    tpallet::palletsNode()->clear(nullptr);
    open(true);
    openImportFile(path);
    QPointer<ImExportDialog> dialog = m_dialog;
    m_fx.transport()->setHandler([dialog](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method == QLatin1String("tray.add_one")) {
            reply.dataJson = QStringLiteral("{\"size\":%1}").arg(tpallet::palletsNode()->cmobjCount()).toUtf8();
            // Something closes the dialog while the import goes on.
            QTimer::singleShot(0, [dialog] { delete dialog.data(); });
        }
        return reply;
    });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(!dialog);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), 1);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.add_one")).size(), 1);
    QVERIFY(!cfgLogged(QStringLiteral("Import success!")));
}

void TestImExportDialog::listDeletedDuringImport()
{
    QList<orba::ModuleObject *> source;
    for (int i = 0; i < 3; ++i)
        source << PalletFixture::addLocalPallet(QStringLiteral("p%1").arg(i), 1, 1);
    const QString path = writeList(QStringLiteral("three.xml"), source);
    // The dialog works on a list of its own, which goes away during the import.
    auto *list = new orba::ModuleObject(QStringLiteral("pallets"));
    m_dialog = new ImExportDialog(true, list, nullptr);
    m_dialog->show();
    openImportFile(path);
    QPointer<orba::ModuleObject> guard(list);
    m_fx.transport()->setHandler([guard](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method == QLatin1String("tray.add_one")) {
            reply.dataJson = "{\"size\":1}";
            QTimer::singleShot(0, [guard] { delete guard.data(); });
        }
        return reply;
    });
    QPointer<ImExportDialog> dialog = m_dialog;
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(!guard);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.add_one")).size(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!dialog);
    QVERIFY(!cfgLogged(QStringLiteral("Import success!")));
}

void TestImExportDialog::dialogDeletedDuringExport()
{
    for (int i = 0; i < 4; ++i)
        PalletFixture::addLocalPallet(QStringLiteral("p%1").arg(i), 1, 1);
    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    QPointer<ImExportDialog> dialog = m_dialog;
    QTimer::singleShot(0, [dialog] { delete dialog.data(); });
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    QVERIFY(!dialog);
    QVERIFY(!QFile::exists(m_usb + QStringLiteral("/out/tray.xml")));
    QVERIFY(!cfgLogged(QStringLiteral("Export success to tray!")));
}

void TestImExportDialog::roundTripOnSimulator()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
#ifdef __SANITIZE_ADDRESS__
    // The same path with fewer pallets: the sanitizer build takes minutes for twenty.
    constexpr int kPallets = 5;
#else
    constexpr int kPallets = 20;
#endif
    QList<QByteArray> stored;
    for (int i = 0; i < kPallets; ++i) {
        orba::ModuleObject *pallet = PalletFixture::addFullPallet(QStringLiteral("full%1").arg(i), 40, 30, i);
        QCOMPARE(pallet->r(QStringLiteral("points"))->cmobjCount(), 1200);
        const orba::MobjPtr reply = tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), pallet);
        QCOMPARE(reply->r(QStringLiteral("data.size"))->getInt(), i + 1);
    }
    for (int i = 0; i < kPallets; ++i) {
        orba::ModuleObject param(QStringLiteral("param"));
        param.setValue(nullptr, i);
        tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param);
        stored << param.c(QStringLiteral("data"))->exportToJson(true);
    }

    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
    const QString file = m_usb + QStringLiteral("/out/tray.xml");
    QVERIFY(QFile::exists(file));

    // Delete them all, on the controller and here.
    // From the last one, so the controller renumbers nothing (quick in the sanitizer build too).
    for (int i = kPallets - 1; i >= 0; --i) {
        orba::ModuleObject param;
        param.set(nullptr, QStringLiteral("index"), i, true);
        param.set(nullptr, QStringLiteral("name"), QStringLiteral("full%1").arg(i), true);
        QCOMPARE(tservice()->execCommand(nullptr, QStringLiteral("tray.del_one"), &param)->getInt(-1), 0);
    }
    tpallet::palletsNode()->clear(nullptr);

    open(true);
    openImportFile(file);
    QCOMPARE(table()->rowCount(), kPallets);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
    QCOMPARE(tpallet::palletsNode()->cmobjCount(), kPallets);
    const orba::MobjPtr list = tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"));
    QCOMPARE(list->c(QStringLiteral("data"))->cmobjCount(), kPallets);
    for (int i = 0; i < kPallets; ++i) {
        orba::ModuleObject param(QStringLiteral("param"));
        param.setValue(nullptr, i);
        tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param);
        orba::ModuleObject before;
        QVERIFY(before.importFromJson(nullptr, stored.at(i)));
        // equals() compares doubles bit for bit.
        QVERIFY2(param.c(QStringLiteral("data"))->equals(&before), qPrintable(QStringLiteral("pallet %1").arg(i)));
    }
    QVERIFY(m_fx.logMessages().filter(QStringLiteral("add error")).isEmpty());
}

void TestImExportDialog::clashesOnSimulator_data()
{
    QTest::addColumn<QString>("option");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("rename") << "rbtnRename" << QStringList{"A", "B", "A1", "B1"};
    QTest::newRow("replace") << "rbtnReplace" << QStringList{"A", "B"};
    QTest::newRow("discard") << "rbtnDiscard" << QStringList{"A", "B"};
}

void TestImExportDialog::clashesOnSimulator()
{
    QFETCH(QString, option);
    QFETCH(QStringList, names);
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    for (const char *name : {"A", "B"}) {
        orba::ModuleObject *pallet = PalletFixture::addFullPallet(QLatin1String(name), 2, 3, 1);
        tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), pallet);
    }
    open(false);
    exportTo(m_usb + QStringLiteral("/out"));
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);
    // Change "A" here and on the controller: Replace brings the file's version back.
    orba::ModuleObject *a = tpallet::palletsNode()->c(0);
    a->set(nullptr, QStringLiteral("desc"), QStringLiteral("changed"), true);
    tpallet::saveToRC(a);

    open(true);
    openImportFile(m_usb + QStringLiteral("/out/tray.xml"));
    radio(qPrintable(option))->setChecked(true);
    QTest::mouseClick(button("btnOk"), Qt::LeftButton);

    QStringList local;
    for (orba::ModuleObject *p : tpallet::palletsNode()->cmobjs())
        local << p->c(QStringLiteral("name"))->getString();
    QStringList remote;
    const orba::MobjPtr list = tservice()->execCommand(nullptr, QStringLiteral("tray.query.list"));
    for (orba::ModuleObject *p : list->c(QStringLiteral("data"))->cmobjs())
        remote << p->c(QStringLiteral("name"))->getString();
    QStringList sortedNames = names;
    sortedNames.sort();
    local.sort();
    remote.sort();
    QCOMPARE(local, sortedNames);
    QCOMPARE(remote, sortedNames);
    // The controller's "A" after the import.
    for (int i = 0; i < remote.size(); ++i) {
        orba::ModuleObject param(QStringLiteral("param"));
        param.setValue(nullptr, i);
        tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param);
        if (param.r(QStringLiteral("data.name"))->getString() == QLatin1String("A")) {
            QCOMPARE(param.r(QStringLiteral("data.desc"))->getString(),
                     option == QLatin1String("rbtnReplace") ? QStringLiteral("desc of A") : QStringLiteral("changed"));
        }
    }
    QVERIFY(m_fx.logMessages().filter(QStringLiteral("add error")).isEmpty());
}

QTEST_MAIN(TestImExportDialog)
#include "tst_imexportdialog.moc"
