#include "palletfixture.h"

#include "dialogs/tfiledialog.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileSystemModel>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>
#include <QtTest>

#include <functional>

namespace {

void touch(const QString &path)
{
    QFile f(path);
    QVERIFY(f.open(QIODevice::WriteOnly));
    f.write("<node/>");
}

// The one visible file dialog, if any.
tFileDialog *openDialog()
{
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (auto *d = qobject_cast<tFileDialog *>(w)) {
            if (d->isVisible())
                return d;
        }
    }
    return nullptr;
}

// Runs `act` on the modal file dialog as soon as it shows.
// Owner of the actions still waiting for a dialog: a test that ends leaves none behind.
QObject *pendingActions()
{
    static QObject owner;
    return &owner;
}

void whenDialogShows(std::function<void(tFileDialog *)> act)
{
    auto *timer = new QTimer(pendingActions());
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, timer, [timer, act] {
        if (tFileDialog *d = openDialog()) {
            timer->stop();
            timer->deleteLater();
            act(d);
        }
    });
    timer->start();
}

int warningCount(const QString &text)
{
    int n = 0;
    for (const QVariantMap &entry : tcore::ManagerHelper::instance()->logHistory()) {
        if (entry.value(QStringLiteral("level")).toString() == QLatin1String("warning")
            && entry.value(QStringLiteral("title")).toString() == text)
            ++n;
    }
    return n;
}

} // namespace

class TestFileDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formWidgets();
    void diskPresence_data();
    void diskPresence();
    void partitionProbeAnswers();
    void openModeOkFollowsSelection();
    void doubleClickOnFileAcceptsAtOnce();
    void doubleClickOnFileInDirectorySchemeDoesNothing();
    void folderNavigationHistory();
    void backWithEmptyHistoryDoesNothing();
    void homeClearsHistory();
    void saveModeOkFollowsLine();
    void saveFileNameJoinsShownFolder();
    void directorySchemeListsFoldersOnly();
    void nothingOutsideTheRootIsShown();
    void missingRootShowsNothing();
    void openGetterReturnsChosenFile();
    void openGetterCancelled();
    void gettersWithoutDiskShowNoDialog();
    void saveGetterIntoFolderWithoutSelectionIsEmpty();
    void saveGetterReturnsFolderAndName();
    void saveGetterOnRootIsEmpty();
    void saveGetterEmptyNameDoesNotProbe();
    void existingDirectoryGetter();
    void fileSyncSucceeds();

private:
    tFileDialog *make(const QString &root);
    QListView *view(tFileDialog *d) { return d->findChild<QListView *>(QStringLiteral("listView")); }
    QPushButton *button(tFileDialog *d, const char *name) { return d->findChild<QPushButton *>(QLatin1String(name)); }
    QLineEdit *line(tFileDialog *d) { return d->findChild<QLineEdit *>(QStringLiteral("lineEdit")); }
    QModelIndex indexOf(tFileDialog *d, const QString &path);
    void click(tFileDialog *d, const QString &path);
    void doubleClick(tFileDialog *d, const QString &path);
    void useDisk(bool present);

    PalletFixture m_fx;
    QTemporaryDir *m_dir = nullptr;
    QString m_root;
    QPointer<tFileDialog> m_dialog;
};

void TestFileDialog::init()
{
    m_fx.setUp();
    qunsetenv("TPALLET_USB_ROOT");
    qunsetenv("TPALLET_USB_PRESENT");
    m_dir = new QTemporaryDir;
    QVERIFY(m_dir->isValid());
    // root: a.xml, notes.txt, sub/ (b.xml, deeper/)
    m_root = m_dir->path() + QStringLiteral("/usb");
    QVERIFY(QDir().mkpath(m_root + QStringLiteral("/sub/deeper")));
    touch(m_root + QStringLiteral("/a.xml"));
    touch(m_root + QStringLiteral("/notes.txt"));
    touch(m_root + QStringLiteral("/sub/b.xml"));
}

void TestFileDialog::cleanup()
{
    qDeleteAll(pendingActions()->children());
    delete m_dialog.data();
    for (QWidget *w : QApplication::topLevelWidgets()) {
        if (qobject_cast<tFileDialog *>(w))
            delete w;
    }
    qunsetenv("TPALLET_USB_ROOT");
    qunsetenv("TPALLET_USB_PRESENT");
    delete m_dir;
    m_dir = nullptr;
    m_fx.tearDown();
}

