#pragma once

#include <QObject>
#include <QPointer>

namespace orba {
class ModuleObject;
}

/*
 * The host nodes the shell fills in place of the pendant's other host modules: the operator's
 * user level, the tool page selection, the project's tool and work-object lists (read from the
 * controller on every connection), the global tool and work-object settings, and the remembered
 * import/export directories (kept in the settings).
 */
class HostNodes : public QObject
{
    Q_OBJECT

public:
    explicit HostNodes(QObject *parent = nullptr);
    ~HostNodes() override;

    // Creates the nodes with their start values.
    void create(int level);
    void setLevel(int level);
    static int level();

    // Reloads the project's tool and work-object lists from the controller. False when the
    // controller did not answer (the lists are then left as they were).
    bool refreshProject();

    // Makes the tool page's choice the controller's active toolset, as the pendant's tool page
    // does: the named tool's frame and load with the named work object's frame. A named toolset
    // (a module made its own active) is left alone. False when nothing could be sent.
    bool applyToolpage();
    // The "sys.toolset" record of a tool and a work object given as project records (millimetres,
    // degrees, kg.mm²); false with the reason when the tool cannot be used.
    static bool toolsetFromRecords(const orba::ModuleObject *tool, const orba::ModuleObject *wobj,
                                   orba::ModuleObject *toolset, QString *error);
    // The first record named `name` among the project's and the global tools ("tool") or work
    // objects ("wobj"); the empty node when there is none.
    static orba::ModuleObject *findRecord(const QString &kind, const QString &name);

    static QString systemToolName() { return QStringLiteral("tool0"); }
    static QString systemWobjName() { return QStringLiteral("wobj0"); }

private:
    bool loadList(const QString &command, const QString &systemName, const QString &node);
    void rememberPath(const QString &which);
    void seedGlobalLists();

    QPointer<orba::ModuleObject> m_import;
    QPointer<orba::ModuleObject> m_export;
};
