#include "jogpanel.h"
#include "logview.h"
#include "mainwindow.h"
#include "navigationview.h"
#include "pendanttestutil.h"
#include "statusbar.h"

#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>
#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QDialog>
#include <QMessageBox>
#include <QProgressDialog>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

namespace {

class PageModule : public dwel::BModule
{
public:
    QString name() const override { return QStringLiteral("pagemodule"); }
};

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void layout();
    void showPage_data();
    void showPage();
    void navigationClickShowsPage();
    void jogToggle();
    void jogFollowsModalDialog();
    void jogStaysForMessagesAndProgress_data();
    void jogStaysForMessagesAndProgress();
};

void TestMainWindow::init()
{
    resetHost();
}

void TestMainWindow::layout()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.size(), QSize(1280, 800));
    QVERIFY(window.findChild<StatusBar *>(QStringLiteral("statusBar")));
    QVERIFY(window.findChild<NavigationView *>(QStringLiteral("treeNav")));
    QVERIFY(window.findChild<LogView *>(QStringLiteral("lstLog")));
    QVERIFY(window.findChild<JogPanel *>(QStringLiteral("jogPanel")));
    QCOMPARE(window.centerWidget()->parentWidget() != nullptr, true);
    QVERIFY(window.isAncestorOf(window.centerWidget()));
    QCOMPARE(window.currentPage(), NavigationView::homePage());
    const QPixmap shot = window.grab();
    QCOMPARE(shot.size(), QSize(1280, 800));
}

void TestMainWindow::showPage_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("found");
    QTest::newRow("by navigation name") << "demo.page" << true;
    QTest::newRow("by title") << "Demo" << true;
    QTest::newRow("by title, other case") << "demo" << true;
    QTest::newRow("unknown") << "nothing" << false;
}

void TestMainWindow::showPage()
{
    QFETCH(QString, name);
    QFETCH(bool, found);
    PageModule module;
    MainWindow window;
    orba::ModuleObject *entry =
        kx::tnav::registerPage(&module, QStringLiteral("Demo"), QStringLiteral("robot.pack"), QString(), -1);
    entry->set(&module, QStringLiteral("nav"), QStringLiteral("demo.page"));
    auto *page = new QLabel(QStringLiteral("demo"));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("demo.page"), page));
    window.navigation()->rebuild();

    QCOMPARE(window.showPage(name), found);
    QCOMPARE(window.currentPage(), found ? QStringLiteral("demo.page") : NavigationView::homePage());
    if (found) {
        QCOMPARE(window.centerWidget()->currentWidget(), page);
        QCOMPARE(window.findChild<QLabel *>(QStringLiteral("lblPageTitle"))->text(),
                 QStringLiteral("Robot > Pack > Demo"));
        QCOMPARE(window.navigation()->currentItem()->text(0), QStringLiteral("Demo"));
    }
}

void TestMainWindow::navigationClickShowsPage()
{
    PageModule module;
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    orba::ModuleObject *entry =
        kx::tnav::registerPage(&module, QStringLiteral("Demo"), QStringLiteral("robot.pack"), QString(), -1);
    entry->set(&module, QStringLiteral("nav"), QStringLiteral("demo.page"));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("demo.page"), new QLabel(QStringLiteral("demo"))));
    QTRY_VERIFY(window.navigation()->itemForPage(QStringLiteral("demo.page")));
    NavigationView *nav = window.navigation();
    QTest::mouseClick(nav->viewport(), Qt::LeftButton, {},
                      nav->visualItemRect(nav->itemForPage(QStringLiteral("demo.page"))).center());
    QCOMPARE(window.currentPage(), QStringLiteral("demo.page"));
    QTest::mouseClick(nav->viewport(), Qt::LeftButton, {},
                      nav->visualItemRect(nav->itemForPage(NavigationView::homePage())).center());
    QCOMPARE(window.currentPage(), NavigationView::homePage());
}

void TestMainWindow::jogToggle()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *toggle = window.findChild<QPushButton *>(QStringLiteral("btnToggleJog"));
    QVERIFY(window.jogPanel()->isVisible());
    QTest::mouseClick(toggle, Qt::LeftButton);
    QVERIFY(!window.jogPanel()->isVisible());
    QTest::mouseClick(toggle, Qt::LeftButton);
    QVERIFY(window.jogPanel()->isVisible());
}

void TestMainWindow::jogFollowsModalDialog()
{
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    auto *dialog = new QDialog(&window);
    dialog->setModal(true);
    dialog->show();
    QTRY_VERIFY(window.isJogFloating());
    auto *floating = dialog->findChild<QWidget *>(QStringLiteral("jogWindow"));
    QVERIFY(floating);
    QVERIFY(floating->isVisible());
    QVERIFY(floating->findChild<JogPanel *>());
    QVERIFY(!window.jogPanel()->isVisible());

    // The floating panel takes input while the dialog blocks the window: without a controller it
    // says there is none, and a press changes nothing to that.
    QVERIFY(QTest::qWaitForWindowExposed(floating));
    auto *panel = floating->findChild<JogPanel *>();
    auto *status = panel->findChild<QLabel *>(QStringLiteral("lblJogStatus"));
    QCOMPARE(status->text(), QStringLiteral("No controller"));
    QTest::mouseClick(panel->findChild<QPushButton *>(QStringLiteral("btnJogPlus0")), Qt::LeftButton);
    QCOMPARE(status->text(), QStringLiteral("No controller"));
    delete dialog;
    QTRY_VERIFY(!window.isJogFloating());
    QVERIFY(window.jogPanel()->isVisible());
}

void TestMainWindow::jogStaysForMessagesAndProgress_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("host message box") << "msgBox";
    QTest::newRow("message box") << "QMessageBox";
    QTest::newRow("progress dialog") << "QProgressDialog";
}

void TestMainWindow::jogStaysForMessagesAndProgress()
{
    QFETCH(QString, kind);
    MainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QDialog *dialog = nullptr;
    if (kind == QLatin1String("QMessageBox")) {
        dialog = new QMessageBox(QMessageBox::Information, QStringLiteral("t"), QStringLiteral("x"), QMessageBox::Ok, &window);
    } else if (kind == QLatin1String("QProgressDialog")) {
        auto *progress = new QProgressDialog(&window);
        progress->setMinimumDuration(0);
        dialog = progress;
    } else {
        dialog = new QDialog(&window);
        dialog->setObjectName(kind);
    }
    dialog->setModal(true);
    dialog->show();
    QTRY_VERIFY(QApplication::activeModalWidget() == dialog);
    QCoreApplication::processEvents();
    QVERIFY(!window.isJogFloating());
    QVERIFY(!dialog->findChild<QWidget *>(QStringLiteral("jogWindow")));
    delete dialog;
}

QTEST_MAIN(TestMainWindow)
#include "tst_mainwindow.moc"

