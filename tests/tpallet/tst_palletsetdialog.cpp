#include "palletfixture.h"

#include "module/pointgen.h"
#include "pages/basewizard.h"
#include "pages/palletsetdialog.h"
#include "pages/twmenu.h"
#include "wizards/patternwizard.h"

#include <kx/kx.h>

#include <QLabel>
#include <QPointer>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

namespace {

// A step that answers the frame as told and counts what it was asked.
class ScriptedStep : public BaseWizard
{
public:
    ScriptedStep(orba::ModuleObject *pallet, QWidget *parent)
        : BaseWizard(pallet, parent)
    {
        ++created;
    }
    bool tryNext() override
    {
        ++asked;
        return allowNext;
    }
    bool tryPrevious() override
    {
        ++asked;
        return allowPrevious;
    }
    bool tryCancel() override
    {
        ++asked;
        return allowCancel;
    }
    bool tryConfirm() override
    {
        ++asked;
        return allowConfirm;
    }
    void init(bool single) override
    {
        initSingle = single;
        ++inits;
    }
    void updateAvailability() override { ++availability; }

    static inline int created = 0;
    static inline int asked = 0;
    static inline int inits = 0;
    static inline int availability = 0;
    static inline bool initSingle = false;
    static inline bool allowNext = true;
    static inline bool allowPrevious = true;
    static inline bool allowCancel = true;
    static inline bool allowConfirm = true;

    static void reset()
    {
        created = asked = inits = availability = 0;
        initSingle = false;
        allowNext = allowPrevious = allowCancel = allowConfirm = true;
    }
};

void useScriptedStep(int step)
{
    tpallet::registerWizard(step, [](orba::ModuleObject *pallet, QWidget *parent) { return new ScriptedStep(pallet, parent); });
}

void restorePatternStep()
{
    tpallet::registerWizard(0, [](orba::ModuleObject *pallet, QWidget *parent) { return new PatternWizard(pallet, parent); });
}

template<typename T>
T *child(QWidget *parent, const QString &name)
{
    T *found = parent->findChild<T *>(name);
    if (!found)
        qFatal("widget %s missing", qPrintable(name));
    return found;
}

void fillList(const QString &path, const QStringList &names)
{
    orba::ModuleObject *list = kx::globalNode(path);
    list->clear(nullptr);
    for (int i = 0; i < names.size(); ++i)
        list->set(nullptr, QStringLiteral("#%1.name").arg(i), names.at(i), true);
}

const char *const kSelectedStyle = "font: 75 10pt; color: rgb(0, 124, 249)";

} // namespace

class TestPalletSetDialog : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void titleStripNamesTheSteps();
    void showsCurrentPalletName();
    void modeZeroStartsOnPattern();
    void modeFourOpensOnPointCheckOnly();
    void modeFourConfirmAccepts();
    void walkAllStepsAndFinish();
    void nextReadsFinishOnlyOnLastStep();
    void previousOnStepZeroDoesNothing_data();
    void previousOnStepZeroDoesNothing();
    void refusingStepKeepsFrame_data();
    void refusingStepKeepsFrame();
    void leavingStepDeletesPage();
    void goingBackCreatesFreshPage();
    void stepWithoutClassIsPlainPage();
    void initGetsSingleFlag();
    void levelChangeReachesPage();
    void closesWhenPalletDestroyed();
    void editReplacesConfigurationDialog();

    void barShowsHostSelection();
    void barFollowsNodeChanges();
    void toolsetHidesToolAndWobj();
    void toolMenuListsAllToolsInOrder();
    void wobjMenuListsAllWobjsInOrder();
    void choosingToolWritesNode();
    void toolsetMenuGoesBackToProject();
    void longToolNameIsElided();

private:
    PalletSetDialog *open(int mode);
    QPushButton *button(const char *name) { return child<QPushButton>(m_dialog, QLatin1String(name)); }

    PalletFixture m_fx;
    orba::ModuleObject *m_pallet = nullptr;
    QPointer<PalletSetDialog> m_dialog;
};

