#include "palletfixture.h"

#include "module/pointgen.h"
#include "module/toolset.h"
#include "pages/newpalletdialog.h"

#include <kx/globaluniqueptr.h>
#include <kx/kx.h>

#include <QApplication>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QSignalSpy>
#include <QSpinBox>
#include <QtTest>

namespace {

QStringList palletNames()
{
    QStringList names;
    for (orba::ModuleObject *pallet : tpallet::palletsNode()->cmobjs(false))
        names << pallet->c(QStringLiteral("name"), false)->getString();
    return names;
}

template<typename T>
T *widget(QWidget *dialog, const char *name)
{
    T *found = dialog->findChild<T *>(QLatin1String(name));
    if (!found)
        qFatal("widget %s missing", name);
    return found;
}

} // namespace

class TestNewPalletDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formLayoutAndLimits();
    void proposesFirstFreeName_data();
    void proposesFirstFreeName();
    void validatorFiltersTyping();
    void cloneToggleSwitchesInputs();
    void typedCountShowsWhatIsUsed_data();
    void typedCountShowsWhatIsUsed();
    void typedCountInEditModeShowsWhatIsUsed();
    void rejections_data();
    void rejections();
    void nameOf32Accepted();
    void placesOf1200Accepted();
    void addSendsCompletePallet();
    void addCountMismatchLogged_data();
    void addCountMismatchLogged();
    void cloneCopiesWholePallet();
    void cloneChecksSpinBoxProduct();
    void cloneWithEmptyListFallsBackToDefault();
    void cloneIsCopiedWholeNotCompleted();
    void editFillsFields();
    void editModeCloneRadioOnlySwitchesInputs();
    void editKeepingNameIsNotRepeated();
    void editDescriptionOnlyRenames();
    void editRowOnlyRegenerates();
    void editNothingSendsNothing();
    void editToTakenNameRejected();
    void cancelChangesNothing();
    void closesWhenPalletDestroyed();
    void newDialogIsBoundToNothing();
    void initPalletCompletesDefault();
    void initPalletAddsMissingRetract();
    void initPalletKeepsSetReference();
    void initPalletKeepsPresentNullReference();

private:
    NewPalletDialog *open(orba::ModuleObject *pallet);
    void typeName(NewPalletDialog *dialog, const QString &name);
    void clickOk(NewPalletDialog *dialog);
    QList<QVariantMap> errorEntries() const;
    void typeCount(NewPalletDialog *dialog, QSpinBox *spin, const QString &text);
    orba::ModuleObject *addGenerated(const QString &name, int row, int col);

    PalletFixture m_fx;
    QPointer<NewPalletDialog> m_dialog;
};

void TestNewPalletDialog::init()
{
    m_fx.setUp();
    m_fx.connectController();
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
}

void TestNewPalletDialog::cleanup()
{
    delete m_dialog.data();
    m_fx.tearDown();
}

NewPalletDialog *TestNewPalletDialog::open(orba::ModuleObject *pallet)
{
    m_dialog = new NewPalletDialog(pallet);
    m_dialog->show();
    return m_dialog.data();
}

void TestNewPalletDialog::typeName(NewPalletDialog *dialog, const QString &name)
{
    auto *edit = widget<QLineEdit>(dialog, "edtName");
    edit->clear();
    QTest::keyClicks(edit, name);
}

void TestNewPalletDialog::clickOk(NewPalletDialog *dialog)
{
    QTest::mouseClick(widget<QPushButton>(dialog, "btnOk"), Qt::LeftButton);
}

// Types into a spin box as the operator does: a click for focus, the old text selected and replaced.
void TestNewPalletDialog::typeCount(NewPalletDialog *dialog, QSpinBox *spin, const QString &text)
{
    QApplication::setActiveWindow(dialog);
    QVERIFY(QTest::qWaitForWindowActive(dialog));
    // The left end of the box: the arrows sit on the right.
    QTest::mouseClick(spin, Qt::LeftButton, Qt::NoModifier, QPoint(4, spin->height() / 2));
    QVERIFY(spin->hasFocus());
    spin->selectAll();
    if (text.isEmpty())
        QTest::keyClick(spin, Qt::Key_Backspace);
    else
        QTest::keyClicks(spin, text);
}

QList<QVariantMap> TestNewPalletDialog::errorEntries() const
{
    QList<QVariantMap> errors;
    for (const QVariantMap &entry : tcore::ManagerHelper::instance()->logHistory()) {
        if (entry.value(QStringLiteral("level")).toString() == QLatin1String("error"))
            errors << entry;
    }
    return errors;
}

orba::ModuleObject *TestNewPalletDialog::addGenerated(const QString &name, int row, int col)
{
    orba::ModuleObject *pallet = PalletFixture::addLocalPallet(name, row, col, QStringLiteral("desc of ") + name);
    NewPalletDialog::initPallet(pallet);
    return pallet;
}

