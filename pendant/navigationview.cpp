#include "navigationview.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QCoreApplication>
#include <QEvent>
#include <QHeaderView>
#include <QTimer>

#include <algorithm>
#include <climits>

namespace {

// The groups of the pendant's navigation, so that their names are translated.
[[maybe_unused]] const char *const kGroupNames[] = {
    QT_TRANSLATE_NOOP("NavigationView", "Robot"),
    QT_TRANSLATE_NOOP("NavigationView", "Pack"),
    QT_TRANSLATE_NOOP("NavigationView", "Setting"),
};

} // namespace

NavigationView::NavigationView(QWidget *parent)
    : QTreeWidget(parent)
{
    setObjectName(QStringLiteral("treeNav"));
    setHeaderHidden(true);
    setColumnCount(1);
    setIndentation(12);
    setRootIsDecorated(false);
    setExpandsOnDoubleClick(false);
    setItemsExpandable(false);
    setFocusPolicy(Qt::NoFocus);
    connect(this, &QTreeWidget::itemClicked, this, &NavigationView::onItemClicked);
    rebuild();
}

NavigationView::~NavigationView() = default;

QString NavigationView::groupTitle(const QString &segment)
{
    if (segment.isEmpty())
        return segment;
    return segment.left(1).toUpper() + segment.mid(1);
}

QString NavigationView::displayedGroupTitle(const QString &segment)
{
    const QString title = groupTitle(segment);
    return QCoreApplication::translate("NavigationView", title.toUtf8().constData());
}

QString NavigationView::displayedTitle(const QString &title) const
{
    const auto it = m_titleSources.constFind(title);
    if (it == m_titleSources.constEnd())
        return title;
    return QCoreApplication::translate(it->context.constData(), it->text.constData(),
                                       it->disambiguation.isEmpty() ? nullptr : it->disambiguation.constData(), it->n);
}

void NavigationView::setTitleSources(const QList<SourceRecorder::Source> &sources)
{
    const QList<orba::ModuleObject *> nodes = m_pages ? m_pages->cmobjs() : QList<orba::ModuleObject *>();
    for (orba::ModuleObject *node : nodes) {
        const QString title = node->c(QStringLiteral("title"))->getString();
        if (title.isEmpty() || m_titleSources.contains(title))
            continue;
        for (const SourceRecorder::Source &s : sources) {
            const char *disambiguation = s.disambiguation.isEmpty() ? nullptr : s.disambiguation.constData();
            if (QCoreApplication::translate(s.context.constData(), s.text.constData(), disambiguation, s.n) == title) {
                m_titleSources.insert(title, s);
                break;
            }
        }
    }
    rebuild();
}

void NavigationView::changeEvent(QEvent *event)
{
    QTreeWidget::changeEvent(event);
    if (event->type() == QEvent::LanguageChange)
        rebuild();
}

void NavigationView::scheduleRebuild()
{
    if (m_rebuildPending)
        return;
    m_rebuildPending = true;
    QTimer::singleShot(0, this, [this] {
        if (m_rebuildPending)
            rebuild();
    });
}

void NavigationView::watchPages()
{
    orba::ModuleObject *pages = kx::globalNode(QStringLiteral("tnav.pages"));
    if (pages == m_pages)
        return;
    if (m_pages)
        disconnect(m_pages, nullptr, this, nullptr);
    m_pages = pages;
    connect(pages, &orba::ModuleObject::childInserted, this, &NavigationView::scheduleRebuild);
    connect(pages, &orba::ModuleObject::childRemoved, this, &NavigationView::scheduleRebuild);
    connect(pages, &orba::ModuleObject::cleared, this, &NavigationView::scheduleRebuild);
}

