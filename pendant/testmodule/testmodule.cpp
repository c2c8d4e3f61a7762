#include <dwel/bfactory.h>
#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>
#include <kx/kx.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QCoreApplication>
#include <QLabel>
#include <QPointer>

namespace {

void record(const QString &step)
{
    orba::ModuleObject *order = kx::globalNode(QStringLiteral("pendanttest.order"));
    order->set(nullptr, QStringLiteral("#%1").arg(order->cmobjCount()), step);
}

} // namespace

class PendantTestModule : public dwel::BModule
{
    Q_OBJECT

public:
    explicit PendantTestModule(QObject *parent)
        : dwel::BModule(parent)
    {
        tcore::ManagerHelper::instance()->registQrcAlias(QStringLiteral("pendanttest"));
    }
    ~PendantTestModule() override { delete m_page.data(); }

    QString name() const override { return QStringLiteral("pendanttest"); }

    void init() override
    {
        record(QStringLiteral("init"));
        orba::ModuleObject *entry =
            kx::tnav::registerPage(this, tr("Test Page"), QStringLiteral("robot.pack"), QString(), -1);
        entry->set(this, QStringLiteral("nav"), QStringLiteral("pendanttest.page"));
        // Counts the connections the module sees, to prove the link opens after the modules exist.
        connect(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected, this, [] {
            orba::ModuleObject *n = kx::globalNode(QStringLiteral("pendanttest.connected"));
            n->setValue(nullptr, n->getInt(0) + 1);
        });
    }
    void afterInit() override { record(QStringLiteral("afterInit")); }
    void setup() override
    {
        record(QStringLiteral("setup"));
        m_page = new QLabel(tr("Test Page"));
        m_page->setObjectName(QStringLiteral("pendantTestPage"));
        dwel::CenterWidget::addPage(this, QStringLiteral("pendanttest.page"), m_page);
    }
    void afterSetup() override { record(QStringLiteral("afterSetup")); }
    void render() override { record(QStringLiteral("render")); }
    void afterRender() override { record(QStringLiteral("afterRender")); }
    void beforeDetach() override { record(QStringLiteral("beforeDetach")); }
    void detach() override { record(QStringLiteral("detach")); }

private:
    QPointer<QLabel> m_page;
};

namespace {

[[maybe_unused]] const bool registered = [] {
    bfactory()->regist(QStringLiteral("pendanttest"), [](QObject *parent) -> dwel::BModule * {
        record(QStringLiteral("create"));
        return new PendantTestModule(parent);
    });
    return true;
}();

} // namespace

#include "testmodule.moc"
