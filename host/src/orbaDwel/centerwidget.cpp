#include <dwel/centerwidget.h>

#include <dwel/bmodule.h>

#include <QPointer>

namespace dwel {

namespace {
// The first container created (by the shell, or lazily by instance()) is the shared one.
QPointer<CenterWidget> &sharedContainer()
{
    static QPointer<CenterWidget> container;
    return container;
}
} // namespace

CenterWidget::CenterWidget(QWidget *parent) : QStackedWidget(parent)
{
    setObjectName(QStringLiteral("centerWidget"));
    if (!sharedContainer())
        sharedContainer() = this;
}

CenterWidget::~CenterWidget()
{
    // The pages are deleted as children after this body, when m_pages is already gone: drop their
    // bookkeeping connections first.
    for (QWidget *w : qAsConst(m_pages))
        disconnect(w, &QObject::destroyed, this, nullptr);
}

bool CenterWidget::addPage(BModule *module, const QString &name, QWidget *widget)
{
    if (name.isEmpty() || !widget)
        return false;
    CenterWidget *container = instantiatedCenterWidget(module);
    if (!container)
        return false;
    if (container->m_pages.contains(name))
        return container->m_pages.value(name) == widget;

    container->m_pages.insert(name, widget);
    container->addWidget(widget);
    // A page destroyed by its owner must not stay listed under its name.
    QPointer<CenterWidget> guard(container);
    connect(widget, &QObject::destroyed, container, [guard, name, widget]() {
        if (guard && guard->m_pages.value(name) == widget)
            guard->m_pages.remove(name);
    });
    emit container->pageAdded(name);
    return true;
}

bool CenterWidget::hasPage(const QString &name) const
{
    return m_pages.contains(name);
}

QWidget *CenterWidget::page(const QString &name) const
{
    return m_pages.value(name, nullptr);
}

QStringList CenterWidget::pageNames() const
{
    QStringList names = m_pages.keys();
    names.sort();
    return names;
}

bool CenterWidget::showPage(const QString &name)
{
    QWidget *w = m_pages.value(name, nullptr);
    if (!w)
        return false;
    setCurrentWidget(w);
    emit pageShown(name);
    return true;
}

QString CenterWidget::currentPageName() const
{
    QWidget *current = currentWidget();
    if (!current)
        return QString();
    for (auto it = m_pages.constBegin(); it != m_pages.constEnd(); ++it) {
        if (it.value() == current)
            return it.key();
    }
    return QString();
}

CenterWidget *CenterWidget::instance()
{
    if (!sharedContainer())
        new CenterWidget(nullptr);
    return sharedContainer().data();
}

} // namespace dwel

dwel::CenterWidget *instantiatedCenterWidget(dwel::BModule *module)
{
    Q_UNUSED(module)
    return dwel::CenterWidget::instance();
}