void TestFileDialog::useDisk(bool present)
{
    qputenv("TPALLET_USB_ROOT", m_root.toLocal8Bit());
    qputenv("TPALLET_USB_PRESENT", present ? "1" : "0");
}

tFileDialog *TestFileDialog::make(const QString &root)
{
    m_dialog = new tFileDialog(nullptr, QStringLiteral("Pick"), root);
    m_dialog->show();
    if (auto *model = qobject_cast<QFileSystemModel *>(view(m_dialog)->model())) {
        // The model lists folders in the background.
        QElapsedTimer timer;
        timer.start();
        while (model->rowCount(view(m_dialog)->rootIndex()) < 3 && timer.elapsed() < 5000)
            QTest::qWait(10);
    }
    return m_dialog;
}

QModelIndex TestFileDialog::indexOf(tFileDialog *d, const QString &path)
{
    auto *model = qobject_cast<QFileSystemModel *>(view(d)->model());
    return model ? model->index(path) : QModelIndex();
}

void TestFileDialog::click(tFileDialog *d, const QString &path)
{
    const QModelIndex index = indexOf(d, path);
    QVERIFY2(index.isValid(), qPrintable(path));
    QListView *v = view(d);
    v->scrollTo(index);
    QTest::mouseClick(v->viewport(), Qt::LeftButton, Qt::NoModifier, v->visualRect(index).center());
}

void TestFileDialog::doubleClick(tFileDialog *d, const QString &path)
{
    const QModelIndex index = indexOf(d, path);
    QVERIFY2(index.isValid(), qPrintable(path));
    QListView *v = view(d);
    v->scrollTo(index);
    const QPoint at = v->visualRect(index).center();
    QTest::mouseClick(v->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(v->viewport(), Qt::LeftButton, Qt::NoModifier, at);
}

void TestFileDialog::formWidgets()
{
    tFileDialog *d = make(m_root);
    QCOMPARE(d->objectName(), QStringLiteral("tFileDialog"));
    QCOMPARE(d->windowTitle(), QStringLiteral("Dialog"));
    QVERIFY(d->windowFlags() & Qt::FramelessWindowHint);
    QVERIFY(d->windowFlags() & Qt::X11BypassWindowManagerHint);
    QCOMPARE(d->findChild<QLabel *>(QStringLiteral("lblTitle"))->text(), QStringLiteral("Pick"));
    QCOMPARE(d->findChild<QLabel *>(QStringLiteral("lblFileName"))->text(), QStringLiteral("FileName:"));
    QCOMPARE(button(d, "btnCancel")->text(), QStringLiteral("Cancel"));
    QCOMPARE(button(d, "btnOk")->text(), QStringLiteral("Ok"));
    QVERIFY(!button(d, "btnHome")->icon().isNull());
    QVERIFY(!button(d, "btnBack")->icon().isNull());
    QVERIFY(view(d));
    QVERIFY(line(d));
    for (const char *name : {"btnHome", "btnBack", "btnCancel", "btnOk"}) {
        QVERIFY2(button(d, name)->height() >= 36, name);
        QVERIFY2(button(d, name)->width() >= 36, name);
    }
    QCOMPARE(d->rootPath(), m_root);
    QVERIFY(!d->isScheme());
    QVERIFY(!d->isSave());
    QVERIFY(!button(d, "btnOk")->isEnabled());
    QVERIFY(QFile::exists(QStringLiteral(":/tpallet/images/home.png")));
    QVERIFY(QFile::exists(QStringLiteral(":/tpallet/images/back.png")));
}

void TestFileDialog::diskPresence_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("rootExists");
    QTest::addColumn<bool>("found");

    QTest::newRow("environment: disk present") << "env 1" << true << true;
    QTest::newRow("environment: yes") << "env yes" << true << true;
    QTest::newRow("environment: no disk") << "env 0" << true << false;
    QTest::newRow("environment: present but root missing") << "env 1" << false << false;
    QTest::newRow("host nodes: disk present") << "node true" << true << true;
    QTest::newRow("host nodes win over the environment") << "node false, env 1" << true << false;
    QTest::newRow("host nodes: present but root missing") << "node true" << false << false;
}