void TestNewPalletDialog::formLayoutAndLimits()
{
    NewPalletDialog *dialog = open(nullptr);
    QCOMPARE(dialog->objectName(), QStringLiteral("NewPalletDialog"));
    for (const char *name : {"lblRow", "lblCol"})
        QVERIFY(dialog->findChild<QLabel *>(QLatin1String(name)));
    QCOMPARE(widget<QLabel>(dialog, "lblRow")->text(), QStringLiteral("Row"));
    QCOMPARE(widget<QLabel>(dialog, "lblCol")->text(), QStringLiteral("Column"));
    QCOMPARE(widget<QRadioButton>(dialog, "rdbClone")->text(), QStringLiteral("Clone"));
    for (const char *name : {"spnRow", "spnCol"}) {
        auto *spin = widget<QSpinBox>(dialog, name);
        QCOMPARE(spin->minimum(), 1);
        QCOMPARE(spin->maximum(), 1200);
        QVERIFY(spin->minimumHeight() >= 36);
        QCOMPARE(spin->focusPolicy(), Qt::ClickFocus);
    }
    for (const char *name : {"edtName", "edtDesc"}) {
        auto *edit = widget<QLineEdit>(dialog, name);
        QVERIFY(edit->minimumHeight() >= 36);
        QCOMPARE(edit->focusPolicy(), Qt::ClickFocus);
    }
    for (const char *name : {"btnOk", "btnCancel"}) {
        auto *button = widget<QPushButton>(dialog, name);
        QVERIFY(button->minimumWidth() >= 108);
        QVERIFY(button->minimumHeight() >= 36);
        QCOMPARE(button->focusPolicy(), Qt::NoFocus);
    }
    QCOMPARE(widget<QPushButton>(dialog, "btnOk")->text(), QStringLiteral("Ok"));
    QCOMPARE(widget<QPushButton>(dialog, "btnCancel")->text(), QStringLiteral("Cancel"));
    QVERIFY(dialog->testAttribute(Qt::WA_DeleteOnClose));
    QCOMPARE(kx::uniqueObject(QStringLiteral("tpallet.dialog")), static_cast<QObject *>(dialog));
}

void TestNewPalletDialog::proposesFirstFreeName_data()
{
    QTest::addColumn<QStringList>("existing");
    QTest::addColumn<QString>("proposal");
    QTest::newRow("empty list") << QStringList() << QStringLiteral("tray0");
    QTest::newRow("tray0 and tray2") << QStringList{"tray0", "tray2"} << QStringLiteral("tray1");
    QTest::newRow("tray0 to tray2") << QStringList{"tray2", "tray1", "tray0"} << QStringLiteral("tray3");
    QTest::newRow("other names") << QStringList{"Tray0", "tray01"} << QStringLiteral("tray0");
}

void TestNewPalletDialog::proposesFirstFreeName()
{
    QFETCH(QStringList, existing);
    QFETCH(QString, proposal);
    for (const QString &name : existing)
        PalletFixture::addLocalPallet(name, 1, 1);
    NewPalletDialog *dialog = open(nullptr);
    QCOMPARE(widget<QLineEdit>(dialog, "edtName")->text(), proposal);
    auto *combo = widget<QComboBox>(dialog, "cmbPallet");
    QStringList items;
    for (int i = 0; i < combo->count(); ++i)
        items << combo->itemText(i);
    QCOMPARE(items, existing);
}

void TestNewPalletDialog::validatorFiltersTyping()
{
    NewPalletDialog *dialog = open(nullptr);
    typeName(dialog, QStringLiteral("ab c!d_e-F9.+"));
    QCOMPARE(widget<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("abcd_e-F9"));
}

void TestNewPalletDialog::cloneToggleSwitchesInputs()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 2, 2);
    NewPalletDialog *dialog = open(nullptr);
    auto *clone = widget<QRadioButton>(dialog, "rdbClone");
    QVERIFY(!clone->isChecked());
    QVERIFY(!widget<QComboBox>(dialog, "cmbPallet")->isEnabled());
    QVERIFY(widget<QSpinBox>(dialog, "spnRow")->isEnabled());
    QVERIFY(widget<QSpinBox>(dialog, "spnCol")->isEnabled());

    QTest::mouseClick(clone, Qt::LeftButton);
    QVERIFY(clone->isChecked());
    QVERIFY(widget<QComboBox>(dialog, "cmbPallet")->isEnabled());
    QVERIFY(!widget<QSpinBox>(dialog, "spnRow")->isEnabled());
    QVERIFY(!widget<QSpinBox>(dialog, "spnCol")->isEnabled());

    QTest::mouseClick(clone, Qt::LeftButton);
    QVERIFY(!clone->isChecked());
    QVERIFY(!widget<QComboBox>(dialog, "cmbPallet")->isEnabled());
    QVERIFY(widget<QSpinBox>(dialog, "spnRow")->isEnabled());
}

