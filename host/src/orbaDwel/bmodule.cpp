#include <dwel/bmodule.h>

#include <orba/json.h>
#include <orba/log.h>
#include <orba/moduleobject.h>

#include <QDateTime>
#include <QFile>
#include <QWidget>

#include <memory>

namespace dwel {

namespace {

void logError(const QString &message)
{
    orba::QFLog(QStringLiteral("\033[31m"),
                QStringLiteral("[E|%1]").arg(QDateTime::currentDateTime().toString(QStringLiteral("MM/dd hh:mm:ss.zzz"))),
                QStringLiteral("./log/%1"), QStringLiteral("host"), QStringLiteral("log"))
        << message;
}

// Walks (and creates) the dotted path below the root; null for an unusable key.
orba::ModuleObject *ensureGlobal(QObject *sender, const QString &key)
{
    const QStringList parts = key.split(QLatin1Char('.'));
    orba::ModuleObject *node = orba::m();
    for (const QString &part : parts) {
        if (part.isEmpty())
            return nullptr;
        orba::ModuleObject *child = node->c(part, false);
        if (child->isEmpty())
            child = node->append(sender, part);
        node = child;
    }
    return node;
}

// Adds what the template has and the node lacks; existing values and children stay.
void mergeMissing(QObject *sender, orba::ModuleObject *target, const orba::ModuleObject *source)
{
    if (!target->hasValue() && source->hasValue() && target->cmobjCount() == 0)
        target->setValue(sender, source->value());
    for (orba::ModuleObject *child : source->cmobjs(false)) {
        orba::ModuleObject *existing = target->c(child->name(), false);
        if (existing->isEmpty()) {
            orba::ModuleObject *copy = target->append(sender, child->name());
            copy->copyFrom(sender, child, true, true);
        } else {
            mergeMissing(sender, existing, child);
        }
    }
}

} // namespace

BModule::BModule(QObject *parent) : QObject(parent) {}

BModule::~BModule() = default;

QString BModule::name() const
{
    return objectName();
}

#define DWEL_FORWARD(fn)                                                                                    \
    void BModule::fn()                                                                                      \
    {                                                                                                       \
        const QList<QPointer<BModule>> subs = m_submodules;                                                 \
        for (const QPointer<BModule> &sub : subs) {                                                         \
            if (sub)                                                                                        \
                sub->fn();                                                                                  \
        }                                                                                                   \
    }

DWEL_FORWARD(init)
DWEL_FORWARD(afterInit)
DWEL_FORWARD(setup)
DWEL_FORWARD(afterSetup)
DWEL_FORWARD(render)
DWEL_FORWARD(afterRender)
DWEL_FORWARD(idle)
DWEL_FORWARD(afterIdle)
DWEL_FORWARD(beforeDetach)
DWEL_FORWARD(detach)

#undef DWEL_FORWARD

QWidget *BModule::wgt()
{
    return nullptr;
}

void BModule::addSubmodule(BModule *module)
{
    if (!module || module == this)
        return;
    for (const QPointer<BModule> &sub : qAsConst(m_submodules)) {
        if (sub == module)
            return;
    }
    module->setParent(this);
    m_submodules.append(QPointer<BModule>(module));
}

QList<BModule *> BModule::submodules() const
{
    QList<BModule *> list;
    for (const QPointer<BModule> &sub : m_submodules) {
        if (sub)
            list.append(sub.data());
    }
    return list;
}

bool BModule::bindMobjJson(const QString &key, const QString &templatePath, bool replace)
{
    QFile file(templatePath);
    if (!file.open(QIODevice::ReadOnly)) {
        logError(QStringLiteral("bindMobjJson(%1): cannot open %2: %3").arg(key, templatePath, file.errorString()));
        return false;
    }
    if (file.size() > orba::json::maxJsonBytes()) {
        logError(QStringLiteral("bindMobjJson(%1): %2 is too large").arg(key, templatePath));
        return false;
    }
    const QByteArray text = file.readAll();

    orba::ModuleObject fresh(key);
    QString error;
    if (!orba::json::read(this, &fresh, text, &error)) {
        logError(QStringLiteral("bindMobjJson(%1): %2: %3").arg(key, templatePath, error));
        return false;
    }

    orba::ModuleObject *node = ensureGlobal(this, key);
    if (!node || node->isEmpty()) {
        logError(QStringLiteral("bindMobjJson: invalid key \"%1\"").arg(key));
        return false;
    }
    if (replace || node->isNull())
        node->copyFrom(this, &fresh, true, true);
    else
        mergeMissing(this, node, &fresh);
    return true;
}

} // namespace dwel
