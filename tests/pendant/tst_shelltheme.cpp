#include "pendanttestutil.h"
#include "shelltheme.h"

#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStyle>
#include <QStyleOptionSpinBox>
#include <QTableWidget>
#include <QTimer>
#include <QVBoxLayout>
#include <QtTest>

// The shell's look on every window: touch-sized rows, entries and arrows, dark dialogs and
// message boxes with one font.
class TestShellTheme : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void spinBoxArrowsAreTouchTargets_data();
    void spinBoxArrowsAreTouchTargets();
    void spinBoxWithoutArrowsKeepsItsRoom();
    void comboBoxEntriesAreTouchTargets();
    void tableRowsAreTouchTargets();
    void dialogsAreDark();
    void hostMessageBoxFollowsTheTheme_data();
    void hostMessageBoxFollowsTheTheme();
};

namespace {

QRect arrowRect(QAbstractSpinBox *spin, QStyle::SubControl which)
{
    QStyleOptionSpinBox opt;
    opt.initFrom(spin);
    opt.subControls = QStyle::SC_All;
    opt.buttonSymbols = spin->buttonSymbols();
    opt.frame = spin->hasFrame();
    opt.stepEnabled = QAbstractSpinBox::StepUpEnabled | QAbstractSpinBox::StepDownEnabled;
    return spin->style()->subControlRect(QStyle::CC_SpinBox, &opt, which, spin);
}

bool isDark(const QColor &c)
{
    return c.lightness() < 80;
}

} // namespace

void TestShellTheme::initTestCase()
{
    shelltheme::apply();
}

void TestShellTheme::init()
{
    resetHost();
}

void TestShellTheme::spinBoxArrowsAreTouchTargets_data()
{
    QTest::addColumn<bool>("floating");
    QTest::newRow("integer") << false;
    QTest::newRow("decimal") << true;
}

void TestShellTheme::spinBoxArrowsAreTouchTargets()
{
    QFETCH(bool, floating);
    QDialog dialog;
    auto *layout = new QVBoxLayout(&dialog);
    QAbstractSpinBox *spin = nullptr;
    if (floating) {
        auto *d = new QDoubleSpinBox(&dialog);
        d->setRange(-1000, 1000);
        d->setValue(10);
        spin = d;
    } else {
        auto *i = new QSpinBox(&dialog);
        i->setRange(-1000, 1000);
        i->setValue(10);
        spin = i;
    }
    layout->addWidget(spin);
    dialog.resize(400, 120);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));

    const QRect up = arrowRect(spin, QStyle::SC_SpinBoxUp);
    const QRect down = arrowRect(spin, QStyle::SC_SpinBoxDown);
    for (const QRect &r : {up, down}) {
        QVERIFY2(r.width() >= shelltheme::MinTouch && r.height() >= shelltheme::MinTouch,
                 qPrintable(QStringLiteral("%1x%2").arg(r.width()).arg(r.height())));
        QVERIFY(spin->rect().contains(r));
    }
    QVERIFY(!up.intersects(down));
    QVERIFY(spin->height() >= shelltheme::MinTouch);

    // Where they are drawn is where they work.
    const QString before = spin->text();
    QTest::mouseClick(spin, Qt::LeftButton, Qt::NoModifier, up.center());
    QVERIFY(spin->text() != before);
    QTest::mouseClick(spin, Qt::LeftButton, Qt::NoModifier, down.center());
    QCOMPARE(spin->text(), before);
}

void TestShellTheme::spinBoxWithoutArrowsKeepsItsRoom()
{
    // The host's numeric editors have no arrows: their text gets the room arrows would take.
    QDialog dialog;
    auto *layout = new QVBoxLayout(&dialog);
    auto *spin = new QDoubleSpinBox(&dialog);
    spin->setButtonSymbols(QAbstractSpinBox::NoButtons);
    spin->setRange(-10000, 10000);
    spin->setDecimals(3);
    spin->setValue(-1234.567);
    spin->setFixedWidth(130);
    layout->addWidget(spin);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    auto *edit = spin->findChild<QLineEdit *>();
    QVERIFY(edit);
    QVERIFY2(edit->width() >= edit->fontMetrics().horizontalAdvance(spin->text()),
             qPrintable(QStringLiteral("%1 < %2").arg(edit->width()).arg(edit->fontMetrics().horizontalAdvance(spin->text()))));
}