void TestNewPalletDialog::typedCountShowsWhatIsUsed_data()
{
    QTest::addColumn<QString>("box");
    QTest::addColumn<QString>("typed");
    QTest::addColumn<bool>("byOk");
    QTest::addColumn<int>("used");
    // The boxes hold 5 before typing; text that is no count leaves that value in force.
    for (const char *box : {"spnRow", "spnCol"}) {
        for (bool byOk : {false, true}) {
            const QString how = byOk ? QStringLiteral("Ok") : QStringLiteral("focus lost");
            const QString name = QLatin1String(box) + QStringLiteral(", %1, ");
            QTest::newRow(qPrintable(name.arg(how) + QStringLiteral("zero"))) << box << "0" << byOk << 5;
            QTest::newRow(qPrintable(name.arg(how) + QStringLiteral("two zeros"))) << box << "00" << byOk << 5;
            QTest::newRow(qPrintable(name.arg(how) + QStringLiteral("erased"))) << box << "" << byOk << 5;
            QTest::newRow(qPrintable(name.arg(how) + QStringLiteral("valid 7"))) << box << "7" << byOk << 7;
            QTest::newRow(qPrintable(name.arg(how) + QStringLiteral("past the maximum"))) << box << "12345" << byOk << 123;
        }
    }
}

void TestNewPalletDialog::typedCountShowsWhatIsUsed()
{
    QFETCH(QString, box);
    QFETCH(QString, typed);
    QFETCH(bool, byOk);
    QFETCH(int, used);
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":1}");
    NewPalletDialog *dialog = open(nullptr);
    auto *row = widget<QSpinBox>(dialog, "spnRow");
    auto *col = widget<QSpinBox>(dialog, "spnCol");
    row->setValue(5);
    col->setValue(5);
    QSpinBox *spin = box == QLatin1String("spnRow") ? row : col;
    auto *name = widget<QLineEdit>(dialog, "edtName");
    if (byOk)
        name->clear(); // so that Ok is refused and the dialog stays open
    typeCount(dialog, spin, typed);
    if (QTest::currentTestFailed())
        return;

    if (byOk) {
        clickOk(dialog);
        QCOMPARE(errorEntries().size(), 1);
        QCOMPARE(errorEntries().first().value(QStringLiteral("title")).toString(), QStringLiteral("Tray name is empty!"));
        // Ok takes no focus: the box still has it, so what it shows now is Ok's doing.
        QVERIFY(spin->hasFocus());
        QCOMPARE(spin->value(), used);
        QCOMPARE(spin->text(), QString::number(used));

        name->setText(QStringLiteral("tray0"));
        clickOk(dialog);
        orba::ModuleObject *pallet = tpallet::getPallet(QStringLiteral("tray0"));
        QVERIFY(!pallet->isEmpty());
        QCOMPARE(pallet->r(box == QLatin1String("spnRow") ? QStringLiteral("pattern.row") : QStringLiteral("pattern.col"))->getInt(), used);
    } else {
        // Focus goes to the description, as when the operator taps it.
        auto *desc = widget<QLineEdit>(dialog, "edtDesc");
        QTest::mouseClick(desc, Qt::LeftButton);
        QVERIFY(desc->hasFocus());
    }
    // What is on screen is the count in force.
    QCOMPARE(spin->value(), used);
    QCOMPARE(spin->text(), QString::number(used));
}

void TestNewPalletDialog::typedCountInEditModeShowsWhatIsUsed()
{
    PalletFixture::addLocalPallet(QStringLiteral("taken"), 1, 1);
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("kept"), 3, 4);
    NewPalletDialog *dialog = open(pallet);
    auto *row = widget<QSpinBox>(dialog, "spnRow");
    auto *name = widget<QLineEdit>(dialog, "edtName");
    typeCount(dialog, row, QStringLiteral("0"));
    QCOMPARE(row->text(), QStringLiteral("0"));
    name->setText(QStringLiteral("taken"));
    clickOk(dialog);
    // Refused, still open: the box shows the pallet's count, the one that is in force.
    QCOMPARE(errorEntries().size(), 1);
    QVERIFY(row->hasFocus());
    QCOMPARE(row->text(), QStringLiteral("3"));
    QCOMPARE(row->value(), 3);

    name->setText(QStringLiteral("kept"));
    clickOk(dialog);
    // The pallet keeps its rows: nothing regenerated, nothing sent.
    QCOMPARE(pallet->r(QStringLiteral("pattern.row"))->getInt(), 3);
    QVERIFY(m_fx.palletMethods().isEmpty());
}

void TestNewPalletDialog::rejections_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("row");
    QTest::addColumn<int>("col");
    QTest::addColumn<QString>("message");
    QTest::newRow("empty name") << QString() << 2 << 2 << QStringLiteral("Tray name is empty!");
    QTest::newRow("33 characters") << QString(33, QLatin1Char('a')) << 2 << 2
                                   << QStringLiteral("Tray name length is be greater than 32!");
    QTest::newRow("repeated name") << QStringLiteral("taken") << 2 << 2 << QStringLiteral("Tray name is repeated!");
    QTest::newRow("40 x 31 places") << QStringLiteral("big") << 40 << 31
                                    << QStringLiteral("Total wobj number can not be greater than 1200!");
    QTest::newRow("1200 x 2 places") << QStringLiteral("big") << 1200 << 2
                                     << QStringLiteral("Total wobj number can not be greater than 1200!");
}

