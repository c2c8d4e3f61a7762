#include "shell.h"

#include "hostnodes.h"
#include "mainwindow.h"
#include "moduleloader.h"
#include "navigationview.h"

#include <controller/controller.h>
#include <dwel/bmodule.h>
#include <orba/log.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tcptransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

Shell::Shell(const ShellOptions &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_hostNodes(new HostNodes(this))
    , m_loader(new ModuleLoader(this))
{
    connect(m_loader, &ModuleLoader::failure, this, [this](const QString &what, const QString &why) {
        report(QStringLiteral("error"), QStringLiteral("Module not loaded: %1").arg(QFileInfo(what).fileName()), why);
    });
}

Shell::~Shell()
{
    disconnect(tservice()->controllerManager(), nullptr, this, nullptr);
    // Modules go first: their pages live in the window and they may still talk to the controller.
    m_loader->detachModules();
    m_window.reset();
    if (tservice()->transport() == m_transport.get())
        tservice()->setTransport(nullptr);
    if (m_transport)
        m_transport->close();
    m_transport.reset();
    m_embedded.reset();
}

void Shell::report(const QString &level, const QString &title, const QString &text)
{
    m_failures.append(title + QStringLiteral(": ") + text);
    tcore::ManagerHelper::instance()->throwLog(this, level, title, text, 1);
    const bool error = level == QLatin1String("error");
    orba::QLog(error ? QStringLiteral("\033[31m") : QStringLiteral("\033[33m"),
               QStringLiteral("[%1|%2]").arg(error ? QStringLiteral("E") : QStringLiteral("W"),
                                             QDateTime::currentDateTime().toString(QStringLiteral("MM/dd hh:mm:ss.zzz"))))
        << QStringLiteral("tpendant: ") + title + QStringLiteral(": ") + text;
}

void Shell::start()
{
    if (!m_options.settingsFile.isEmpty())
        tcore::SettingManager::instance()->setStorage(m_options.settingsFile);
    if (!m_options.language.isEmpty())
        tcore::SettingManager::setStr(QStringLiteral("language"), m_options.language);

    m_hostNodes->create(m_options.level);
    m_window = std::make_unique<MainWindow>();

    attachController();
    loadModules();

    orbat::ControllerManager *manager = tservice()->controllerManager();
    connect(manager, &orbat::ControllerManager::rcConnected, this, &Shell::onConnected);
    connect(manager, &orbat::ControllerManager::rcDisconnected, this, [this] {
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("warning"),
                                                   QStringLiteral("Controller disconnected"),
                                                   m_transport ? m_transport->peerName() : QString(), 1);
        updateHome();
    });
    if (m_transport)
        m_transport->open();

    if (!m_options.page.isEmpty()) {
        if (!m_window->showPage(m_options.page))
            report(QStringLiteral("warning"), QStringLiteral("Page not found"), m_options.page);
    } else {
        // The operator lands on the first module page; home when there is none.
        for (const QString &page : m_window->navigation()->pages()) {
            if (m_window->showPage(page))
                break;
        }
    }
    updateHome();
    emit started();
}

void Shell::attachController()
{
    if (m_options.noController)
        return;
    if (!m_options.rcHost.isEmpty()) {
        m_transport = std::make_unique<orbat::TcpTransport>(m_options.rcHost, m_options.rcPort);
    } else {
        rc::Controller::Options options;
        options.dataDir = m_options.dataDir;
        if (!options.dataDir.isEmpty())
            QDir().mkpath(options.dataDir);
        m_embedded = std::make_unique<rc::EmbeddedController>(options);
        QString error;
        if (!m_embedded->start(&error)) {
            report(QStringLiteral("error"), QStringLiteral("Controller not started"), error);
            m_embedded.reset();
            return;
        }
        m_transport = std::make_unique<orbat::InProcessTransport>(m_embedded->endpoint());
    }
    tservice()->setTransport(m_transport.get());
}

void Shell::loadModules()
{
    if (m_options.modulesDir.isEmpty())
        return;
    if (!QFileInfo(m_options.modulesDir).isDir()) {
        report(QStringLiteral("warning"), QStringLiteral("No module directory"), m_options.modulesDir);
        return;
    }
    const QStringList keys = m_loader->loadLibraries(m_options.modulesDir);
    m_loader->createModules(keys, this);
    // Modules registered their translations while being created; load them before any page is built.
    const QString language = tcore::SettingManager::getStr(QStringLiteral("language"), QStringLiteral("en"));
    if (language != QLatin1String("en"))
        tcore::ManagerHelper::instance()->reloadTranslations(language);
    m_loader->initModules();
    m_loader->setupModules();
    m_loader->renderModules();
    m_window->navigation()->rebuild();
    for (dwel::BModule *module : m_loader->modules()) {
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("info"), QStringLiteral("Module loaded"),
                                                   m_loader->keyOf(module), 1);
    }
}

void Shell::onConnected()
{
    tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("info"), QStringLiteral("Controller connected"),
                                               m_transport ? m_transport->peerName() : QString(), 1);
    if (!m_hostNodes->refreshProject())
        report(QStringLiteral("warning"), QStringLiteral("Project"), QStringLiteral("tool and work-object lists not read"));
    // A reconnected controller starts from its own toolset: make the tool page's choice active again.
    m_hostNodes->applyToolpage();
    updateHome();
}

void Shell::updateHome()
{
    if (!m_window)
        return;
    const bool up = tservice()->controllerManager()->isConnected();
    QString html = QStringLiteral("<h2>Teach pendant</h2>");
    html += QStringLiteral("<p><b>Controller:</b> %1 (%2)</p>")
                .arg(m_transport ? m_transport->peerName().toHtmlEscaped() : QStringLiteral("none"),
                     up ? QStringLiteral("connected") : QStringLiteral("not connected"));
    if (m_embedded)
        html += QStringLiteral("<p><b>Controller data:</b> %1</p>").arg(m_options.dataDir.toHtmlEscaped());
    html += QStringLiteral("<p><b>Modules:</b> %1</p>").arg(m_options.modulesDir.toHtmlEscaped());
    html += QStringLiteral("<ul>");
    for (const ModuleLoader::Library &lib : m_loader->libraries()) {
        const QString name = QFileInfo(lib.file).fileName().toHtmlEscaped();
        if (lib.error.isEmpty())
            html += QStringLiteral("<li>%1: %2</li>").arg(name, lib.keys.join(QStringLiteral(", ")).toHtmlEscaped());
        else
            html += QStringLiteral("<li><span style='color:#c62828'>%1: %2</span></li>").arg(name, lib.error.toHtmlEscaped());
    }
    if (m_loader->libraries().isEmpty())
        html += QStringLiteral("<li>none found</li>");
    html += QStringLiteral("</ul>");
    m_window->setHomeText(html);
}
