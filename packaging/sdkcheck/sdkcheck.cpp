// The smallest complete pendant module: registers under the factory key "sdkcheck", announces its
// page under "robot.pack" and shows a label with a quaternion computed by the SDK's frame helpers.
#include <dwel/bfactory.h>
#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>
#include <kx/calc.h>
#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QLabel>
#include <QPointer>

class SdkCheckModule : public dwel::BModule
{
    Q_OBJECT

public:
    explicit SdkCheckModule(QObject *parent)
        : dwel::BModule(parent)
    {
    }
    ~SdkCheckModule() override { delete m_page.data(); }

    QString name() const override { return QStringLiteral("sdkcheck"); }

    void init() override
    {
        orba::ModuleObject *entry =
            kx::tnav::registerPage(this, QStringLiteral("SDK check"), QStringLiteral("robot.pack"), QString(), -1);
        entry->set(this, QStringLiteral("nav"), QStringLiteral("sdkcheck.page"));
    }

    void setup() override
    {
        orba::ModuleObject rot(QStringLiteral("rot"));
        rot.set(this, QStringLiteral("#0"), 0.0);
        rot.set(this, QStringLiteral("#1"), 0.0);
        rot.set(this, QStringLiteral("#2"), 1.5707963267948966);
        orba::ModuleObject quat(QStringLiteral("quat"));
        kx::calc::rot2Quaternion(&rot, &quat);
        m_page = new QLabel(QStringLiteral("SDK check: %1").arg(QString::fromUtf8(quat.exportToJson())));
        m_page->setObjectName(QStringLiteral("sdkCheckPage"));
        dwel::CenterWidget::addPage(this, QStringLiteral("sdkcheck.page"), m_page);
    }

private:
    QPointer<QLabel> m_page;
};

namespace {

[[maybe_unused]] const bool registered = [] {
    bfactory()->regist(QStringLiteral("sdkcheck"),
                       [](QObject *parent) -> dwel::BModule * { return new SdkCheckModule(parent); });
    return true;
}();

} // namespace

#include "sdkcheck.moc"