void TestNewPalletDialog::rejections()
{
    QFETCH(QString, name);
    QFETCH(int, row);
    QFETCH(int, col);
    QFETCH(QString, message);
    PalletFixture::addLocalPallet(QStringLiteral("taken"), 1, 1);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, tpallet::palletsNode(), true, false);
    QSignalSpy refresh(tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false), &orba::ModuleObject::changed);

    NewPalletDialog *dialog = open(nullptr);
    typeName(dialog, name);
    widget<QSpinBox>(dialog, "spnRow")->setValue(row);
    widget<QSpinBox>(dialog, "spnCol")->setValue(col);
    clickOk(dialog);

    const QList<QVariantMap> errors = errorEntries();
    QCOMPARE(errors.size(), 1);
    QCOMPARE(errors.first().value(QStringLiteral("title")).toString(), message);
    // Nothing changed, nothing sent, the dialog stays open with its input.
    QVERIFY(tpallet::palletsNode()->equals(&before));
    QVERIFY(m_fx.palletMethods().isEmpty());
    QCOMPARE(refresh.count(), 0);
    PalletFixture::flushDeletes();
    QVERIFY(m_dialog);
    QVERIFY(m_dialog->isVisible());
    QCOMPARE(widget<QLineEdit>(dialog, "edtName")->text(), name);
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
}

void TestNewPalletDialog::nameOf32Accepted()
{
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":1}");
    NewPalletDialog *dialog = open(nullptr);
    const QString name(32, QLatin1Char('b'));
    typeName(dialog, name);
    clickOk(dialog);
    QVERIFY(errorEntries().isEmpty());
    QCOMPARE(palletNames(), QStringList{name});
    QCOMPARE(m_fx.palletMethods(), QStringList{QStringLiteral("tray.add_one")});
}

void TestNewPalletDialog::placesOf1200Accepted()
{
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":1}");
    NewPalletDialog *dialog = open(nullptr);
    widget<QSpinBox>(dialog, "spnRow")->setValue(40);
    widget<QSpinBox>(dialog, "spnCol")->setValue(30);
    clickOk(dialog);
    QVERIFY(errorEntries().isEmpty());
    orba::ModuleObject *pallet = tpallet::getPallet(QStringLiteral("tray0"));
    QVERIFY(!pallet->isEmpty());
    QCOMPARE(pallet->r(QStringLiteral("pattern.row"))->getInt(), 40);
    QCOMPARE(pallet->r(QStringLiteral("pattern.col"))->getInt(), 30);
    QCOMPARE(pallet->c(QStringLiteral("points"), false)->cmobjCount(), 1200);
    QCOMPARE(pallet->r(QStringLiteral("calibrate.points"))->cmobjCount(), 40);
}

void TestNewPalletDialog::addSendsCompletePallet()
{
    PalletFixture::addLocalPallet(QStringLiteral("first"), 1, 1);
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":2}");
    QSignalSpy refresh(tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false), &orba::ModuleObject::changed);

    NewPalletDialog *dialog = open(nullptr);
    QSignalSpy accepted(dialog, &QDialog::accepted);
    typeName(dialog, QStringLiteral("box_A-1"));
    QTest::keyClicks(widget<QLineEdit>(dialog, "edtDesc"), QStringLiteral("two by three"));
    widget<QSpinBox>(dialog, "spnRow")->setValue(2);
    widget<QSpinBox>(dialog, "spnCol")->setValue(3);
    clickOk(dialog);

    QCOMPARE(palletNames(), (QStringList{"first", "box_A-1"}));
    orba::ModuleObject *pallet = tpallet::palletsNode()->c(1);
    QCOMPARE(pallet->name(), QStringLiteral("#1"));
    QCOMPARE(pallet->c(QStringLiteral("desc"), false)->getString(), QStringLiteral("two by three"));

    // The expected pallet: the default, with the pattern, completed, then named.
    orba::ModuleObject want(QStringLiteral("#1"));
    want.copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
    want.set(nullptr, QStringLiteral("pattern.row"), 2, true);
    want.set(nullptr, QStringLiteral("pattern.col"), 3, true);
    tpallet::identityToolsetNode(want.r(QStringLiteral("calibrate.toolset")));
    tpallet::initWayPointNode(&want);
    tpallet::generatePoints1(&want, nullptr);
    want.set(nullptr, QStringLiteral("name"), QStringLiteral("box_A-1"), true);
    want.set(nullptr, QStringLiteral("desc"), QStringLiteral("two by three"), true);
    QVERIFY(pallet->equals(&want));
    QCOMPARE(pallet->c(QStringLiteral("points"), false)->cmobjCount(), 6);

    const QList<orbat::ScriptedTransport::Request> adds = m_fx.requestsOf(QStringLiteral("tray.add_one"));
    QCOMPARE(m_fx.palletMethods(), QStringList{QStringLiteral("tray.add_one")});
    QCOMPARE(adds.size(), 1);
    QCOMPARE(adds.first().op, QStringLiteral("exec"));
    QCOMPARE(adds.first().paramsJson, orba::json::write(&want));
    QVERIFY(!m_fx.logMessages().contains(QStringLiteral("pallet add error!")));

    QCOMPARE(refresh.count(), 1);
    QCOMPARE(accepted.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
    QVERIFY(errorEntries().isEmpty());
}