void TestPalletSetDialog::init()
{
    m_fx.setUp();
    ScriptedStep::reset();
    m_fx.transport()->setReply(QStringLiteral("tray.set.one"), 0);
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    kx::globalNode(QStringLiteral("tormo.toolpage"))->set(nullptr, QStringLiteral("tool"), QStringLiteral("tool0"), true);
    kx::globalNode(QStringLiteral("tormo.toolpage"))->set(nullptr, QStringLiteral("wobj"), QStringLiteral("wobj0"), true);
    kx::globalNode(QStringLiteral("tormo.toolpage"))->set(nullptr, QStringLiteral("toolset"), QString(QLatin1String("")), true);
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray7"), 2, 3);
    tpallet::generatePoints1(m_pallet, nullptr);
}

void TestPalletSetDialog::cleanup()
{
    delete m_dialog.data();
    restorePatternStep();
    for (int step = 1; step < PalletSetDialog::kStepCount; ++step)
        tpallet::unregisterWizard(step);
    m_fx.tearDown();
}

PalletSetDialog *TestPalletSetDialog::open(int mode)
{
    m_dialog = new PalletSetDialog(m_pallet, nullptr, mode);
    m_dialog->show();
    return m_dialog;
}

void TestPalletSetDialog::titleStripNamesTheSteps()
{
    open(0);
    const QStringList expected{"Pattern Setting", "Tool Setting", "Calibrate Setting", "Path Point Setting",
                               "Path Point Check"};
    QCOMPARE(m_dialog->titleLabels().size(), 5);
    for (int i = 0; i < 5; ++i) {
        QLabel *label = child<QLabel>(m_dialog, QStringLiteral("lblTitle%1").arg(i));
        QCOMPARE(label->text(), expected.at(i));
        QCOMPARE(m_dialog->titleLabels().at(i), label);
    }
    int separators = 0;
    for (QLabel *label : m_dialog->findChildren<QLabel *>()) {
        if (label->text() == QLatin1String(">"))
            ++separators;
    }
    QCOMPARE(separators, 4);
}

void TestPalletSetDialog::showsCurrentPalletName()
{
    open(0);
    QCOMPARE(child<QLabel>(m_dialog, QStringLiteral("lblPallet"))->text(), QStringLiteral("Current Pallet: tray7"));
}

void TestPalletSetDialog::modeZeroStartsOnPattern()
{
    open(0);
    QCOMPARE(m_dialog->currentStep(), 0);
    QVERIFY(qobject_cast<PatternWizard *>(m_dialog->currentPage()));
    QVERIFY(!button("btnPrevious")->isVisible());
    QVERIFY(button("btnNext")->isVisible());
    QCOMPARE(button("btnNext")->text(), QStringLiteral("Next Step"));
    QVERIFY(!button("btnConfirm")->isVisible());
    QVERIFY(button("btnCancel")->isVisible());
    QCOMPARE(m_dialog->titleLabels().at(0)->styleSheet(), QLatin1String(kSelectedStyle));
    for (int i = 1; i < 5; ++i)
        QCOMPARE(m_dialog->titleLabels().at(i)->styleSheet(), QString());
}

void TestPalletSetDialog::modeFourOpensOnPointCheckOnly()
{
    open(4);
    QCOMPARE(m_dialog->currentStep(), 4);
    QVERIFY(!button("btnPrevious")->isVisible());
    QVERIFY(!button("btnNext")->isVisible());
    QVERIFY(button("btnConfirm")->isVisible());
    QVERIFY(button("btnCancel")->isVisible());
    for (int i = 0; i < 5; ++i)
        QCOMPARE(m_dialog->titleLabels().at(i)->styleSheet(), i == 4 ? QLatin1String(kSelectedStyle) : QString());
    QCOMPARE(m_dialog->titleLabels().at(4)->text(), QStringLiteral("Path Point Check"));
}