void TestShellTheme::comboBoxEntriesAreTouchTargets()
{
    QDialog dialog;
    auto *layout = new QVBoxLayout(&dialog);
    auto *combo = new QComboBox(&dialog);
    combo->addItems({QStringLiteral("tool0"), QStringLiteral("gripper"), QStringLiteral("suction")});
    layout->addWidget(combo);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(combo->height() >= shelltheme::MinTouch);
    combo->showPopup();
    QAbstractItemView *view = combo->view();
    QTRY_VERIFY(view->isVisible());
    for (int row = 0; row < combo->count(); ++row) {
        const int height = view->visualRect(view->model()->index(row, 0)).height();
        QVERIFY2(height >= shelltheme::MinTouch, qPrintable(QStringLiteral("entry %1: %2 px").arg(row).arg(height)));
    }
    combo->hidePopup();
}

void TestShellTheme::tableRowsAreTouchTargets()
{
    QDialog dialog;
    auto *layout = new QVBoxLayout(&dialog);
    auto *table = new QTableWidget(3, 2, &dialog);
    layout->addWidget(table);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    for (int row = 0; row < table->rowCount(); ++row)
        QVERIFY(table->rowHeight(row) >= shelltheme::MinTouch);
    // Rows added later too.
    table->setRowCount(5);
    QVERIFY(table->rowHeight(4) >= shelltheme::MinTouch);
}

void TestShellTheme::dialogsAreDark()
{
    QMessageBox box(QMessageBox::Warning, QStringLiteral("Title"), QStringLiteral("Some text"), QMessageBox::Ok);
    box.show();
    QVERIFY(QTest::qWaitForWindowExposed(&box));
    const QImage image = box.grab().toImage();
    QVERIFY(isDark(image.pixelColor(2, 2)));
    QAbstractButton *ok = box.button(QMessageBox::Ok);
    QVERIFY(ok->height() >= shelltheme::MinTouch);
    QCOMPARE(ok->font().family(), box.font().family());
}

void TestShellTheme::hostMessageBoxFollowsTheTheme_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("question") << "q";
    QTest::newRow("warning") << "warning";
}

void TestShellTheme::hostMessageBoxFollowsTheTheme()
{
    QFETCH(QString, kind);
    tcore::ManagerHelper *helper = tcore::ManagerHelper::instance();
    helper->setMsgTestMode(false);
    QWidget parent;
    parent.resize(800, 600);
    parent.show();
    parent.activateWindow();
    QVERIFY(QTest::qWaitForWindowExposed(&parent));

    QStringList problems;
    bool seen = false;
    QTimer::singleShot(200, this, [&] {
        QWidget *box = QApplication::activeModalWidget();
        if (!box || box->objectName() != QLatin1String("msgBox")) {
            problems << QStringLiteral("no message box");
            return;
        }
        seen = true;
        const QImage image = box->grab().toImage();
        if (!isDark(image.pixelColor(2, 2)))
            problems << QStringLiteral("background %1").arg(image.pixelColor(2, 2).name());
        auto *text = box->findChild<QLabel *>(QStringLiteral("lblMsgText"));
        if (!text || isDark(text->palette().color(text->foregroundRole())))
            problems << QStringLiteral("text not light on dark");
        const QList<QPushButton *> buttons = box->findChildren<QPushButton *>();
        for (QPushButton *b : buttons) {
            if (b->height() < shelltheme::MinTouch)
                problems << QStringLiteral("button %1: %2 px").arg(b->text()).arg(b->height());
            if (text && b->font().family() != text->font().family())
                problems << QStringLiteral("font %1 vs %2").arg(b->font().family(), text->font().family());
        }
        QTest::mouseClick(box->findChild<QPushButton *>(QStringLiteral("btnMsgOk")), Qt::LeftButton);
    });
    helper->execMsgOk(kind, QStringLiteral("Delete the pallet?"));
    helper->setMsgTestMode(true);
    QVERIFY(seen);
    QVERIFY2(problems.isEmpty(), qPrintable(problems.join(QLatin1String("; "))));
}

QTEST_MAIN(TestShellTheme)
#include "tst_shelltheme.moc"