void TestNewPalletDialog::addCountMismatchLogged_data()
{
    QTest::addColumn<QByteArray>("data");
    QTest::addColumn<bool>("logged");
    QTest::newRow("count agrees") << QByteArray("{\"size\":1}") << false;
    QTest::newRow("count differs") << QByteArray("{\"size\":4}") << true;
    QTest::newRow("no data") << QByteArray() << true;
}

void TestNewPalletDialog::addCountMismatchLogged()
{
    QFETCH(QByteArray, data);
    QFETCH(bool, logged);
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, data);
    QSignalSpy refresh(tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false), &orba::ModuleObject::changed);
    NewPalletDialog *dialog = open(nullptr);
    clickOk(dialog);

    QCOMPARE(palletNames(), QStringList{QStringLiteral("tray0")}); // kept either way
    QCOMPARE(m_fx.logMessages().count(QStringLiteral("pallet add error!")), logged ? 1 : 0);
    for (const orba::LogLine &line : m_fx.logLines()) {
        if (line.message == QLatin1String("pallet add error!")) {
            QCOMPARE(line.colour, QStringLiteral("\033[31m"));
            QVERIFY(line.tag.startsWith(QLatin1String("[E|")));
        }
    }
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.add_one")).size(), 1); // no retry
    // The row would vanish at the next reload: the operator is told in the configuration log.
    const QList<QVariantMap> errors = errorEntries();
    QCOMPARE(errors.size(), logged ? 1 : 0);
    if (logged) {
        QCOMPARE(errors.first().value(QStringLiteral("title")).toString(),
                 QStringLiteral("Tray tray0 was not stored on the controller, it will be lost at the next reload!"));
    }
    QCOMPARE(refresh.count(), 1);
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TestNewPalletDialog::cloneCopiesWholePallet()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    orba::ModuleObject *source = addGenerated(QStringLiteral("src"), 2, 2);
    source->set(nullptr, QStringLiteral("calibrate.x_span"), 0.6, true);
    source->set(nullptr, QStringLiteral("pattern.s_type"), true, true);
    source->set(nullptr, QStringLiteral("waypoint.approach.trans.#2"), 0.2, true);
    tpallet::generatePoints1(source, nullptr);
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":3}");

    NewPalletDialog *dialog = open(nullptr);
    QTest::mouseClick(widget<QRadioButton>(dialog, "rdbClone"), Qt::LeftButton);
    widget<QComboBox>(dialog, "cmbPallet")->setCurrentIndex(1);
    typeName(dialog, QStringLiteral("copy"));
    QTest::keyClicks(widget<QLineEdit>(dialog, "edtDesc"), QStringLiteral("cloned"));
    clickOk(dialog);

    QCOMPARE(palletNames(), (QStringList{"a", "src", "copy"}));
    orba::ModuleObject *copy = tpallet::getPallet(QStringLiteral("copy"));
    orba::ModuleObject want(QStringLiteral("#2"));
    want.copyFrom(nullptr, source, true, false);
    want.set(nullptr, QStringLiteral("name"), QStringLiteral("copy"), true);
    want.set(nullptr, QStringLiteral("desc"), QStringLiteral("cloned"), true);
    QVERIFY(copy->equals(&want));
    QCOMPARE(copy->r(QStringLiteral("points.#0.approach.trans.#2"))->getDouble(), 0.2);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.add_one")).first().paramsJson, orba::json::write(&want));
}

void TestNewPalletDialog::cloneChecksSpinBoxProduct()
{
    addGenerated(QStringLiteral("small"), 1, 1);
    NewPalletDialog *dialog = open(nullptr);
    widget<QSpinBox>(dialog, "spnRow")->setValue(50);
    widget<QSpinBox>(dialog, "spnCol")->setValue(50);
    QTest::mouseClick(widget<QRadioButton>(dialog, "rdbClone"), Qt::LeftButton);
    clickOk(dialog);
    // The disabled spin boxes still count, although the clone would keep its own 1 x 1.
    QCOMPARE(errorEntries().size(), 1);
    QCOMPARE(errorEntries().first().value(QStringLiteral("title")).toString(),
             QStringLiteral("Total wobj number can not be greater than 1200!"));
    QCOMPARE(palletNames(), QStringList{QStringLiteral("small")});
}

void TestNewPalletDialog::cloneWithEmptyListFallsBackToDefault()
{
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":1}");
    NewPalletDialog *dialog = open(nullptr);
    QCOMPARE(widget<QComboBox>(dialog, "cmbPallet")->count(), 0);
    widget<QSpinBox>(dialog, "spnRow")->setValue(3);
    widget<QSpinBox>(dialog, "spnCol")->setValue(2);
    QTest::mouseClick(widget<QRadioButton>(dialog, "rdbClone"), Qt::LeftButton);
    clickOk(dialog);

    orba::ModuleObject *pallet = tpallet::getPallet(QStringLiteral("tray0"));
    QVERIFY(!pallet->isEmpty());
    QCOMPARE(pallet->r(QStringLiteral("pattern.row"))->getInt(), 3);
    QCOMPARE(pallet->r(QStringLiteral("pattern.col"))->getInt(), 2);
    QCOMPARE(pallet->c(QStringLiteral("points"), false)->cmobjCount(), 6);
    QCOMPARE(pallet->r(QStringLiteral("waypoint"))->cmobjNames(), (QStringList{"wobj", "approach", "retract"}));
}