void TestFileDialog::diskPresence()
{
    QFETCH(QString, how);
    QFETCH(bool, rootExists);
    QFETCH(bool, found);

    const QString root = rootExists ? m_root : m_root + QStringLiteral("/not-there");
    if (how.startsWith(QLatin1String("env"))) {
        qputenv("TPALLET_USB_ROOT", root.toLocal8Bit());
        qputenv("TPALLET_USB_PRESENT", how.section(QLatin1Char(' '), 1).toLocal8Bit());
    } else {
        orba::m()->set(nullptr, QStringLiteral("tormo.usb.root"), root, true);
        orba::m()->set(nullptr, QStringLiteral("tormo.usb.present"), how.startsWith(QLatin1String("node true")), true);
        if (how.endsWith(QLatin1String("env 1"))) {
            qputenv("TPALLET_USB_ROOT", "/somewhere/else");
            qputenv("TPALLET_USB_PRESENT", "1");
        }
    }
    QCOMPARE(tFileDialog::usbRoot(), root);
    const QString dir = tFileDialog::checkUsbDir();
    QCOMPARE(dir, found ? root : QString());
    QCOMPARE(warningCount(QStringLiteral("please insert the USB disk")), found ? 0 : 1);
}

void TestFileDialog::partitionProbeAnswers()
{
    QCOMPARE(tFileDialog::defaultUsbRoot(), QStringLiteral("/media/korvel"));
    QCOMPARE(tFileDialog::usbRoot(), QStringLiteral("/media/korvel"));
    QElapsedTimer timer;
    timer.start();
    const bool present = tFileDialog::probeUsbPartition();
    QVERIFY(timer.elapsed() < 30000);
    Q_UNUSED(present)
    // Without a mount root the probe's answer does not matter: no disk.
    if (QFileInfo(QStringLiteral("/media/korvel")).isDir())
        QSKIP("this machine has a /media/korvel");
    QVERIFY(tFileDialog::checkUsbDir().isEmpty());
    QCOMPARE(warningCount(QStringLiteral("please insert the USB disk")), 1);
}

void TestFileDialog::openModeOkFollowsSelection()
{
    tFileDialog *d = make(m_root);
    line(d)->setText(QStringLiteral("left over"));
    click(d, m_root + QStringLiteral("/sub"));
    QVERIFY(line(d)->text().isEmpty());
    QVERIFY(!button(d, "btnOk")->isEnabled());
    click(d, m_root + QStringLiteral("/a.xml"));
    QCOMPARE(line(d)->text(), QStringLiteral("a.xml"));
    QVERIFY(button(d, "btnOk")->isEnabled());
    QCOMPARE(d->selectedFileName(), m_root + QStringLiteral("/a.xml"));
    click(d, m_root + QStringLiteral("/sub"));
    QVERIFY(!button(d, "btnOk")->isEnabled());
}

void TestFileDialog::doubleClickOnFileAcceptsAtOnce()
{
    tFileDialog *d = make(m_root);
    QSignalSpy accepted(d, &QDialog::accepted);
    doubleClick(d, m_root + QStringLiteral("/notes.txt"));
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(d->result(), int(QDialog::Accepted));
    QCOMPARE(d->selectedFileName(), m_root + QStringLiteral("/notes.txt"));
}

void TestFileDialog::doubleClickOnFileInDirectorySchemeDoesNothing()
{
    tFileDialog *d = make(m_root);
    // The scheme filters files out; the open rule must not accept one all the same.
    QSignalSpy accepted(d, &QDialog::accepted);
    const QModelIndex file = indexOf(d, m_root + QStringLiteral("/a.xml"));
    d->setScheme(true);
    QVERIFY(d->isVisible());
    emit view(d)->doubleClicked(file);
    QCOMPARE(accepted.count(), 0);
    QVERIFY(d->isVisible());
}

