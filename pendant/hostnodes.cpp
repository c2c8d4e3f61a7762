#include "hostnodes.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>
#include <tcore/settingmanager.h>

HostNodes::HostNodes(QObject *parent)
    : QObject(parent)
{
}

HostNodes::~HostNodes() = default;

void HostNodes::create(int level)
{
    setLevel(level);

    orba::ModuleObject *toolpage = kx::globalNode(QStringLiteral("tormo.toolpage"));
    if (!toolpage->hasCmobj(QStringLiteral("tool")))
        toolpage->set(this, QStringLiteral("tool"), systemToolName());
    if (!toolpage->hasCmobj(QStringLiteral("wobj")))
        toolpage->set(this, QStringLiteral("wobj"), systemWobjName());
    // An empty toolset name means "the project's tool and work object apply".
    if (!toolpage->hasCmobj(QStringLiteral("toolset")))
        toolpage->set(this, QStringLiteral("toolset"), QString(QLatin1String("")));
    orba::ModuleObject *body = kx::globalNode(QStringLiteral("tormo.body"));
    if (!body->hasCmobj(QStringLiteral("toolset")))
        body->set(this, QStringLiteral("toolset"), QString(QLatin1String("")));

    for (const char *path : {"tormo.project.tool.system_list", "tormo.project.tool._list",
                             "tormo.project.wobj.system_list", "tormo.project.wobj._list",
                             "tormo.setting.g_tool.g_tools", "tormo.setting.g_wobj.g_wobjs"})
        kx::globalNode(QLatin1String(path));

    // Global tool and work-object settings are the pendant's own, kept with the settings as JSON.
    for (const auto &pair : {std::make_pair("tormo.setting.g_tool.g_tools", "global/tools"),
                             std::make_pair("tormo.setting.g_wobj.g_wobjs", "global/wobjs")}) {
        const QString json = tcore::SettingManager::getStr(QLatin1String(pair.second));
        if (!json.isEmpty())
            kx::globalNode(QLatin1String(pair.first))->importFromJson(this, json.toUtf8());
    }

    orba::ModuleObject *filePath = kx::globalNode(QStringLiteral("tormo.help.file_path"));
    filePath->set(this, QStringLiteral("import"), tcore::SettingManager::getStr(QStringLiteral("file_path/import")));
    filePath->set(this, QStringLiteral("export"), tcore::SettingManager::getStr(QStringLiteral("file_path/export")));
    m_import = filePath->c(QStringLiteral("import"));
    m_export = filePath->c(QStringLiteral("export"));
    connect(m_import.data(), &orba::ModuleObject::changed, this,
            [this](const QVariant &, const QVariant &, QObject *) { rememberPath(QStringLiteral("import")); });
    connect(m_export.data(), &orba::ModuleObject::changed, this,
            [this](const QVariant &, const QVariant &, QObject *) { rememberPath(QStringLiteral("export")); });

    kx::globalNode(QStringLiteral("tormo.log.current"));
}

void HostNodes::setLevel(int level)
{
    kx::globalNode(QStringLiteral("tcore.r.level"))->setValue(this, qBound(0, level, 4));
}

int HostNodes::level()
{
    return orba::m(QStringLiteral("tcore.r.level"))->getInt(0);
}

void HostNodes::rememberPath(const QString &which)
{
    orba::ModuleObject *node = which == QLatin1String("import") ? m_import.data() : m_export.data();
    if (node)
        tcore::SettingManager::setStr(QStringLiteral("file_path/") + which, node->getString());
}

bool HostNodes::refreshProject()
{
    const bool tools = loadList(QStringLiteral("sim.tool.list"), systemToolName(), QStringLiteral("tormo.project.tool"));
    const bool wobjs = loadList(QStringLiteral("sim.wobj.list"), systemWobjName(), QStringLiteral("tormo.project.wobj"));
    return tools && wobjs;
}

bool HostNodes::loadList(const QString &command, const QString &systemName, const QString &node)
{
    orba::MobjPtr reply = tservice()->get(this, command);
    if (!reply || tservice()->lastStatus() < 0)
        return false;

    orba::ModuleObject *systemList = kx::globalNode(node + QStringLiteral(".system_list"));
    orba::ModuleObject *projectList = kx::globalNode(node + QStringLiteral("._list"));
    systemList->clear(this);
    projectList->clear(this);
    // The built-in frame is the system's; everything else belongs to the project.
    for (orba::ModuleObject *record : reply->cmobjs()) {
        const bool system = record->c(QStringLiteral("name"))->getString() == systemName;
        orba::ModuleObject *list = system ? systemList : projectList;
        orba::ModuleObject *entry = list->append(this, QStringLiteral("#%1").arg(list->cmobjCount()));
        entry->copyFrom(this, record, true, false);
    }
    return true;
}