void TestNewPalletDialog::cloneIsCopiedWholeNotCompleted()
{
    // A source that initPallet would complete: null toolset, no "retract", places left as they were.
    orba::ModuleObject *source = PalletFixture::addLocalPallet(QStringLiteral("bare"), 2, 2);
    tpallet::initWayPointNode(source);
    orba::ModuleObject *waypoint = source->c(QStringLiteral("waypoint"), false);
    waypoint->remove(nullptr, waypoint->c(QStringLiteral("retract"), false));
    source->set(nullptr, QStringLiteral("points.#0.wobj.trans.#0"), 0.75, true);
    QVERIFY(source->r(QStringLiteral("calibrate.toolset"))->isNull());
    m_fx.transport()->setReply(QStringLiteral("tray.add_one"), 0, "{\"size\":2}");

    NewPalletDialog *dialog = open(nullptr);
    QTest::mouseClick(widget<QRadioButton>(dialog, "rdbClone"), Qt::LeftButton);
    widget<QComboBox>(dialog, "cmbPallet")->setCurrentIndex(0);
    typeName(dialog, QStringLiteral("twin"));
    clickOk(dialog);

    // Copied whole and only renamed: no identity toolset, no retract added, places not regenerated.
    orba::ModuleObject *twin = tpallet::getPallet(QStringLiteral("twin"));
    QVERIFY(!twin->isEmpty());
    orba::ModuleObject want(QStringLiteral("#1"));
    want.copyFrom(nullptr, source, true, false);
    want.set(nullptr, QStringLiteral("name"), QStringLiteral("twin"), true);
    want.set(nullptr, QStringLiteral("desc"), QString(), true);
    QVERIFY(twin->equals(&want));
    QVERIFY(twin->r(QStringLiteral("calibrate.toolset"))->isNull());
    QCOMPARE(twin->c(QStringLiteral("waypoint"), false)->cmobjNames(), (QStringList{"wobj", "approach"}));
    QCOMPARE(twin->r(QStringLiteral("points.#0.wobj.trans.#0"))->getDouble(), 0.75);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.add_one")).first().paramsJson, orba::json::write(&want));
}

void TestNewPalletDialog::editFillsFields()
{
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("edit_me"), 7, 9);
    PalletFixture::addLocalPallet(QStringLiteral("other"), 1, 1);
    NewPalletDialog *dialog = open(pallet);
    QCOMPARE(widget<QLineEdit>(dialog, "edtName")->text(), QStringLiteral("edit_me"));
    QCOMPARE(widget<QLineEdit>(dialog, "edtDesc")->text(), QStringLiteral("desc of edit_me"));
    QCOMPARE(widget<QSpinBox>(dialog, "spnRow")->value(), 7);
    QCOMPARE(widget<QSpinBox>(dialog, "spnCol")->value(), 9);
    QCOMPARE(widget<QComboBox>(dialog, "cmbPallet")->count(), 2);
    QVERIFY(!widget<QComboBox>(dialog, "cmbPallet")->isEnabled());
    // The clone radio stays as the form has it: offered, not checked.
    QVERIFY(widget<QRadioButton>(dialog, "rdbClone")->isEnabled());
    QVERIFY(!widget<QRadioButton>(dialog, "rdbClone")->isChecked());
    QVERIFY(widget<QSpinBox>(dialog, "spnRow")->isEnabled());
    QVERIFY(widget<QSpinBox>(dialog, "spnCol")->isEnabled());
}

void TestNewPalletDialog::editModeCloneRadioOnlySwitchesInputs()
{
    PalletFixture::addLocalPallet(QStringLiteral("other"), 1, 1);
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("mine"), 2, 3);
    NewPalletDialog *dialog = open(pallet);
    widget<QSpinBox>(dialog, "spnRow")->setValue(4);
    auto *clone = widget<QRadioButton>(dialog, "rdbClone");
    QTest::mouseClick(clone, Qt::LeftButton);
    QVERIFY(clone->isChecked());
    QVERIFY(widget<QComboBox>(dialog, "cmbPallet")->isEnabled());
    QVERIFY(!widget<QSpinBox>(dialog, "spnRow")->isEnabled());
    QVERIFY(!widget<QSpinBox>(dialog, "spnCol")->isEnabled());
    widget<QComboBox>(dialog, "cmbPallet")->setCurrentIndex(0);
    clickOk(dialog);

    // Editing never clones: the pallet takes the counts of the (disabled) boxes, nothing is added.
    QCOMPARE(m_fx.palletMethods(), QStringList{QStringLiteral("tray.set.one")});
    QCOMPARE(palletNames(), (QStringList{"other", "mine"}));
    QCOMPARE(pallet->r(QStringLiteral("pattern.row"))->getInt(), 4);
    QCOMPARE(pallet->r(QStringLiteral("pattern.col"))->getInt(), 3);
    QCOMPARE(pallet->c(QStringLiteral("points"), false)->cmobjCount(), 12);
}