void TestFileDialog::folderNavigationHistory()
{
    tFileDialog *d = make(m_root);
    QListView *v = view(d);
    auto *model = qobject_cast<QFileSystemModel *>(v->model());
    doubleClick(d, m_root + QStringLiteral("/sub"));
    QCOMPARE(model->filePath(v->rootIndex()), m_root + QStringLiteral("/sub"));
    QCOMPARE(d->historySize(), 1);
    QVERIFY(d->isVisible());
    QTRY_VERIFY(model->rowCount(v->rootIndex()) == 2);
    doubleClick(d, m_root + QStringLiteral("/sub/deeper"));
    QCOMPARE(model->filePath(v->rootIndex()), m_root + QStringLiteral("/sub/deeper"));
    QCOMPARE(d->historySize(), 2);

    QTest::mouseClick(button(d, "btnBack"), Qt::LeftButton);
    QCOMPARE(model->filePath(v->rootIndex()), m_root + QStringLiteral("/sub"));
    QCOMPARE(model->filePath(v->currentIndex()), m_root + QStringLiteral("/sub"));
    QCOMPARE(d->historySize(), 1);
    QTest::mouseClick(button(d, "btnBack"), Qt::LeftButton);
    QCOMPARE(model->filePath(v->rootIndex()), m_root);
    QCOMPARE(d->historySize(), 0);
}

void TestFileDialog::backWithEmptyHistoryDoesNothing()
{
    tFileDialog *d = make(m_root);
    QListView *v = view(d);
    click(d, m_root + QStringLiteral("/a.xml"));
    const QModelIndex rootBefore = v->rootIndex();
    const QModelIndex currentBefore = v->currentIndex();
    QTest::mouseClick(button(d, "btnBack"), Qt::LeftButton);
    QCOMPARE(v->rootIndex(), rootBefore);
    QCOMPARE(v->currentIndex(), currentBefore);
    QVERIFY(button(d, "btnOk")->isEnabled());
    QCOMPARE(d->historySize(), 0);
}

void TestFileDialog::homeClearsHistory()
{
    tFileDialog *d = make(m_root);
    QListView *v = view(d);
    auto *model = qobject_cast<QFileSystemModel *>(v->model());
    doubleClick(d, m_root + QStringLiteral("/sub"));
    QTRY_VERIFY(model->rowCount(v->rootIndex()) == 2);
    doubleClick(d, m_root + QStringLiteral("/sub/deeper"));
    QCOMPARE(d->historySize(), 2);
    QTest::mouseClick(button(d, "btnHome"), Qt::LeftButton);
    QCOMPARE(d->historySize(), 0);
    QCOMPARE(model->filePath(v->rootIndex()), m_root);
    QCOMPARE(model->filePath(v->currentIndex()), m_root);
    QVERIFY(!button(d, "btnOk")->isEnabled());
    // Nothing to go back to after home.
    QTest::mouseClick(button(d, "btnBack"), Qt::LeftButton);
    QCOMPARE(model->filePath(v->rootIndex()), m_root);
}

void TestFileDialog::saveModeOkFollowsLine()
{
    tFileDialog *d = make(m_root);
    QVERIFY(line(d)->isReadOnly() == false);
    d->setSave(true);
    QVERIFY(d->isSave());
    QVERIFY(!line(d)->isReadOnly());
    QVERIFY(!button(d, "btnOk")->isEnabled());
    QTest::keyClicks(line(d), QStringLiteral("   "));
    QVERIFY(!button(d, "btnOk")->isEnabled());
    QTest::keyClicks(line(d), QStringLiteral("out.xml"));
    QVERIFY(button(d, "btnOk")->isEnabled());
    line(d)->clear();
    QVERIFY(!button(d, "btnOk")->isEnabled());
    d->setSave(false);
    QVERIFY(line(d)->isReadOnly());
}

void TestFileDialog::saveFileNameJoinsShownFolder()
{
    tFileDialog *d = make(m_root);
    d->setSave(true);
    QVERIFY(d->saveFileName().isEmpty());
    line(d)->setText(QStringLiteral("  my   pallets.xml "));
    QCOMPARE(d->saveFileName(), m_root + QStringLiteral("/my pallets.xml"));
    doubleClick(d, m_root + QStringLiteral("/sub"));
    line(d)->setText(QStringLiteral("x.xml"));
    QCOMPARE(d->saveFileName(), m_root + QStringLiteral("/sub/x.xml"));
}

void TestFileDialog::directorySchemeListsFoldersOnly()
{
    tFileDialog *d = make(m_root);
    d->setScheme(true);
    QVERIFY(d->isScheme());
    QVERIFY(line(d)->isReadOnly());
    QVERIFY(button(d, "btnOk")->isEnabled());
    QListView *v = view(d);
    auto *model = qobject_cast<QFileSystemModel *>(v->model());
    QTRY_COMPARE(model->rowCount(v->rootIndex()), 1);
    QCOMPARE(model->fileName(model->index(0, 0, v->rootIndex())), QStringLiteral("sub"));
    // OK stays enabled whatever is selected.
    click(d, m_root + QStringLiteral("/sub"));
    QVERIFY(button(d, "btnOk")->isEnabled());
}

