#include "palletsetdialog.h"
#include "ui_palletsetdialog.h"

#include "basewizard.h"
#include "twmenu.h"

#include "module/tpallet.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QCoreApplication>
#include <QEvent>
#include <QFontMetrics>
#include <QLabel>
#include <QPushButton>

namespace {

// The titles are translated in this class's context.
const char *const kStepTitles[PalletSetDialog::kStepCount] = {
    QT_TRANSLATE_NOOP("PalletSetDialog", "Pattern Setting"),
    QT_TRANSLATE_NOOP("PalletSetDialog", "Tool Setting"),
    QT_TRANSLATE_NOOP("PalletSetDialog", "Calibrate Setting"),
    QT_TRANSLATE_NOOP("PalletSetDialog", "Path Point Setting"),
    QT_TRANSLATE_NOOP("PalletSetDialog", "Path Point Check"),
};

const char *const kToolNode = "tormo.toolpage.tool";
const char *const kWobjNode = "tormo.toolpage.wobj";
const char *const kToolsetNode = "tormo.toolpage.toolset";

QStringList namesOf(std::initializer_list<const char *> lists)
{
    QStringList names;
    for (const char *path : lists) {
        const orba::ModuleObject *list = orba::m(QLatin1String(path));
        for (int i = 0; i < list->cmobjCount(); ++i)
            names << list->c(i)->r(QStringLiteral("name"))->getString();
    }
    return names;
}

} // namespace

PalletSetDialog::PalletSetDialog(orba::ModuleObject *pallet, QWidget *parent, int mode)
    : QDialog(parent)
    , m_ui(new Ui::PalletSetDialog)
    , m_pallet(pallet)
{
    tpallet::makeUniqueDialog(this);
    tpallet::bindDialogToNode(this, pallet);

    m_ui->setupUi(this);
    buildTitles();
    retranslate();

    switchToStep(mode, mode != 0);

    connect(m_ui->btnNext, &QPushButton::clicked, this, &PalletSetDialog::onNext);
    connect(m_ui->btnPrevious, &QPushButton::clicked, this, &PalletSetDialog::onPrevious);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &PalletSetDialog::onCancel);
    connect(m_ui->btnConfirm, &QPushButton::clicked, this, &PalletSetDialog::onConfirm);

    // The operator's level may change while the dialog is open: the page follows it.
    connect(kx::globalNode(QStringLiteral("tcore.r.level")), &orba::ModuleObject::changed, this, [this] {
        if (m_page)
            m_page->updateAvailability();
    });

    initToolWobj();
}

PalletSetDialog::~PalletSetDialog()
{
    delete m_ui;
}

QStringList PalletSetDialog::stepTitles()
{
    QStringList titles;
    for (const char *title : kStepTitles)
        titles << QLatin1String(title);
    return titles;
}

void PalletSetDialog::buildTitles()
{
    QHBoxLayout *strip = m_ui->hlTitle;
    for (int i = 0; i < kStepCount; ++i) {
        if (i > 0)
            strip->addWidget(new QLabel(QStringLiteral(">"), m_ui->wgtTitle));
        auto *label = new QLabel(m_ui->wgtTitle);
        label->setObjectName(QStringLiteral("lblTitle%1").arg(i));
        strip->addWidget(label);
        m_titles.append(label);
    }
    strip->addStretch();
}

void PalletSetDialog::retranslate()
{
    for (int i = 0; i < m_titles.size(); ++i)
        m_titles.at(i)->setText(QCoreApplication::translate("PalletSetDialog", kStepTitles[i]));
    const QString name = m_pallet ? m_pallet->c(QStringLiteral("name"), false)->getString() : QString();
    m_ui->lblPallet->setText(tr("Current Pallet: ") + name);
    if (m_step >= 0) {
        if (m_step == kStepCount - 1)
            m_ui->btnNext->setText(tr("Finish"));
        else
            m_ui->btnNext->setText(tr("Next Step"));
    }
}

BaseWizard *PalletSetDialog::createWizard(int step)
{
    return tpallet::createWizard(step, m_pallet.data(), m_ui->wgtStep);
}

void PalletSetDialog::switchToStep(int step, bool single)
{
    m_ui->btnConfirm->setVisible(single);
    m_ui->btnPrevious->setVisible(!single);
    m_ui->btnNext->setVisible(!single);
    if (step > 0) {
        m_ui->btnNext->setText(step == kStepCount - 1 ? tr("Finish") : tr("Next Step"));
    } else {
        m_ui->btnPrevious->setVisible(false);
        m_ui->btnNext->setText(tr("Next Step"));
    }

    if (m_page) {
        m_ui->vlStep->removeWidget(m_page);
        delete m_page;
        m_page = nullptr;
    }
    m_page = createWizard(step);
    m_page->setObjectName(QStringLiteral("wizardStep%1").arg(step));
    m_ui->vlStep->addWidget(m_page);
    m_page->init(single);
    m_page->updateAvailability();

    for (int i = 0; i < m_titles.size(); ++i)
        setLableSelect(m_titles.at(i), i == step);

    m_step = step;
    m_single = single;
}