void TestNewPalletDialog::editKeepingNameIsNotRepeated()
{
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("same"), 2, 2);
    NewPalletDialog *dialog = open(pallet);
    clickOk(dialog);
    QVERIFY(errorEntries().isEmpty());
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TestNewPalletDialog::editDescriptionOnlyRenames()
{
    PalletFixture::addLocalPallet(QStringLiteral("zero"), 1, 1);
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("one"), 2, 2);
    orba::ModuleObject points(QStringLiteral("points"));
    points.copyFrom(nullptr, pallet->c(QStringLiteral("points"), false), true, false);
    QSignalSpy refresh(tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false), &orba::ModuleObject::changed);

    NewPalletDialog *dialog = open(pallet);
    auto *desc = widget<QLineEdit>(dialog, "edtDesc");
    desc->clear();
    QTest::keyClicks(desc, QStringLiteral("new words"));
    clickOk(dialog);

    QCOMPARE(m_fx.palletMethods(), QStringList{QStringLiteral("tray.set.name")});
    const orbat::ScriptedTransport::Request rename = m_fx.requestsOf(QStringLiteral("tray.set.name")).first();
    QCOMPARE(rename.paramsJson, QByteArray("{\"index\":1,\"name\":\"one\",\"desc\":\"new words\"}"));
    QCOMPARE(pallet->c(QStringLiteral("desc"), false)->getString(), QStringLiteral("new words"));
    QVERIFY(pallet->c(QStringLiteral("points"), false)->equals(&points));
    QCOMPARE(refresh.count(), 1);
}

void TestNewPalletDialog::editRowOnlyRegenerates()
{
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("grow"), 2, 3);
    QCOMPARE(pallet->c(QStringLiteral("points"), false)->cmobjCount(), 6);
    NewPalletDialog *dialog = open(pallet);
    widget<QSpinBox>(dialog, "spnRow")->setValue(4);
    clickOk(dialog);

    QCOMPARE(m_fx.palletMethods(), QStringList{QStringLiteral("tray.set.one")});
    QCOMPARE(pallet->r(QStringLiteral("pattern.row"))->getInt(), 4);
    QCOMPARE(pallet->r(QStringLiteral("pattern.col"))->getInt(), 3);
    QCOMPARE(pallet->c(QStringLiteral("points"), false)->cmobjCount(), 12);
    QCOMPARE(pallet->r(QStringLiteral("calibrate.points"))->cmobjCount(), 4);
    const orbat::ScriptedTransport::Request save = m_fx.requestsOf(QStringLiteral("tray.set.one")).first();
    QCOMPARE(save.paramsJson, orba::json::write(pallet));
    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QVERIFY(!log.isEmpty());
    QCOMPARE(log.last().value(QStringLiteral("title")).toString(), QStringLiteral("The way points have regenerated!"));
    QCOMPARE(log.last().value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
}

void TestNewPalletDialog::editNothingSendsNothing()
{
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("still"), 2, 2);
    QSignalSpy refresh(tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false), &orba::ModuleObject::changed);
    NewPalletDialog *dialog = open(pallet);
    QSignalSpy accepted(dialog, &QDialog::accepted);
    clickOk(dialog);
    QVERIFY(m_fx.palletMethods().isEmpty());
    QCOMPARE(refresh.count(), 1);
    QCOMPARE(accepted.count(), 1);
}

void TestNewPalletDialog::editToTakenNameRejected()
{
    PalletFixture::addLocalPallet(QStringLiteral("taken"), 1, 1);
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("mine"), 2, 2);
    NewPalletDialog *dialog = open(pallet);
    typeName(dialog, QStringLiteral("taken"));
    clickOk(dialog);
    QCOMPARE(errorEntries().size(), 1);
    QCOMPARE(errorEntries().first().value(QStringLiteral("title")).toString(), QStringLiteral("Tray name is repeated!"));
    QCOMPARE(pallet->c(QStringLiteral("name"), false)->getString(), QStringLiteral("mine"));
    QVERIFY(m_fx.palletMethods().isEmpty());

    typeName(dialog, QStringLiteral("renamed"));
    clickOk(dialog);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.set.name")).first().paramsJson,
             QByteArray("{\"index\":1,\"name\":\"renamed\",\"desc\":\"desc of mine\"}"));
    QCOMPARE(palletNames(), (QStringList{"taken", "renamed"}));
}

void TestNewPalletDialog::cancelChangesNothing()
{
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, tpallet::palletsNode(), true, false);
    NewPalletDialog *dialog = open(nullptr);
    QSignalSpy rejected(dialog, &QDialog::rejected);
    QTest::mouseClick(widget<QPushButton>(dialog, "btnCancel"), Qt::LeftButton);
    QCOMPARE(rejected.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
    QVERIFY(tpallet::palletsNode()->equals(&before));
    QVERIFY(m_fx.palletMethods().isEmpty());
}