void TestFileDialog::nothingOutsideTheRootIsShown()
{
    const QString outside = m_dir->path() + QStringLiteral("/outside");
    QVERIFY(QDir().mkpath(outside));
    touch(outside + QStringLiteral("/secret.xml"));
    QVERIFY(QFile::link(outside, m_root + QStringLiteral("/link-to-dir")));
    QVERIFY(QFile::link(outside + QStringLiteral("/secret.xml"), m_root + QStringLiteral("/link-to-file.xml")));
    QVERIFY(QFile::link(QStringLiteral("/"), m_root + QStringLiteral("/slash")));

    tFileDialog *d = make(m_root);
    QListView *v = view(d);
    auto *model = qobject_cast<QFileSystemModel *>(v->model());
    QTest::qWait(100);
    QStringList shown;
    for (int i = 0; i < model->rowCount(v->rootIndex()); ++i)
        shown << model->fileName(model->index(i, 0, v->rootIndex()));
    shown.sort();
    QCOMPARE(shown, (QStringList{"a.xml", "notes.txt", "sub"}));

    // Even an index reached some other way is not entered.
    const QModelIndex up = model->index(m_dir->path());
    emit v->doubleClicked(up);
    QCOMPARE(model->filePath(v->rootIndex()), m_root);
    QCOMPARE(d->historySize(), 0);
}

void TestFileDialog::missingRootShowsNothing()
{
    m_dialog = new tFileDialog(nullptr, QStringLiteral("Pick"), m_root + QStringLiteral("/gone"));
    m_dialog->show();
    QTest::qWait(50);
    QListView *v = view(m_dialog);
    QVERIFY(!v->model() || v->model()->rowCount(v->rootIndex()) == 0);
    QVERIFY(!button(m_dialog, "btnOk")->isEnabled());
    QCOMPARE(m_dialog->selectedFileName(), m_root + QStringLiteral("/gone"));
    m_dialog->goHome();
    m_dialog->goBack();
    QVERIFY(!v->model() || v->model()->rowCount(v->rootIndex()) == 0);
}

void TestFileDialog::openGetterReturnsChosenFile()
{
    useDisk(true);
    whenDialogShows([this](tFileDialog *d) {
        QCOMPARE(d->rootPath(), m_root);
        auto *model = qobject_cast<QFileSystemModel *>(view(d)->model());
        QTRY_VERIFY(model->rowCount(view(d)->rootIndex()) >= 3);
        doubleClick(d, m_root + QStringLiteral("/sub"));
        QTRY_VERIFY(model->rowCount(view(d)->rootIndex()) == 2);
        click(d, m_root + QStringLiteral("/sub/b.xml"));
        QTest::mouseClick(button(d, "btnOk"), Qt::LeftButton);
    });
    const QString path = tFileDialog::getOpenFileName(nullptr, QStringLiteral("Open"), QStringLiteral("/etc"),
                                                      QStringLiteral("XML (*.xml)"));
    QCOMPARE(path, m_root + QStringLiteral("/sub/b.xml"));
    QVERIFY(!openDialog());
}

void TestFileDialog::openGetterCancelled()
{
    useDisk(true);
    whenDialogShows([this](tFileDialog *d) {
        click(d, m_root + QStringLiteral("/a.xml"));
        QTest::mouseClick(button(d, "btnCancel"), Qt::LeftButton);
    });
    QVERIFY(tFileDialog::getOpenFileName(nullptr, QStringLiteral("Open"), QString(), QString()).isEmpty());
    // Escape closes it too.
    whenDialogShows([](tFileDialog *d) { QTest::keyClick(d, Qt::Key_Escape); });
    QVERIFY(tFileDialog::getOpenFileName(nullptr, QStringLiteral("Open"), QString(), QString()).isEmpty());
}