void PalletSetDialog::setLableSelect(QLabel *label, bool selected)
{
    if (!label)
        return;
    label->setStyleSheet(selected ? QStringLiteral("font: 75 10pt; color: rgb(0, 124, 249)") : QString());
}

void PalletSetDialog::onNext()
{
    if (!m_page || !m_page->tryNext())
        return;
    if (m_step >= m_titles.size() - 1) {
        accept();
        return;
    }
    switchToStep(m_step + 1, false);
}

void PalletSetDialog::onPrevious()
{
    if (m_step == 0)
        return;
    if (!m_page || !m_page->tryPrevious())
        return;
    switchToStep(m_step - 1, false);
}

void PalletSetDialog::onCancel()
{
    if (!m_page || m_page->tryCancel())
        reject();
}

void PalletSetDialog::onConfirm()
{
    if (!m_page || m_page->tryConfirm())
        accept();
}

void PalletSetDialog::initToolWobj()
{
    for (const char *path : {kToolNode, kWobjNode, kToolsetNode})
        connect(kx::globalNode(QLatin1String(path)), &orba::ModuleObject::changed, this,
                &PalletSetDialog::refreshToolWobj);

    connect(m_ui->btnTool, &QPushButton::clicked, this, [this] {
        showMenu(m_ui->btnTool,
                 namesOf({"tormo.project.tool.system_list", "tormo.project.tool._list", "tormo.setting.g_tool.g_tools"}),
                 120, QLatin1String(kToolNode));
    });
    connect(m_ui->btnWobj, &QPushButton::clicked, this, [this] {
        showMenu(m_ui->btnWobj,
                 namesOf({"tormo.project.wobj.system_list", "tormo.project.wobj._list", "tormo.setting.g_wobj.g_wobjs"}),
                 120, QLatin1String(kWobjNode));
    });
    connect(m_ui->btnToolset, &QPushButton::clicked, this, [this] {
        showMenu(m_ui->btnToolset, {tr("Use Project Tool/Wobj")}, 180, QLatin1String(kToolsetNode));
    });
    refreshToolWobj();
}

void PalletSetDialog::refreshToolWobj()
{
    const QString tool = orba::m(QLatin1String(kToolNode))->getString();
    const QString wobj = orba::m(QLatin1String(kWobjNode))->getString();
    const QString toolset = orba::m(QLatin1String(kToolsetNode))->getString();

    // The full name stays in the tooltip; the button shows what fits.
    auto elided = [](QPushButton *button, const QString &text) {
        const int room = qMax(button->width(), button->minimumWidth()) - 20;
        button->setText(button->fontMetrics().elidedText(text, Qt::ElideMiddle, room));
        button->setToolTip(text);
    };
    elided(m_ui->btnTool, tool);
    elided(m_ui->btnWobj, wobj);
    m_ui->btnToolset->setText(toolset);
    m_ui->btnToolset->setToolTip(toolset);

    const bool projectFrames = toolset.isEmpty();
    m_ui->btnTool->setVisible(projectFrames);
    m_ui->lblTool->setVisible(projectFrames);
    m_ui->btnWobj->setVisible(projectFrames);
    m_ui->lblWobj->setVisible(projectFrames);
    m_ui->btnToolset->setVisible(!projectFrames);
    m_ui->lblToolset->setVisible(!projectFrames);
}

void PalletSetDialog::showMenu(QPushButton *anchor, const QStringList &items, int width, const QString &node)
{
    delete m_menu;
    m_menu = new tpallet::TWMenu(this);
    // The button may show an elided text; the menu compares with the full name.
    m_menu->setParams(items, anchor->toolTip(), width);
    connect(m_menu, &tpallet::TWMenu::selected, this, [this, node](const QString &text) {
        const bool useProject = node == QLatin1String(kToolsetNode);
        kx::globalNode(node)->setValue(this, useProject ? QString(QLatin1String("")) : text, true);
    });
    m_menu->showBesideWidget(anchor);
}

void PalletSetDialog::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        m_ui->retranslateUi(this);
        retranslate();
        refreshToolWobj();
    }
    QDialog::changeEvent(event);
}
