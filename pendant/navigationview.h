#pragma once

#include "shelltranslations.h"

#include <QHash>
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
 *
 * Titles are shown in the current language: the shell's own ("Home", the group names) and the
 * modules' entries, whose titles the modules translate once when they register them; the shell
 * traces those back to their source texts (setTitleSources) and translates them again whenever the
 * language changes.
 */
class NavigationView : public QTreeWidget
{
    Q_OBJECT

public:
    static constexpr int NavRole = Qt::UserRole;
    static constexpr int PathRole = Qt::UserRole + 1;
    static constexpr int ModuleRole = Qt::UserRole + 2;
    // The titles an entry is also found by: as registered, and its source text when known.
    static constexpr int TitlesRole = Qt::UserRole + 3;

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
    // The navigation name of the entry whose title (shown, registered or source), nav or module is
    // `name`; empty when none.
    QString findPage(const QString &name) const;
    // Navigation names of the module pages, in tree order.
    QStringList pages() const;
    // The width that shows every entry whole (indentation and frame included).
    int preferredWidth() const;
    // Source texts of titles, as seen while the modules registered their entries: every entry whose
    // title is the current translation of one of them is from now on shown in the current language.
    void setTitleSources(const QList<SourceRecorder::Source> &sources);

    // "pack" -> "Pack"; displayedGroupTitle() is that in the current language.
    static QString groupTitle(const QString &segment);
    static QString displayedGroupTitle(const QString &segment);
    static QString homePage() { return QStringLiteral("pendant.home"); }

signals:
    void pageRequested(const QString &nav);
    // After every rebuild (entries changed, language changed).
    void rebuilt();

protected:
    void changeEvent(QEvent *event) override;

private:
    void scheduleRebuild();
    void watchPages();
    void onItemClicked(QTreeWidgetItem *item);

    QString displayedTitle(const QString &title) const;

    QPointer<orba::ModuleObject> m_pages;
    QHash<QString, SourceRecorder::Source> m_titleSources;
    bool m_rebuildPending = false;
};