void TestPalletSetDialog::modeFourConfirmAccepts()
{
    useScriptedStep(4);
    open(4);
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    QTest::mouseClick(button("btnConfirm"), Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
    QCOMPARE(ScriptedStep::asked, 1);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TestPalletSetDialog::walkAllStepsAndFinish()
{
    for (int step = 1; step < 5; ++step)
        useScriptedStep(step);
    open(0);
    QSignalSpy accepted(m_dialog.data(), &QDialog::accepted);
    for (int step = 0; step < 4; ++step) {
        QCOMPARE(m_dialog->currentStep(), step);
        QTest::mouseClick(button("btnNext"), Qt::LeftButton);
        QCOMPARE(m_dialog->currentStep(), step + 1);
        QCOMPARE(m_dialog->titleLabels().at(step + 1)->styleSheet(), QLatin1String(kSelectedStyle));
        QCOMPARE(m_dialog->titleLabels().at(step)->styleSheet(), QString());
        QVERIFY(button("btnPrevious")->isVisible());
        QVERIFY(!button("btnConfirm")->isVisible());
    }
    QCOMPARE(button("btnNext")->text(), QStringLiteral("Finish"));
    QCOMPARE(accepted.count(), 0);
    QTest::mouseClick(button("btnNext"), Qt::LeftButton);
    QCOMPARE(accepted.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TestPalletSetDialog::nextReadsFinishOnlyOnLastStep()
{
    for (int step = 1; step < 5; ++step)
        useScriptedStep(step);
    open(0);
    const QStringList expected{"Next Step", "Next Step", "Next Step", "Next Step", "Finish"};
    for (int step = 0; step < 5; ++step) {
        m_dialog->switchToStep(step, false);
        QCOMPARE(button("btnNext")->text(), expected.at(step));
        QCOMPARE(button("btnPrevious")->isVisible(), step > 0);
    }
}

void TestPalletSetDialog::previousOnStepZeroDoesNothing_data()
{
    QTest::addColumn<bool>("pageAllows");
    QTest::newRow("page allows") << true;
    QTest::newRow("page refuses") << false;
}

void TestPalletSetDialog::previousOnStepZeroDoesNothing()
{
    QFETCH(bool, pageAllows);
    useScriptedStep(0);
    ScriptedStep::allowPrevious = pageAllows;
    open(0);
    QPointer<BaseWizard> page = m_dialog->currentPage();
    const int created = ScriptedStep::created;
    m_dialog->onPrevious();
    button("btnPrevious")->click();
    QCOMPARE(m_dialog->currentStep(), 0);
    QCOMPARE(m_dialog->currentPage(), page.data());
    QCOMPARE(ScriptedStep::created, created);
    QCOMPARE(ScriptedStep::asked, 0);
}

void TestPalletSetDialog::refusingStepKeepsFrame_data()
{
    QTest::addColumn<QString>("action");
    QTest::newRow("next refused") << "next";
    QTest::newRow("previous refused") << "previous";
    QTest::newRow("cancel refused") << "cancel";
    QTest::newRow("confirm refused") << "confirm";
}

void TestPalletSetDialog::refusingStepKeepsFrame()
{
    QFETCH(QString, action);
    useScriptedStep(2);
    ScriptedStep::allowNext = ScriptedStep::allowPrevious = ScriptedStep::allowCancel = ScriptedStep::allowConfirm = false;
    open(0);
    m_dialog->switchToStep(2, action == QLatin1String("confirm"));
    QPointer<BaseWizard> page = m_dialog->currentPage();
    QSignalSpy finished(m_dialog.data(), &QDialog::finished);

    const char *name = action == QLatin1String("next")       ? "btnNext"
                       : action == QLatin1String("previous") ? "btnPrevious"
                       : action == QLatin1String("cancel")   ? "btnCancel"
                                                             : "btnConfirm";
    QTest::mouseClick(button(name), Qt::LeftButton);
    QCOMPARE(ScriptedStep::asked, 1);
    QVERIFY(m_dialog);
    QCOMPARE(m_dialog->currentStep(), 2);
    QCOMPARE(m_dialog->currentPage(), page.data());
    QCOMPARE(finished.count(), 0);
    QVERIFY(m_dialog->isVisible());
}

void TestPalletSetDialog::leavingStepDeletesPage()
{
    useScriptedStep(1);
    open(0);
    QPointer<BaseWizard> pattern = m_dialog->currentPage();
    QTest::mouseClick(button("btnNext"), Qt::LeftButton);
    QVERIFY(!pattern);
    QCOMPARE(m_dialog->findChildren<BaseWizard *>().size(), 1);
}

void TestPalletSetDialog::goingBackCreatesFreshPage()
{
    useScriptedStep(1);
    useScriptedStep(2);
    open(0);
    m_dialog->switchToStep(1, false);
    QPointer<BaseWizard> first = m_dialog->currentPage();
    QTest::mouseClick(button("btnNext"), Qt::LeftButton);
    QVERIFY(!first);
    const int created = ScriptedStep::created;
    QTest::mouseClick(button("btnPrevious"), Qt::LeftButton);
    QCOMPARE(m_dialog->currentStep(), 1);
    QCOMPARE(ScriptedStep::created, created + 1);
    QVERIFY(m_dialog->currentPage());
    QCOMPARE(m_dialog->findChildren<BaseWizard *>().size(), 1);
}

void TestPalletSetDialog::stepWithoutClassIsPlainPage()
{
    tpallet::unregisterWizard(3);
    open(0);
    m_dialog->switchToStep(3, false);
    QCOMPARE(m_dialog->currentPage()->metaObject(), &BaseWizard::staticMetaObject);
    QVERIFY(m_dialog->currentPage()->tryNext());
    BaseWizard *beyond = tpallet::createWizard(7, m_pallet, nullptr);
    QCOMPARE(beyond->metaObject(), &BaseWizard::staticMetaObject);
    delete beyond;
}

void TestPalletSetDialog::initGetsSingleFlag()
{
    useScriptedStep(4);
    open(4);
    QCOMPARE(ScriptedStep::inits, 1);
    QVERIFY(ScriptedStep::initSingle);
    delete m_dialog.data();
    useScriptedStep(1);
    open(0);
    QTest::mouseClick(button("btnNext"), Qt::LeftButton);
    QCOMPARE(ScriptedStep::inits, 2);
    QVERIFY(!ScriptedStep::initSingle);
}

void TestPalletSetDialog::levelChangeReachesPage()
{
    useScriptedStep(0);
    open(0);
    const int before = ScriptedStep::availability;
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 2, true);
    QCOMPARE(ScriptedStep::availability, before + 1);
}

void TestPalletSetDialog::closesWhenPalletDestroyed()
{
    open(0);
    QSignalSpy rejected(m_dialog.data(), &QDialog::rejected);
    tpallet::palletsNode()->remove(nullptr, m_pallet);
    m_pallet = nullptr;
    QCOMPARE(rejected.count(), 1);
    PalletFixture::flushDeletes();
    QVERIFY(!m_dialog);
}

void TestPalletSetDialog::editReplacesConfigurationDialog()
{
    open(0);
    auto *other = new PalletSetDialog(m_pallet, nullptr, 4);
    QVERIFY(!m_dialog);
    m_dialog = other;
}

void TestPalletSetDialog::barShowsHostSelection()
{
    open(0);
    QCOMPARE(button("btnTool")->text(), QStringLiteral("tool0"));
    QCOMPARE(button("btnWobj")->text(), QStringLiteral("wobj0"));
    QVERIFY(button("btnTool")->isVisible());
    QVERIFY(button("btnWobj")->isVisible());
    QVERIFY(!button("btnToolset")->isVisible());
}

void TestPalletSetDialog::barFollowsNodeChanges()
{
    open(0);
    kx::globalNode(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, QStringLiteral("gripper"), true);
    kx::globalNode(QStringLiteral("tormo.toolpage.wobj"))->setValue(nullptr, QStringLiteral("table"), true);
    QCOMPARE(button("btnTool")->text(), QStringLiteral("gripper"));
    QCOMPARE(button("btnWobj")->text(), QStringLiteral("table"));
}

void TestPalletSetDialog::toolsetHidesToolAndWobj()
{
    open(0);
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QStringLiteral("tray7"), true);
    QVERIFY(!button("btnTool")->isVisible());
    QVERIFY(!button("btnWobj")->isVisible());
    QVERIFY(button("btnToolset")->isVisible());
    QCOMPARE(button("btnToolset")->text(), QStringLiteral("tray7"));
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QString(QLatin1String("")), true);
    QVERIFY(button("btnTool")->isVisible());
    QVERIFY(button("btnWobj")->isVisible());
    QVERIFY(!button("btnToolset")->isVisible());
}

void TestPalletSetDialog::toolMenuListsAllToolsInOrder()
{
    fillList(QStringLiteral("tormo.project.tool.system_list"), {"tool0"});
    fillList(QStringLiteral("tormo.project.tool._list"), {"gripper", "sucker"});
    fillList(QStringLiteral("tormo.setting.g_tool.g_tools"), {"g_hand"});
    open(0);
    QTest::mouseClick(button("btnTool"), Qt::LeftButton);
    tpallet::TWMenu *menu = m_dialog->menu();
    QVERIFY(menu);
    QTRY_VERIFY(menu->isVisible());
    QCOMPARE(menu->items(), (QStringList{"tool0", "gripper", "sucker", "g_hand"}));
    QCOMPARE(menu->current(), QStringLiteral("tool0"));
    QCOMPARE(menu->nominalWidth(), 120);
    const QPoint below = button("btnTool")->mapToGlobal(QPoint(0, button("btnTool")->height()));
    QCOMPARE(menu->pos().y(), below.y() + 1);
    QCOMPARE(menu->pos().x(), below.x());
}

void TestPalletSetDialog::wobjMenuListsAllWobjsInOrder()
{
    fillList(QStringLiteral("tormo.project.wobj.system_list"), {"wobj0"});
    fillList(QStringLiteral("tormo.project.wobj._list"), {"table"});
    fillList(QStringLiteral("tormo.setting.g_wobj.g_wobjs"), {"g_conveyor", "g_rack"});
    open(0);
    QTest::mouseClick(button("btnWobj"), Qt::LeftButton);
    QVERIFY(m_dialog->menu());
    QCOMPARE(m_dialog->menu()->items(), (QStringList{"wobj0", "table", "g_conveyor", "g_rack"}));
    QCOMPARE(m_dialog->menu()->current(), QStringLiteral("wobj0"));
}

void TestPalletSetDialog::choosingToolWritesNode()
{
    fillList(QStringLiteral("tormo.project.tool.system_list"), {"tool0"});
    fillList(QStringLiteral("tormo.project.tool._list"), {"gripper"});
    open(0);
    orba::ModuleObject *tool = orba::m(QStringLiteral("tormo.toolpage.tool"));
    QSignalSpy changed(tool, &orba::ModuleObject::changed);
    QTest::mouseClick(button("btnTool"), Qt::LeftButton);
    tpallet::TWMenu *menu = m_dialog->menu();
    QTRY_VERIFY(menu->isVisible());
    QPushButton *gripper = nullptr;
    for (QPushButton *b : menu->findChildren<QPushButton *>()) {
        if (b->text() == QLatin1String("gripper"))
            gripper = b;
    }
    QVERIFY(gripper);
    QTest::mouseClick(gripper, Qt::LeftButton);
    QCOMPARE(tool->getString(), QStringLiteral("gripper"));
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(2).value<QObject *>(), static_cast<QObject *>(m_dialog.data()));
    QCOMPARE(button("btnTool")->text(), QStringLiteral("gripper"));
    QTRY_VERIFY(!menu->isVisible());
}

