#include "shell.h"

#include "hostnodes.h"
#include "mainwindow.h"
#include "moduleloader.h"
#include "navigationview.h"
#include "shelltranslations.h"

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

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFileInfo>

namespace {

// How the operator knows the controller: the in-process one is the built-in simulator.
QString peerText(const orbat::Transport *transport)
{
    if (!transport)
        return QCoreApplication::translate("Shell", "none");
    const QString peer = transport->peerName();
    return peer == QLatin1String("embedded") ? QCoreApplication::translate("Shell", "built-in simulator") : peer;
}

} // namespace

Shell::Shell(const ShellOptions &options, QObject *parent)
    : QObject(parent)
    , m_options(options)
    , m_hostNodes(new HostNodes(this))
    , m_loader(new ModuleLoader(this))
{
    connect(m_loader, &ModuleLoader::failure, this, [this](const QString &what, const QString &why) {
        report(QStringLiteral("error"), tr("Module not loaded: %1").arg(QFileInfo(what).fileName()), why);
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
    if (!m_options.usbDir.isEmpty()) {
        // The module takes this folder for the mounted USB disk.
        orba::m()->set(this, QStringLiteral("tormo.usb.root"), m_options.usbDir, true);
        orba::m()->set(this, QStringLiteral("tormo.usb.present"), true, true);
        if (!QFileInfo(m_options.usbDir).isDir())
            report(QStringLiteral("warning"), tr("USB folder not found"), m_options.usbDir);
    }
    m_window = std::make_unique<MainWindow>();
    connect(m_window.get(), &MainWindow::languageChanged, this, &Shell::updateHome);

    attachController();
    loadModules();

    orbat::ControllerManager *manager = tservice()->controllerManager();
    connect(manager, &orbat::ControllerManager::rcConnected, this, &Shell::onConnected);
    connect(manager, &orbat::ControllerManager::rcDisconnected, this, [this] {
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("warning"),
                                                   tr("Controller disconnected"),
                                                   peerText(m_transport.get()), 1);
        updateHome();
    });
    if (m_transport)
        m_transport->open();

    if (!m_options.page.isEmpty()) {
        if (!m_window->showPage(m_options.page))
            report(QStringLiteral("warning"), tr("Page not found"), m_options.page);
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
        // Opening a store of many full pallets takes a moment: the window shows meanwhile, and the
        // link comes up (the modules load their data) once the controller is ready.
        auto *transport = new orbat::InProcessTransport;
        m_transport.reset(transport);
        connect(m_embedded.get(), &rc::EmbeddedController::started, this,
                [this, transport](bool ok, const QString &error) {
                    if (m_transport.get() != transport)
                        return;
                    if (!ok) {
                        report(QStringLiteral("error"), tr("Controller not started"), error);
                        return;
                    }
                    transport->attach(m_embedded->endpoint());
                });
        m_embedded->startAsync();
    }
    tservice()->setTransport(m_transport.get());
}

void Shell::loadModules()
{
    if (m_options.modulesDir.isEmpty())
        return;
    if (!QFileInfo(m_options.modulesDir).isDir()) {
        report(QStringLiteral("warning"), tr("No module directory"), m_options.modulesDir);
        return;
    }
    const QStringList keys = m_loader->loadLibraries(m_options.modulesDir);
    m_loader->createModules(keys, this);
    // Modules registered their translations while being created; load them before any page is built.
    const QString language = tcore::SettingManager::getStr(QStringLiteral("language"), QStringLiteral("en"));
    if (language != QLatin1String("en"))
        tcore::ManagerHelper::instance()->reloadTranslations(language);
    {
        // Modules translate their navigation titles once, when they register them: seeing which
        // texts they looked up lets the navigation translate the titles again on a language change.
        SourceRecorder recorder;
        m_loader->initModules();
        m_loader->setupModules();
        m_loader->renderModules();
        recorder.stop();
        m_window->navigation()->setTitleSources(recorder.sources());
    }
    for (dwel::BModule *module : m_loader->modules()) {
        tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("info"), tr("Module loaded"),
                                                   m_loader->keyOf(module), 1);
    }
}

void Shell::onConnected()
{
    tcore::ManagerHelper::instance()->throwLog(this, QStringLiteral("info"), tr("Controller connected"),
                                               peerText(m_transport.get()), 1);
    if (!m_hostNodes->refreshProject())
        report(QStringLiteral("warning"), tr("Project"), tr("tool and work-object lists not read"));
    // A reconnected controller starts from its own toolset: make the tool page's choice active again.
    m_hostNodes->applyToolpage();
    updateHome();
}

void Shell::updateHome()
{
    if (!m_window)
        return;
    const bool up = tservice()->controllerManager()->isConnected();
    const QString peer = peerText(m_transport.get());
    QString html = QStringLiteral("<h2>%1</h2>").arg(tr("Teach pendant").toHtmlEscaped());
    html += QStringLiteral("<p><b>%1</b> %2 (%3)</p>")
                .arg(tr("Controller:").toHtmlEscaped(), peer.toHtmlEscaped(),
                     (up ? tr("connected") : tr("not connected")).toHtmlEscaped());
    if (m_embedded)
        html += QStringLiteral("<p><b>%1</b> %2</p>").arg(tr("Controller data:").toHtmlEscaped(), m_options.dataDir.toHtmlEscaped());
    html += QStringLiteral("<p><b>%1</b> %2</p>").arg(tr("Modules:").toHtmlEscaped(), m_options.modulesDir.toHtmlEscaped());
    html += QStringLiteral("<ul>");
    for (const ModuleLoader::Library &lib : m_loader->libraries()) {
        const QString name = QFileInfo(lib.file).fileName().toHtmlEscaped();
        if (lib.error.isEmpty())
            html += QStringLiteral("<li>%1: %2</li>").arg(name, lib.keys.join(QStringLiteral(", ")).toHtmlEscaped());
        else
            html += QStringLiteral("<li><span style='color:#c62828'>%1: %2</span></li>").arg(name, lib.error.toHtmlEscaped());
    }
    if (m_loader->libraries().isEmpty())
        html += QStringLiteral("<li>%1</li>").arg(tr("none found").toHtmlEscaped());
    html += QStringLiteral("</ul>");
    m_window->setHomeText(html);
}
