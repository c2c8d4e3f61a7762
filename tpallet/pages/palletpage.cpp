#include "palletpage.h"
#include "ui_palletpage.h"

#include "dialogs/imexportdialog.h"
#include "module/modulelog.h"
#include "module/registration.h"
#include "module/tpallet.h"
#include "pages/newpalletdialog.h"
#include "pages/palletsetdialog.h"

#include <kx/kx.h>
#include <orba/creatormanager.h>
#include <orba/modulemanager.h>
#include <orba/names.h>
#include <orbat/controllermanager.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/thememanager.h>

#include <QAbstractButton>
#include <QEvent>
#include <QHeaderView>
#include <QIcon>
#include <QProgressDialog>
#include <QTableWidget>
#include <QTableWidgetItem>

namespace {

const tpallet::Registration s_version(
    [] { orba::versionManager()->regist(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.page")), [] { return 20; }); },
    [] { orba::versionManager()->unregist(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.page"))); });

constexpr int kHeaderMinHeight = 36;
// Rows are touch targets: a finger must hit one row, not its neighbour.
constexpr int kRowHeight = 44;
constexpr int kRowMinHeight = 36;

QIcon whiteIcon(const char *resource)
{
    return QIcon(kx::ttheme::pixmap(QString::fromLatin1(resource), QColor(Qt::white)));
}

// Keeps array element names "#i" in step with positions after an element was removed.
void renumber(orba::ModuleObject *array)
{
    const int count = array->cmobjCount();
    for (int i = 0; i < count; ++i) {
        orba::ModuleObject *child = array->c(i);
        const QString expected = QStringLiteral("#%1").arg(i);
        if (child->name() != expected)
            child->setName(expected);
    }
}

bool supportsCommand(const QString &command)
{
    const orba::ModuleObject *list = orba::m(QStringLiteral("tservice.proto.command"));
    const int count = list->cmobjCount();
    for (int i = 0; i < count; ++i) {
        if (list->c(i)->getString() == command)
            return true;
    }
    return false;
}

} // namespace

PalletPage::PalletPage(QWidget *parentWidget, TPallet *module)
    : tcore::BasePage(QStringLiteral("tpallet"), tr("Tray"), module)
    , m_ui(new Ui::PalletPage)
    , m_module(module)
    , m_pallets(tpallet::palletsNode())
    , m_widget(new QWidget(parentWidget))
{
    m_ui->setupUi(m_widget);
    m_widget->setObjectName(QStringLiteral("PalletPage"));
    m_widget->installEventFilter(this);

    QTableWidget *table = m_ui->tableWidget;
    table->setColumnCount(5);
    table->setSelectionMode(QAbstractItemView::SingleSelection);
    table->setSelectionBehavior(QAbstractItemView::SelectRows);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->horizontalHeader()->setMinimumHeight(qMax(kHeaderMinHeight, tcore::ThemeManager::getSize(kHeaderMinHeight)));
    table->verticalHeader()->setMinimumSectionSize(qMax(kRowMinHeight, tcore::ThemeManager::getSize(kRowMinHeight)));
    table->verticalHeader()->setDefaultSectionSize(qMax(kRowHeight, tcore::ThemeManager::getSize(kRowHeight)));

    m_ui->btnImport->setIcon(whiteIcon(":/tormo/images/project/import.png"));
    m_ui->btnExport->setIcon(whiteIcon(":/tormo/images/project/export.png"));
    m_ui->btnAdd->setIcon(whiteIcon(":/tormo/images/project/add.png"));
    m_ui->btnEdit->setIcon(whiteIcon(":/tormo/images/project/edit.png"));
    m_ui->btnCfg->setIcon(whiteIcon(":/tormo/images/body/tool.png"));
    m_ui->btnPointCheck->setIcon(whiteIcon(":/tormo/images/body/tool.png"));
    m_ui->btnDel->setIcon(whiteIcon(":/tormo/images/project/remove.png"));

    m_progress = new QProgressDialog(m_widget, Qt::FramelessWindowHint | Qt::Dialog);
    m_progress->setObjectName(QStringLiteral("dlgLoadProgress"));
    m_progress->setWindowModality(Qt::WindowModal);
    m_progress->setMinimumDuration(1);
    m_progress->setCancelButton(nullptr);
    m_progress->setAutoClose(false);
    m_progress->setAutoReset(false);
    m_progress->setRange(0, 100);
    m_progress->setFont(tcore::ThemeManager::getFont(QStringLiteral("default")));
    m_progress->setLabelText(tr("Acquiring pallet data..."));
    // QProgressDialog shows itself from its constructor's timer; keep it hidden until a load.
    m_progress->reset();
    m_progress->hide();

    connect(m_ui->btnImport, &QAbstractButton::clicked, this, &PalletPage::importPallet);
    connect(m_ui->btnExport, &QAbstractButton::clicked, this, &PalletPage::exportPallet);
    connect(m_ui->btnAdd, &QAbstractButton::clicked, this, &PalletPage::addPallet);
    connect(m_ui->btnEdit, &QAbstractButton::clicked, this, &PalletPage::editPallet);
    // clicked(false) arrives as mode 0: the full configuration.
    connect(m_ui->btnCfg, &QAbstractButton::clicked, this, &PalletPage::cfgPallet);
    connect(m_ui->btnPointCheck, &QAbstractButton::clicked, this, [this] { cfgPallet(4); });
    connect(m_ui->btnDel, &QAbstractButton::clicked, this, &PalletPage::delPallet);

    orba::ModuleObject *refresh = tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false);
    connect(refresh, &orba::ModuleObject::changed, this, &PalletPage::refreshTable);

    refreshTable();
}

PalletPage::~PalletPage()
{
    delete m_widget.data();
    delete m_ui;
}

void PalletPage::init()
{
    if (m_initialised)
        return;
    m_initialised = true;
    autoUpdate(true, true, true, false);
    if (orbat::ControllerManager *manager = tcore::ManagerHelper::instance()->controllerManager())
        connect(manager, &orbat::ControllerManager::rcConnected, this, &PalletPage::loadFromRC);
}

bool PalletPage::isLevelAvailable() const
{
    return true;
}

void PalletPage::updateAvailability()
{
    if (!m_ui)
        return;
    const int level = orba::m(QStringLiteral("tcore.r.level"))->getInt(0);
    const bool available = isAvailable();
    const bool manage = available && level >= 3;
    const bool configure = available && level >= 2;
    m_ui->btnImport->setEnabled(manage);
    m_ui->btnExport->setEnabled(manage);
    m_ui->btnAdd->setEnabled(manage);
    m_ui->btnEdit->setEnabled(manage);
    m_ui->btnDel->setEnabled(manage);
    m_ui->btnCfg->setEnabled(configure);
    m_ui->btnPointCheck->setEnabled(configure);
}

QWidget *PalletPage::wgt()
{
    return m_widget;
}

QProgressDialog *PalletPage::progressDialog() const
{
    return m_progress;
}

orba::ModuleObject *PalletPage::pallets()
{
    if (!m_pallets || m_pallets->isEmpty())
        m_pallets = tpallet::palletsNode();
    return m_pallets;
}

void PalletPage::loadFromRC()
{
    if (m_loading) {
        m_reloadPending = true;
        return;
    }
    // Loading shows a window-modal progress dialog, which processes events: the page may go.
    QPointer<PalletPage> self(this);
    initPalletFromRC();
    // Without its widget the page has no table to rebuild.
    if (!self || !m_widget)
        return;
    refreshTable();
}

void PalletPage::initPalletFromRC()
{
    // The progress dialog runs the event loop; a connection arriving meanwhile loads again after.
    if (m_loading) {
        m_reloadPending = true;
        return;
    }
    QPointer<PalletPage> self(this);
    m_loading = true;
    do {
        m_reloadPending = false;
        pallets()->clear(this, true, false);
        if (supportsCommand(QStringLiteral("tray.query.one")))
            loadPerPallet();
        else
            loadWholeList();
        if (!self)
            return;
    } while (m_reloadPending);
    m_loading = false;
    if (m_refreshPending) {
        m_refreshPending = false;
        if (m_widget)
            refreshTable();
    }
}

void PalletPage::loadPerPallet()
{
    QPointer<PalletPage> self(this);
    orba::MobjPtr list = tservice()->execCommand(this, QStringLiteral("tray.query.list"));
    if (!self || !list->hasCmobj(QStringLiteral("data"), false))
        return;
    const int n = list->c(QStringLiteral("data"), false)->size();

    // The dialog is a child of the page's widget, which the host may destroy independently.
    if (m_widget && m_progress) {
        m_progress->reset();
        m_progress->show();
    }
    setProgress(0);
    if (!self)
        return;

    // Every position gets its element, whatever its reply: the controller's numbering is kept.
    for (int i = 0; i < n && !m_reloadPending; ++i) {
        orba::ModuleObject *target = pallets();
        QPointer<orba::ModuleObject> element = target->append(this, QStringLiteral("#%1").arg(target->cmobjCount()));
        orba::ModuleObject param(QStringLiteral("param"));
        param.setValue(this, i, true);
        tservice()->execCommandAt(this, QStringLiteral("tray.query.one"), &param);
        if (!self)
            return;
        orba::ModuleObject *data = param.c(QStringLiteral("data"), false);
        // Something else may have removed the element meanwhile: there is nothing to fill then.
        while (element && data->cmobjCount() > 0)
            element->append(this, data->take(this, 0));
        setProgress(i * 100 / n);
        if (!self)
            return;
    }

    setProgress(100);
    if (!self)
        return;
    // reset() also stops the dialog's own delayed show, which a fast load would leave pending.
    if (m_widget && m_progress) {
        m_progress->reset();
        m_progress->hide();
    }
}

void PalletPage::loadWholeList()
{
    // One read fills the list; a failed read leaves it as the load cleared it.
    tservice()->getAt(this, QStringLiteral("tray.data"), pallets(), 0);
}

void PalletPage::setProgress(int value)
{
    QPointer<PalletPage> self(this);
    // A window-modal progress dialog processes events while its value is set.
    if (m_widget && m_progress)
        m_progress->setValue(value);
    if (self)
        emit loadProgress(value);
}

void PalletPage::refreshTable()
{
    // Mid-load the list holds a pallet still being filled: the table waits for the load's end.
    if (m_loading) {
        m_refreshPending = true;
        return;
    }
    QTableWidget *table = m_ui->tableWidget;
    orba::ModuleObject *list = pallets();
    const int count = list->cmobjCount();
    table->setRowCount(count);
    for (int row = 0; row < count; ++row) {
        for (int column = 0; column < table->columnCount(); ++column) {
            if (!table->item(row, column))
                table->setItem(row, column, new QTableWidgetItem);
        }
    }
    for (int row = 0; row < count; ++row) {
        orba::ModuleObject *pallet = list->c(row);
        const int rows = pallet->r(QStringLiteral("pattern.row"))->getInt(0);
        const int cols = pallet->r(QStringLiteral("pattern.col"))->getInt(0);
        table->item(row, 0)->setText(pallet->c(QStringLiteral("name"), false)->getString());
        table->item(row, 1)->setText(QString::number(qint64(rows) * cols));
        table->item(row, 2)->setText(QString::number(rows));
        table->item(row, 3)->setText(QString::number(cols));
        table->item(row, 4)->setText(pallet->c(QStringLiteral("desc"), false)->getString());
    }
}

orba::ModuleObject *PalletPage::selectedPallet()
{
    orba::ModuleObject *pallet = pallets()->c(m_ui->tableWidget->currentRow());
    if (pallet->isEmpty()) {
        tcore::ManagerHelper::instance()->execMsgOk(QStringLiteral("warning"), tr("Please select a pallet!"),
                                                    QStringLiteral("_"));
        return nullptr;
    }
    return pallet;
}

void PalletPage::importPallet()
{
    auto *dialog = new ImExportDialog(true, pallets(), m_widget);
    connect(dialog, &QDialog::accepted, this, &PalletPage::refreshTable);
    dialog->show();
}

void PalletPage::exportPallet()
{
    auto *dialog = new ImExportDialog(false, pallets(), m_widget);
    dialog->show();
}

void PalletPage::addPallet()
{
    auto *dialog = new NewPalletDialog(nullptr, m_widget);
    dialog->show();
}

void PalletPage::editPallet()
{
    orba::ModuleObject *pallet = selectedPallet();
    if (!pallet)
        return;
    auto *dialog = new NewPalletDialog(pallet, m_widget);
    dialog->show();
}

void PalletPage::cfgPallet(int mode)
{
    orba::ModuleObject *pallet = selectedPallet();
    if (!pallet)
        return;
    auto *dialog = new PalletSetDialog(pallet, m_widget, mode);
    dialog->show();
}

void PalletPage::delPallet()
{
    const int row = m_ui->tableWidget->currentRow();
    QPointer<orba::ModuleObject> pallet = selectedPallet();
    if (!pallet)
        return;
    const QString name = pallet->c(QStringLiteral("name"), false)->getString();
    if (!tcore::ManagerHelper::instance()->execMsgOk(QStringLiteral("q"), tr("Are you sure to delete %1").arg(name),
                                                     QStringLiteral("_")))
        return;
    // The question runs the event loop: a reload may have replaced the pallet meanwhile.
    if (!pallet)
        return;

    orba::ModuleObject param;
    param.set(this, QStringLiteral("index"), row, true);
    param.set(this, QStringLiteral("name"), name, true);
    orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("tray.del_one"), &param);
    if (reply->getInt(-1) != 0 || !pallet)
        return;
    orba::ModuleObject *list = pallet->pmobj();
    list->remove(this, pallet.data());
    renumber(list);
    refreshTable();
}

bool PalletPage::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_widget && event->type() == QEvent::LanguageChange)
        retranslate();
    return tcore::BasePage::eventFilter(watched, event);
}

void PalletPage::retranslate()
{
    m_ui->retranslateUi(m_widget);
    if (m_progress)
        m_progress->setLabelText(tr("Acquiring pallet data..."));
}
