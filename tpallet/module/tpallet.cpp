#include "tpallet.h"

#include "modulelog.h"
#include "registration.h"

#include "pages/palletpage.h"

#include <dwel/bfactory.h>
#include <dwel/centerwidget.h>
#include <kx/globaluniqueptr.h>
#include <kx/kx.h>
#include <orba/creatormanager.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orba/names.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QDateTime>
#include <QDialog>
#include <QMetaType>
#include <QWidget>

#include <memory>

namespace {

const char *const kModuleKey = "tpallet";
const char *const kPageName = "tpallet.page";

// Factory and plug-in number, present for as long as the library is loaded.
const tpallet::Registration s_factory(
    [] { bfactory()->regist(QString::fromLatin1(kModuleKey), &tpallet::createModule); },
    [] { bfactory()->unregist(QString::fromLatin1(kModuleKey)); });
const tpallet::Registration s_plugin(
    [] { orba::pluginManager()->regist(QString::fromLatin1(kModuleKey), [] { return 11; }); },
    [] { orba::pluginManager()->unregist(QString::fromLatin1(kModuleKey)); });

using UniqueHandle = std::shared_ptr<kx::GlobalUniquePtr<QWidget>>;

int uniqueHandleType()
{
    static const int type = qRegisterMetaType<UniqueHandle>("std::shared_ptr<kx::GlobalUniquePtr<QWidget>>");
    return type;
}

} // namespace

TPallet::TPallet(QObject *parent)
    : dwel::BModule(parent)
{
}

TPallet::~TPallet() = default;

QString TPallet::name() const
{
    return QString::fromLatin1(kModuleKey);
}

void TPallet::init()
{
    orba::ModuleObject *entry = kx::tnav::registerPage(this, tr("Tray"), QStringLiteral("robot.pack"), QString(), -1);
    // Search keywords: the controller's word, then one in the operator's language.
    entry->set(this, QStringLiteral("nav"), QString::fromLatin1(kPageName), true)
        ->set(this, QStringLiteral("key"), QStringLiteral("tray") + QStringLiteral(", ") + tr("pallet"), true);
}

void TPallet::setup()
{
    dwel::CenterWidget *center = instantiatedCenterWidget(this);
    m_page = new PalletPage(center, this);
    addSubmodule(m_page);
    // The page is created after the host's init() round, so it is initialised here.
    m_page->init();
    dwel::CenterWidget::addPage(this, QString::fromLatin1(kPageName), m_page->wgt());
}

PalletPage *TPallet::page() const
{
    return m_page;
}

namespace tpallet {

int api()
{
    return 1;
}

QString version()
{
    // The host's sum over the component versions, less 2 by convention of the version text.
    return mName(QStringLiteral("1"), QStringLiteral("1"), QString::number(ver(QString::fromLatin1(kModuleKey), true) - 2));
}

dwel::BModule *createModule(QObject *parent)
{
    std::unique_ptr<TPallet> module(new TPallet(parent));
    logStartup(QStringLiteral("tpallet v") + version());
    tcore::ManagerHelper::instance()->registQrcAlias(QString::fromLatin1(kModuleKey));
    module->bindMobjJson(QString::fromLatin1(kModuleKey), kx::templatePath(QString::fromLatin1(kModuleKey), QString::fromLatin1(kModuleKey)), true);
    return module.release();
}

orba::ModuleObject *palletsNode()
{
    return orba::m(QStringLiteral("tpallet.pallets"));
}

orba::ModuleObject *triggerNode()
{
    return orba::m(QStringLiteral("tpallet.trigger"));
}

bool hasPallet(const QString &name)
{
    const orba::ModuleObject *pallets = palletsNode();
    const int count = pallets->cmobjCount();
    for (int i = 0; i < count; ++i) {
        if (pallets->c(i)->c(QStringLiteral("name"), false)->getString() == name)
            return true;
    }
    return false;
}

orba::ModuleObject *getPallet(const QString &name)
{
    if (name.trimmed().isEmpty())
        return orba::ModuleManager::emptyMobj();
    const orba::ModuleObject *pallets = palletsNode();
    const int count = pallets->cmobjCount();
    for (int i = 0; i < count; ++i) {
        orba::ModuleObject *pallet = pallets->c(i);
        if (pallet->c(QStringLiteral("name"), false)->getString() == name)
            return pallet;
    }
    return orba::ModuleManager::emptyMobj();
}

void saveToRC(orba::ModuleObject *pallet)
{
    if (!pallet || pallet->isEmpty())
        return;
    tservice()->execCommand(nullptr, QStringLiteral("tray.set.one"), pallet);
}

void saveAllToRC()
{
    tservice()->set(nullptr, QStringLiteral("tray.data"), palletsNode());
}

void saveNameToRC(int index, const QString &name, const QString &desc)
{
    orba::ModuleObject temp(QStringLiteral("temp"));
    temp.set(nullptr, QStringLiteral("index"), index, true);
    temp.set(nullptr, QStringLiteral("name"), name, true);
    temp.set(nullptr, QStringLiteral("desc"), desc, true);
    tservice()->execCommand(nullptr, QStringLiteral("tray.set.name"), &temp);
}

void recordCfgLog(const QString &title, bool error)
{
    orba::ModuleObject log(QStringLiteral("log"));
    log.set(nullptr, QStringLiteral("level"), error ? QStringLiteral("error") : QStringLiteral("warning"), true);
    log.set(nullptr, QStringLiteral("title"), title, true);
    log.set(nullptr, QStringLiteral("date_time"),
            QDateTime::currentDateTime().toString(QStringLiteral("yyyy-MM-dd/HH:mm:ss")), true);
    log.set(nullptr, QStringLiteral("rcid"), orba::m(QStringLiteral("tcore.r.id"))->getString(), true);

    const QVariant entry(QString::fromUtf8(log.exportToJson(true)));
    orba::ModuleObject *current = kx::globalNode(QStringLiteral("tormo.log.current"));
    // The same message twice within a second is the same text: notify anyway, it is a new entry.
    if (current->value() == entry)
        current->trigger(nullptr);
    else
        current->setValue(nullptr, entry, true);
}

void makeUniqueWidget(const QString &key, QWidget *widget)
{
    if (!widget)
        return;
    uniqueHandleType();
    orba::ModuleObject *node = kx::globalNode(key);
    QObject *previous = node->value().value<QObject *>();
    if (!previous)
        previous = kx::uniqueObject(key);
    if (previous && previous != widget)
        delete previous;

    auto handle = std::make_shared<kx::GlobalUniquePtr<QWidget>>(key, widget);
    widget->setProperty("unique", QVariant::fromValue(handle));
    widget->setAttribute(Qt::WA_DeleteOnClose, true);
    widget->setAttribute(Qt::WA_StyleSheet, true);
}

void makeUniqueDialog(QWidget *widget)
{
    makeUniqueWidget(QStringLiteral("tpallet.dialog"), widget);
}

void makeUniqueMoveDialog(QWidget *widget)
{
    makeUniqueWidget(QStringLiteral("tpallet.move.dialog"), widget);
}

void bindDialogToNode(QDialog *dialog, orba::ModuleObject *node)
{
    if (!dialog || !node || node->isEmpty())
        return;
    QObject::connect(node, &QObject::destroyed, dialog, &QDialog::reject);
}

} // namespace tpallet