void NavigationView::rebuild()
{
    m_rebuildPending = false;
    const QString current = currentItem() ? currentItem()->data(0, NavRole).toString() : QString();
    watchPages();
    clear();

    auto *home = new QTreeWidgetItem(this, {tr("Home")});
    home->setData(0, NavRole, homePage());
    home->setData(0, PathRole, tr("Home"));

    struct Entry
    {
        QString title, parent, nav, icon, module;
        int position;
        int order;
    };
    QList<Entry> entries;
    const QList<orba::ModuleObject *> nodes = m_pages ? m_pages->cmobjs() : QList<orba::ModuleObject *>();
    for (orba::ModuleObject *node : nodes) {
        // Entries change shape after registration ("nav" is set by the module): follow them.
        connect(node, &orba::ModuleObject::childInserted, this, &NavigationView::scheduleRebuild, Qt::UniqueConnection);
        for (const char *field : {"nav", "title"}) {
            orba::ModuleObject *child = node->c(QLatin1String(field));
            if (!child->isEmpty())
                connect(child, &orba::ModuleObject::changed, this, &NavigationView::scheduleRebuild,
                        Qt::UniqueConnection);
        }
        Entry e;
        e.title = node->c(QStringLiteral("title"))->getString();
        e.parent = node->c(QStringLiteral("parent"))->getString();
        e.nav = node->c(QStringLiteral("nav"))->getString();
        e.icon = node->c(QStringLiteral("icon"))->getString();
        e.module = node->c(QStringLiteral("module"))->getString();
        e.position = node->c(QStringLiteral("position"))->getInt(-1);
        e.order = entries.size();
        entries.append(e);
    }
    // position -1 means after the others; equal positions keep registration order.
    std::stable_sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        const int pa = a.position < 0 ? INT_MAX : a.position;
        const int pb = b.position < 0 ? INT_MAX : b.position;
        return pa < pb;
    });

    for (const Entry &e : qAsConst(entries)) {
        QTreeWidgetItem *group = nullptr;
        QStringList path;
        for (const QString &segment : e.parent.split('.', Qt::SkipEmptyParts)) {
            const QString title = displayedGroupTitle(segment);
            path.append(title);
            QTreeWidgetItem *found = nullptr;
            const int count = group ? group->childCount() : topLevelItemCount();
            for (int i = 0; i < count && !found; ++i) {
                QTreeWidgetItem *candidate = group ? group->child(i) : topLevelItem(i);
                if (candidate->data(0, NavRole).isNull() && candidate->text(0) == title)
                    found = candidate;
            }
            if (!found) {
                found = group ? new QTreeWidgetItem(group, {title}) : new QTreeWidgetItem(this, {title});
                found->setFlags(Qt::ItemIsEnabled);
                found->setData(0, PathRole, path.join(QStringLiteral(" > ")));
                QFont font = found->font(0);
                font.setBold(true);
                found->setFont(0, font);
            }
            group = found;
        }
        const QString title = e.title.isEmpty() ? e.nav : displayedTitle(e.title);
        auto *item = group ? new QTreeWidgetItem(group, {title}) : new QTreeWidgetItem(this, {title});
        path.append(title);
        item->setData(0, NavRole, e.nav);
        item->setData(0, PathRole, path.join(QStringLiteral(" > ")));
        item->setData(0, ModuleRole, e.module);
        QStringList titles{e.title};
        const auto source = m_titleSources.constFind(e.title);
        if (source != m_titleSources.constEnd())
            titles.append(QString::fromUtf8(source->text));
        item->setData(0, TitlesRole, titles);
        if (e.nav.isEmpty())
            item->setFlags(Qt::NoItemFlags);
        if (!e.icon.isEmpty())
            item->setIcon(0, QIcon(e.icon));
    }
    expandAll();
    if (!current.isEmpty())
        selectPage(current);
    emit rebuilt();
}

QTreeWidgetItem *NavigationView::itemForPage(const QString &nav) const
{
    if (nav.isEmpty())
        return nullptr;
    QTreeWidgetItemIterator it(const_cast<NavigationView *>(this));
    for (; *it; ++it) {
        if ((*it)->data(0, NavRole).toString() == nav)
            return *it;
    }
    return nullptr;
}

QString NavigationView::pathOfPage(const QString &nav) const
{
    QTreeWidgetItem *item = itemForPage(nav);
    return item ? item->data(0, PathRole).toString() : QString();
}

void NavigationView::selectPage(const QString &nav)
{
    QTreeWidgetItem *item = itemForPage(nav);
    if (item)
        setCurrentItem(item);
}

QString NavigationView::findPage(const QString &name) const
{
    QTreeWidgetItemIterator it(const_cast<NavigationView *>(this));
    for (; *it; ++it) {
        const QString nav = (*it)->data(0, NavRole).toString();
        if (nav.isEmpty())
            continue;
        if (nav == name || (*it)->text(0).compare(name, Qt::CaseInsensitive) == 0
            || (*it)->data(0, ModuleRole).toString() == name
            || (*it)->data(0, TitlesRole).toStringList().contains(name, Qt::CaseInsensitive))
            return nav;
    }
    return QString();
}

QStringList NavigationView::pages() const
{
    QStringList names;
    QTreeWidgetItemIterator it(const_cast<NavigationView *>(this));
    for (; *it; ++it) {
        const QString nav = (*it)->data(0, NavRole).toString();
        if (!nav.isEmpty() && nav != homePage())
            names.append(nav);
    }
    return names;
}

int NavigationView::preferredWidth() const
{
    ensurePolished();
    int widest = 0;
    QList<QPair<QModelIndex, int>> pending{{QModelIndex(), 0}};
    while (!pending.isEmpty()) {
        const auto [parent, depth] = pending.takeFirst();
        for (int row = 0; row < model()->rowCount(parent); ++row) {
            const QModelIndex index = model()->index(row, 0, parent);
            widest = qMax(widest, depth * indentation() + sizeHintForIndex(index).width());
            pending.append({index, depth + 1});
        }
    }
    return widest + 2 * frameWidth() + 4;
}

void NavigationView::onItemClicked(QTreeWidgetItem *item)
{
    if (!item)
        return;
    const QString nav = item->data(0, NavRole).toString();
    if (!nav.isEmpty())
        emit pageRequested(nav);
}