void TestPalletSetDialog::toolsetMenuGoesBackToProject()
{
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QStringLiteral("tray7"), true);
    open(0);
    QTest::mouseClick(button("btnToolset"), Qt::LeftButton);
    tpallet::TWMenu *menu = m_dialog->menu();
    QVERIFY(menu);
    QCOMPARE(menu->items(), QStringList{QStringLiteral("Use Project Tool/Wobj")});
    QCOMPARE(menu->current(), QStringLiteral("tray7"));
    QCOMPARE(menu->nominalWidth(), 180);
    QTRY_VERIFY(menu->isVisible());
    QPushButton *entry = menu->findChild<QPushButton *>(QStringLiteral("btnItem0"));
    QVERIFY(entry);
    QTest::mouseClick(entry, Qt::LeftButton);
    QCOMPARE(orba::m(QStringLiteral("tormo.toolpage.toolset"))->getString(), QString());
    QVERIFY(button("btnTool")->isVisible());
    QVERIFY(!button("btnToolset")->isVisible());
}

void TestPalletSetDialog::longToolNameIsElided()
{
    open(0);
    const QString name = QStringLiteral("a_really_long_tool_name_that_cannot_fit_on_the_button");
    kx::globalNode(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, name, true);
    QPushButton *tool = button("btnTool");
    QVERIFY(tool->text() != name);
    QVERIFY(tool->text().contains(QChar(0x2026)));
    QCOMPARE(tool->toolTip(), name);
    QVERIFY(tool->fontMetrics().horizontalAdvance(tool->text()) <= tool->width());
}

QTEST_MAIN(TestPalletSetDialog)
#include "tst_palletsetdialog.moc"