void TestNewPalletDialog::closesWhenPalletDestroyed()
{
    orba::ModuleObject *pallet = addGenerated(QStringLiteral("doomed"), 1, 1);
    NewPalletDialog *dialog = open(pallet);
    QSignalSpy rejected(dialog, &QDialog::rejected);
    tpallet::palletsNode()->remove(nullptr, pallet);
    QCOMPARE(rejected.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TestNewPalletDialog::newDialogIsBoundToNothing()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    NewPalletDialog *dialog = open(nullptr);
    QSignalSpy rejected(dialog, &QDialog::rejected);
    // Neither a pallet nor the list going away closes a dialog that creates a pallet.
    tpallet::palletsNode()->remove(nullptr, tpallet::palletsNode()->c(0));
    orba::ModuleObject *list = tpallet::palletsNode();
    delete list->pmobj()->take(nullptr, list);
    PalletFixture::flushDeletes();
    QCOMPARE(rejected.count(), 0);
    QVERIFY(m_dialog);
    QVERIFY(m_dialog->isVisible());
}

void TestNewPalletDialog::initPalletCompletesDefault()
{
    orba::ModuleObject pallet(QStringLiteral("fresh"));
    pallet.copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
    QVERIFY(pallet.r(QStringLiteral("calibrate.toolset"))->isNull());
    NewPalletDialog::initPallet(&pallet);

    orba::ModuleObject identity(QStringLiteral("toolset"));
    tpallet::identityToolsetNode(&identity);
    QVERIFY(pallet.r(QStringLiteral("calibrate.toolset"))->equals(&identity));
    QCOMPARE(pallet.c(QStringLiteral("waypoint"), false)->cmobjNames(), (QStringList{"wobj", "approach", "retract"}));
    QCOMPARE(pallet.c(QStringLiteral("points"), false)->cmobjCount(), 1);
    QCOMPARE(pallet.r(QStringLiteral("calibrate.points"))->cmobjCount(), 1);
}

void TestNewPalletDialog::initPalletAddsMissingRetract()
{
    orba::ModuleObject *source = addGenerated(QStringLiteral("src"), 1, 2);
    source->set(nullptr, QStringLiteral("waypoint.wobj.trans.#2"), 0.4, true);
    source->set(nullptr, QStringLiteral("waypoint.approach.trans.#2"), 0.6, true);
    orba::ModuleObject *waypoint = source->c(QStringLiteral("waypoint"), false);
    waypoint->remove(nullptr, waypoint->c(QStringLiteral("retract"), false));

    orba::ModuleObject clone(QStringLiteral("clone"));
    clone.copyFrom(nullptr, source, true, false);
    NewPalletDialog::initPallet(&clone);
    orba::ModuleObject *cloned = clone.c(QStringLiteral("waypoint"), false);
    QCOMPARE(cloned->cmobjNames(), (QStringList{"wobj", "approach", "retract"}));
    QVERIFY(cloned->c(QStringLiteral("wobj"), false)->equals(waypoint->c(QStringLiteral("wobj"), false)));
    QVERIFY(cloned->c(QStringLiteral("approach"), false)->equals(waypoint->c(QStringLiteral("approach"), false)));
    orba::ModuleObject identity(QStringLiteral("retract"));
    tpallet::identityPointNode(&identity);
    QVERIFY(cloned->c(QStringLiteral("retract"), false)->equals(&identity));
}

void TestNewPalletDialog::initPalletKeepsSetReference()
{
    orba::ModuleObject pallet(QStringLiteral("taught"));
    pallet.copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
    orba::ModuleObject *toolset = pallet.r(QStringLiteral("calibrate.toolset"));
    toolset->set(nullptr, QStringLiteral("ref.trans.#0"), 0.5, true);
    toolset->set(nullptr, QStringLiteral("end.rot.#2"), 1.25, true);
    orba::ModuleObject before(QStringLiteral("toolset"));
    before.copyFrom(nullptr, toolset, true, false);
    NewPalletDialog::initPallet(&pallet);
    QVERIFY(pallet.r(QStringLiteral("calibrate.toolset"))->equals(&before));
}

void TestNewPalletDialog::initPalletKeepsPresentNullReference()
{
    // "ref" is there but holds nothing: the emptiness test finds it, so the toolset stays as it is.
    orba::ModuleObject pallet(QStringLiteral("halfway"));
    pallet.copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
    orba::ModuleObject *toolset = pallet.r(QStringLiteral("calibrate.toolset"));
    toolset->set(nullptr, QStringLiteral("end.trans.#2"), 0.1, true);
    toolset->append(nullptr, QStringLiteral("ref"));
    QVERIFY(toolset->c(QStringLiteral("ref"), false)->isNull());
    QVERIFY(!toolset->c(QStringLiteral("ref"), false)->isEmpty());
    orba::ModuleObject before(QStringLiteral("toolset"));
    before.copyFrom(nullptr, toolset, true, false);
    NewPalletDialog::initPallet(&pallet);
    QVERIFY(pallet.r(QStringLiteral("calibrate.toolset"))->equals(&before));
    // The rest of the completion still happens.
    QCOMPARE(pallet.c(QStringLiteral("waypoint"), false)->cmobjNames(), (QStringList{"wobj", "approach", "retract"}));
    QCOMPARE(pallet.c(QStringLiteral("points"), false)->cmobjCount(), 1);
}

QTEST_MAIN(TestNewPalletDialog)
#include "tst_newpalletdialog.moc"
