#pragma once

#include <QPointer>
#include <QTreeWidget>

namespace orba {
class ModuleObject;
}

/*
 * Navigation built from the global array "tnav.pages": entries are grouped under their dotted
 * parent ("robot.pack" gives "Robot" > "Pack"), ordered by "position" (-1 after the others), and
 * choosing one asks for the page named by its "nav". The tree follows the array: entries added
 * later, or whose "nav" is set after registration, appear on the next event-loop turn.
 */
class NavigationView : public QTreeWidget
{
    Q_OBJECT

public:
    static constexpr int NavRole = Qt::UserRole;
    static constexpr int PathRole = Qt::UserRole + 1;
    static constexpr int ModuleRole = Qt::UserRole + 2;

    explicit NavigationView(QWidget *parent = nullptr);
    ~NavigationView() override;

    // Rebuilds now (tests and start-up do not wait for the queued rebuild).
    void rebuild();
    // The item showing the page `nav`, or null.
    QTreeWidgetItem *itemForPage(const QString &nav) const;
    // "Robot > Pack > Tray" for the page `nav`; empty when it has no entry.
    QString pathOfPage(const QString &nav) const;
    // Marks the entry of `nav` as current.
    void selectPage(const QString &nav);
    // The navigation name of the entry whose title, nav or module is `name`; empty when none.
    QString findPage(const QString &name) const;
    // Navigation names of the module pages, in tree order.
    QStringList pages() const;

    static QString groupTitle(const QString &segment);
    static QString homePage() { return QStringLiteral("pendant.home"); }

signals:
    void pageRequested(const QString &nav);

private:
    void scheduleRebuild();
    void watchPages();
    void onItemClicked(QTreeWidgetItem *item);

    QPointer<orba::ModuleObject> m_pages;
    bool m_rebuildPending = false;
};
