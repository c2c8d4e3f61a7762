#pragma once

#include "shelloptions.h"

#include <QObject>
#include <QStringList>

#include <memory>

class HostNodes;
class MainWindow;
class ModuleLoader;

namespace orbat {
class Transport;
}
namespace rc {
class EmbeddedController;
}

/*
 * The pendant shell: fills the host nodes, builds the main window, attaches the controller
 * (embedded simulator or rcsim over TCP), loads the modules and then opens the link so that the
 * modules see the first rcConnected(). Nothing that fails here is fatal: failures are written to
 * the operator log and to stderr, and the shell runs on with what works.
 */
class Shell : public QObject
{
    Q_OBJECT

public:
    explicit Shell(const ShellOptions &options, QObject *parent = nullptr);
    ~Shell() override;

    void start();

    const ShellOptions &options() const { return m_options; }
    MainWindow *window() const { return m_window.get(); }
    ModuleLoader *loader() const { return m_loader; }
    HostNodes *hostNodes() const { return m_hostNodes; }
    orbat::Transport *transport() const { return m_transport.get(); }
    rc::EmbeddedController *embeddedController() const { return m_embedded.get(); }
    // "<what>: <why>" for every failure reported since start().
    QStringList failures() const { return m_failures; }

signals:
    void started();

private:
    void report(const QString &level, const QString &title, const QString &text);
    void attachController();
    void loadModules();
    void onConnected();
    void updateHome();

    ShellOptions m_options;
    HostNodes *m_hostNodes = nullptr;
    ModuleLoader *m_loader = nullptr;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<rc::EmbeddedController> m_embedded;
    std::unique_ptr<orbat::Transport> m_transport;
    QStringList m_failures;
};
