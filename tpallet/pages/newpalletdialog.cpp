#include "newpalletdialog.h"
#include "ui_newpalletdialog.h"

#include "modulelog.h"
#include "pointgen.h"
#include "toolset.h"
#include "tpallet.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>

#include <QRegularExpression>
#include <QRegularExpressionValidator>

namespace {

constexpr int kMaxPlaces = 1200;
constexpr int kMaxNameLength = 32;

} // namespace

NewPalletDialog::NewPalletDialog(orba::ModuleObject *pallet, QWidget *parent)
    : QDialog(parent)
    , m_ui(new Ui::NewPalletDialog)
    , m_pallet(pallet)
    , m_isNew(pallet == nullptr)
{
    tpallet::makeUniqueDialog(this);
    // Edit mode closes with its pallet; a new pallet has no node yet, so nothing binds it.
    tpallet::bindDialogToNode(this, pallet);

    m_ui->setupUi(this);
    m_ui->edtName->setValidator(new QRegularExpressionValidator(
        QRegularExpression(QStringLiteral("^[A-Za-z0-9_-]+$")), m_ui->edtName));

    connect(m_ui->btnOk, &QPushButton::clicked, this, &NewPalletDialog::work);
    connect(m_ui->btnCancel, &QPushButton::clicked, this, &QDialog::close);
    connect(m_ui->rdbClone, &QAbstractButton::toggled, this, &NewPalletDialog::onCloneChanged);

    if (m_isNew) {
        for (int k = 0;; ++k) {
            const QString name = QStringLiteral("tray%1").arg(k);
            if (!tpallet::hasPallet(name)) {
                m_ui->edtName->setText(name);
                break;
            }
        }
    } else {
        m_ui->edtName->setText(m_pallet->c(QStringLiteral("name"))->getString());
        m_ui->edtDesc->setText(m_pallet->c(QStringLiteral("desc"))->getString());
        m_ui->spnCol->setValue(m_pallet->r(QStringLiteral("pattern.col"))->getInt());
        m_ui->spnRow->setValue(m_pallet->r(QStringLiteral("pattern.row"))->getInt());
    }

    for (orba::ModuleObject *p : tpallet::palletsNode()->cmobjs(false))
        m_ui->cmbPallet->addItem(p->c(QStringLiteral("name"))->getString());

    onCloneChanged();
}

NewPalletDialog::~NewPalletDialog()
{
    delete m_ui;
}

void NewPalletDialog::initPallet(orba::ModuleObject *pallet)
{
    if (!pallet || pallet->isEmpty())
        return;
    orba::ModuleObject *toolset = pallet->c(QStringLiteral("calibrate"), true)->c(QStringLiteral("toolset"), true);
    if (toolset->c(QStringLiteral("ref"))->isEmpty())
        tpallet::identityToolsetNode(toolset);
    tpallet::initWayPointNode(pallet);
    tpallet::generatePoints1(pallet, nullptr);
}

void NewPalletDialog::onCloneChanged()
{
    const bool clone = m_ui->rdbClone->isChecked();
    m_ui->cmbPallet->setEnabled(clone);
    m_ui->spnRow->setEnabled(!clone);
    m_ui->spnCol->setEnabled(!clone);
}

bool NewPalletDialog::refuse(const QString &message)
{
    tpallet::recordCfgLog(message, true);
    return false;
}

bool NewPalletDialog::validate()
{
    const QString name = m_ui->edtName->text();
    if (name.isEmpty())
        return refuse(tr("Tray name is empty!"));
    if (name.length() > kMaxNameLength)
        return refuse(tr("Tray name length is be greater than 32!"));
    const bool renamed = m_isNew || name != m_pallet->c(QStringLiteral("name"))->getString();
    if (renamed && tpallet::hasPallet(name))
        return refuse(tr("Tray name is repeated!"));
    // Taken from the spin boxes even when cloning, where they are disabled.
    if (m_ui->spnRow->value() * m_ui->spnCol->value() > kMaxPlaces)
        return refuse(tr("Total wobj number can not be greater than %1!").arg(kMaxPlaces));
    return true;
}

void NewPalletDialog::addPallet()
{
    orba::ModuleObject *pallets = tpallet::palletsNode();
    orba::ModuleObject *source = m_ui->rdbClone->isChecked() ? tpallet::getPallet(m_ui->cmbPallet->currentText())
                                                             : orba::ModuleManager::emptyMobj();
    orba::ModuleObject *pallet = pallets->append(this, QStringLiteral("#%1").arg(pallets->cmobjCount()));
    if (!source->isEmpty()) {
        pallet->copyFrom(this, source, true, false);
    } else {
        pallet->copyFrom(this, orba::m(QStringLiteral("tpallet.default")), true, false);
        pallet->set(this, QStringLiteral("pattern.row"), m_ui->spnRow->value(), true);
        pallet->set(this, QStringLiteral("pattern.col"), m_ui->spnCol->value(), true);
        initPallet(pallet);
    }
    pallet->set(this, QStringLiteral("name"), m_ui->edtName->text(), true);
    pallet->set(this, QStringLiteral("desc"), m_ui->edtDesc->text(), true);

    const orba::MobjPtr reply = tservice()->execCommand(this, QStringLiteral("tray.add_one"), pallet);
    if (reply->r(QStringLiteral("data.size"))->getInt() != pallets->size()) {
        tpallet::logError(QStringLiteral("pallet add error!"));
        // The row stays in the table until the next reload: say that it is not on the controller.
        tpallet::recordCfgLog(tr("Tray %1 was not stored on the controller, it will be lost at the next reload!")
                                  .arg(m_ui->edtName->text()),
                              true);
    }
}

void NewPalletDialog::editPallet()
{
    const QString name = m_ui->edtName->text();
    const QString desc = m_ui->edtDesc->text();
    if (name != m_pallet->c(QStringLiteral("name"))->getString()
        || desc != m_pallet->c(QStringLiteral("desc"))->getString()) {
        m_pallet->set(this, QStringLiteral("name"), name, true);
        m_pallet->set(this, QStringLiteral("desc"), desc, true);
        tpallet::saveNameToRC(m_pallet->indexInPmobj(), name, desc);
    }
    const int row = m_ui->spnRow->value();
    const int col = m_ui->spnCol->value();
    if (row != m_pallet->r(QStringLiteral("pattern.row"))->getInt()
        || col != m_pallet->r(QStringLiteral("pattern.col"))->getInt()) {
        m_pallet->set(this, QStringLiteral("pattern.row"), row, true);
        m_pallet->set(this, QStringLiteral("pattern.col"), col, true);
        tpallet::genPointsAndSaveToRC(m_pallet);
    }
}

void NewPalletDialog::work()
{
    if (!m_isNew && !m_pallet)
        return;
    // Ok takes no focus, so a half-typed count ("0", "") may still be on screen: settle it to the
    // value that will be used, and show that.
    m_ui->spnRow->interpretText();
    m_ui->spnCol->interpretText();
    if (!validate())
        return;
    if (m_isNew)
        addPallet();
    else
        editPallet();
    tpallet::triggerNode()->c(QStringLiteral("refresh_table"))->trigger(this);
    accept();
}
