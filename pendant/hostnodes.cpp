#include "hostnodes.h"

#include <kx/kx.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <cmath>

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

    seedGlobalLists();
    for (const char *path : {"tormo.toolpage.tool", "tormo.toolpage.wobj", "tormo.toolpage.toolset"})
        connect(orba::m(QLatin1String(path)), &orba::ModuleObject::changed, this, [this](const QVariant &, const QVariant &, QObject *sender) {
            if (sender != this)
                applyToolpage();
        });

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

void HostNodes::seedGlobalLists()
{
    // A fresh pendant offers one global robot-held tool and one global work object, so that the
    // tool bar and the tool import have something of the pendant's own besides the project's.
    orba::ModuleObject *tools = kx::globalNode(QStringLiteral("tormo.setting.g_tool.g_tools"));
    if (tools->cmobjCount() == 0 && tcore::SettingManager::getStr(QStringLiteral("global/tools")).isEmpty()) {
        tools->importFromJson(this, QByteArrayLiteral(
            "[{\"name\":\"g_hand\",\"robhold\":true,"
            "\"frame\":{\"pos\":{\"x\":0.0,\"y\":0.0,\"z\":120.0},\"ori\":{\"euler\":{\"a\":0.0,\"b\":0.0,\"c\":0.0}}},"
            "\"load\":{\"mass\":3.0,\"pose\":{\"pos\":{\"x\":0.0,\"y\":0.0,\"z\":60.0}},"
            "\"moment\":[800.0,800.0,300.0]}}]"));
    }
    orba::ModuleObject *wobjs = kx::globalNode(QStringLiteral("tormo.setting.g_wobj.g_wobjs"));
    if (wobjs->cmobjCount() == 0 && tcore::SettingManager::getStr(QStringLiteral("global/wobjs")).isEmpty()) {
        wobjs->importFromJson(this, QByteArrayLiteral(
            "[{\"name\":\"g_conveyor\",\"robhold\":false,"
            "\"frame\":{\"pos\":{\"x\":500.0,\"y\":300.0,\"z\":100.0},\"ori\":{\"euler\":{\"a\":0.0,\"b\":0.0,\"c\":0.0}}}}]"));
    }
}

orba::ModuleObject *HostNodes::findRecord(const QString &kind, const QString &name)
{
    const QStringList lists = kind == QLatin1String("tool")
        ? QStringList{"tormo.project.tool.system_list", "tormo.project.tool._list", "tormo.setting.g_tool.g_tools"}
        : QStringList{"tormo.project.wobj.system_list", "tormo.project.wobj._list", "tormo.setting.g_wobj.g_wobjs"};
    for (const QString &path : lists) {
        const orba::ModuleObject *list = orba::m(path);
        for (int i = 0; i < list->cmobjCount(); ++i) {
            orba::ModuleObject *record = list->c(i);
            if (record->r(QStringLiteral("name"))->getString() == name)
                return record;
        }
    }
    return orba::ModuleManager::emptyMobj();
}

namespace {

void frameFromRecord(const orba::ModuleObject *frame, orba::ModuleObject *target, QObject *sender)
{
    const double degToRad = M_PI / 180.0;
    const char *pos[3] = {"pos.x", "pos.y", "pos.z"};
    const char *euler[3] = {"ori.euler.a", "ori.euler.b", "ori.euler.c"};
    for (int i = 0; i < 3; ++i) {
        target->set(sender, QStringLiteral("trans.#%1").arg(i), frame->r(QLatin1String(pos[i]))->getDouble(0.0) / 1000.0);
        target->set(sender, QStringLiteral("rot.#%1").arg(i), frame->r(QLatin1String(euler[i]))->getDouble(0.0) * degToRad);
    }
}

} // namespace

bool HostNodes::toolsetFromRecords(const orba::ModuleObject *tool, const orba::ModuleObject *wobj,
                                   orba::ModuleObject *toolset, QString *error)
{
    if (tool->isEmpty()) {
        *error = tr("unknown tool");
        return false;
    }
    if (!tool->r(QStringLiteral("robhold"))->getBool(true)) {
        // A stationary tool needs a robot-held work object; the simulated arm carries its tools.
        *error = tr("stationary tools are not supported");
        return false;
    }
    toolset->set(nullptr, QStringLiteral("name"), QString(QLatin1String("")));
    frameFromRecord(tool->r(QStringLiteral("frame")), toolset->c(QStringLiteral("end"), true), nullptr);
    frameFromRecord(wobj->r(QStringLiteral("frame")), toolset->c(QStringLiteral("ref"), true), nullptr);
    const orba::ModuleObject *load = tool->r(QStringLiteral("load"));
    toolset->set(nullptr, QStringLiteral("load.mass"), load->r(QStringLiteral("mass"))->getDouble(0.0));
    const char *cog[3] = {"pose.pos.x", "pose.pos.y", "pose.pos.z"};
    for (int i = 0; i < 3; ++i) {
        toolset->set(nullptr, QStringLiteral("load.cog.#%1").arg(i), load->r(QLatin1String(cog[i]))->getDouble(0.0) / 1000.0);
        toolset->set(nullptr, QStringLiteral("load.inertia.#%1").arg(i),
                     load->r(QStringLiteral("moment.#%1").arg(i))->getDouble(0.0) / 1000000.0);
    }
    return true;
}

bool HostNodes::applyToolpage()
{
    if (!orba::m(QStringLiteral("tormo.toolpage.toolset"))->getString().isEmpty())
        return true;
    const QString toolName = orba::m(QStringLiteral("tormo.toolpage.tool"))->getString();
    const QString wobjName = orba::m(QStringLiteral("tormo.toolpage.wobj"))->getString();
    orba::ModuleObject toolset(QStringLiteral("toolset"));
    QString error;
    if (!toolsetFromRecords(findRecord(QStringLiteral("tool"), toolName), findRecord(QStringLiteral("wobj"), wobjName),
                            &toolset, &error)) {
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("warning"), tr("Tool"),
                                                   QStringLiteral("%1: %2").arg(toolName, error), 1);
        return false;
    }
    if (tservice()->set(this, QStringLiteral("sys.toolset"), &toolset) < 0) {
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("warning"), tr("Tool"),
                                                   tr("%1 / %2 not made active").arg(toolName, wobjName), 1);
        return false;
    }
    return true;
}