void TestFileDialog::gettersWithoutDiskShowNoDialog()
{
    useDisk(false);
    bool shown = false;
    whenDialogShows([&shown](tFileDialog *d) {
        shown = true;
        d->reject();
    });
    QVERIFY(tFileDialog::getOpenFileName(nullptr, QStringLiteral("Open"), QString(), QString()).isEmpty());
    QVERIFY(tFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QString(), QStringLiteral("tray.xml"), QString())
                .isEmpty());
    QVERIFY(tFileDialog::getExistingDirectory(nullptr, QStringLiteral("Folder"), QString()).isEmpty());
    QTest::qWait(30);
    QVERIFY(!shown);
    QCOMPARE(warningCount(QStringLiteral("please insert the USB disk")), 3);
}

void TestFileDialog::saveGetterIntoFolderWithoutSelectionIsEmpty()
{
    useDisk(true);
    whenDialogShows([this](tFileDialog *d) {
        QVERIFY(d->isScheme());
        auto *model = qobject_cast<QFileSystemModel *>(view(d)->model());
        QTRY_VERIFY(model->rowCount(view(d)->rootIndex()) >= 1);
        doubleClick(d, m_root + QStringLiteral("/sub"));
        QCOMPARE(model->filePath(view(d)->rootIndex()), m_root + QStringLiteral("/sub"));
        QVERIFY(!view(d)->currentIndex().isValid());
        QCOMPARE(d->selectedFileName(), m_root);
        QTest::mouseClick(button(d, "btnOk"), Qt::LeftButton);
    });
    QVERIFY(tFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QString(), QStringLiteral("tray.xml"), QString())
                .isEmpty());
}

void TestFileDialog::saveGetterReturnsFolderAndName()
{
    useDisk(true);
    whenDialogShows([this](tFileDialog *d) {
        auto *model = qobject_cast<QFileSystemModel *>(view(d)->model());
        QTRY_VERIFY(model->rowCount(view(d)->rootIndex()) >= 1);
        click(d, m_root + QStringLiteral("/sub"));
        QTest::mouseClick(button(d, "btnOk"), Qt::LeftButton);
    });
    QCOMPARE(tFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QString(), QStringLiteral("tray.xml"), QString()),
             m_root + QStringLiteral("/sub/tray.xml"));
}

void TestFileDialog::saveGetterOnRootIsEmpty()
{
    useDisk(true);
    whenDialogShows([this](tFileDialog *d) {
        QTest::mouseClick(button(d, "btnHome"), Qt::LeftButton);
        QTest::mouseClick(button(d, "btnOk"), Qt::LeftButton);
    });
    QVERIFY(tFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QString(), QStringLiteral("tray.xml"), QString())
                .isEmpty());
}

void TestFileDialog::saveGetterEmptyNameDoesNotProbe()
{
    useDisk(false);
    QVERIFY(tFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QString(), QString(), QString()).isEmpty());
    QCOMPARE(warningCount(QStringLiteral("please insert the USB disk")), 0);
    // The same call with a name looks for the disk (and warns that there is none).
    QVERIFY(tFileDialog::getSaveFileName(nullptr, QStringLiteral("Save"), QString(), QStringLiteral("a.xml"), QString())
                .isEmpty());
    QCOMPARE(warningCount(QStringLiteral("please insert the USB disk")), 1);
}

void TestFileDialog::existingDirectoryGetter()
{
    useDisk(true);
    whenDialogShows([this](tFileDialog *d) {
        auto *model = qobject_cast<QFileSystemModel *>(view(d)->model());
        QTRY_VERIFY(model->rowCount(view(d)->rootIndex()) >= 1);
        doubleClick(d, m_root + QStringLiteral("/sub"));
        QTRY_VERIFY(model->rowCount(view(d)->rootIndex()) == 1);
        click(d, m_root + QStringLiteral("/sub/deeper"));
        QTest::mouseClick(button(d, "btnOk"), Qt::LeftButton);
    });
    QCOMPARE(tFileDialog::getExistingDirectory(nullptr, QStringLiteral("Folder"), QString()),
             m_root + QStringLiteral("/sub/deeper"));
    whenDialogShows([](tFileDialog *d) { QTest::mouseClick(d->findChild<QPushButton *>(QStringLiteral("btnOk")), Qt::LeftButton); });
    QVERIFY(tFileDialog::getExistingDirectory(nullptr, QStringLiteral("Folder"), QString()).isEmpty());
}

void TestFileDialog::fileSyncSucceeds()
{
    QCOMPARE(tFileDialog::SystemFileSync(), 0);
}

QTEST_MAIN(TestFileDialog)
#include "tst_tfiledialog.moc"
