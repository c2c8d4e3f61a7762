#pragma once

#include "module/pointgen.h"
#include "module/tpallet.h"
#include "pages/newpalletdialog.h"

#include <orba/json.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/scriptedtransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#include <QCoreApplication>
#include <QEvent>
#include <QList>
#include <QStringList>

#include <memory>

// Shared set-up of the module tests: a fresh tree holding the module's nodes (created through the
// real factory function), a scripted controller, scripted message boxes and captured log lines.
class PalletFixture
{
public:
    void setUp()
    {
        orba::ModuleManager::resetRoot();
        orba::setConsoleLogEnabled(false);
        m_lines.clear();
        orba::setLogHook([this](const orba::LogLine &line) { m_lines.append(line); });
        tcore::ManagerHelper *helper = tcore::ManagerHelper::instance();
        helper->setMsgTestMode(true);
        helper->clearMsgHistory();
        helper->clearLogHistory();
        m_transport = std::make_unique<orbat::ScriptedTransport>();
        // Tests decide when the controller connects.
        m_transport->setConnected(false);
        tservice()->setTransport(m_transport.get());
        m_module.reset(static_cast<TPallet *>(tpallet::createModule(nullptr)));
    }

    void tearDown()
    {
        m_module.reset();
        flushDeletes();
        tservice()->setTransport(nullptr);
        m_transport.reset();
        orba::setLogHook(nullptr);
        orba::ModuleManager::resetRoot();
    }

    TPallet *module() const { return m_module.get(); }
    orbat::ScriptedTransport *transport() const { return m_transport.get(); }
    const QList<orba::LogLine> &logLines() const { return m_lines; }

    QStringList logMessages() const
    {
        QStringList messages;
        for (const orba::LogLine &line : m_lines)
            messages << line.message;
        return messages;
    }

    // The commands the controller advertises.
    void setCapabilities(const QStringList &commands)
    {
        m_transport->setReply(QStringLiteral("tservice.proto.command"), 0, orba::json::fromVariant(commands));
    }

    // Controller connection (the controller manager then emits rcConnected) and loss of it.
    void connectController()
    {
        m_transport->setConnected(true);
        QCoreApplication::processEvents();
    }
    void disconnectController()
    {
        m_transport->setConnected(false);
        QCoreApplication::processEvents();
    }

    // The requests of one command, in the order they were sent.
    QList<orbat::ScriptedTransport::Request> requestsOf(const QString &method) const
    {
        QList<orbat::ScriptedTransport::Request> found;
        const QList<orbat::ScriptedTransport::Request> all = m_transport->requests();
        for (const orbat::ScriptedTransport::Request &request : all) {
            if (request.method == method)
                found.append(request);
        }
        return found;
    }

    // The commands sent, without the controller manager's own queries on connection.
    QStringList palletMethods() const
    {
        QStringList methods;
        const QStringList all = m_transport->methods();
        for (const QString &method : all) {
            if (method.startsWith(QLatin1String("tray.")))
                methods << method;
        }
        return methods;
    }

    // A pallet in the controller's JSON form.
    static QByteArray palletJson(const QString &name, int row, int col, int index, const QString &desc = QString())
    {
        return QStringLiteral("{\"name\":\"%1\",\"desc\":\"%2\",\"index\":%3,"
                              "\"pattern\":{\"origin\":0,\"s_type\":false,\"row\":%4,\"col\":%5,"
                              "\"exchange\":false,\"rank_v\":false},"
                              "\"calibrate\":{\"toolset\":null,\"use_p4\":true,\"points\":null},"
                              "\"waypoint\":null,\"points\":null}")
            .arg(name, desc)
            .arg(index)
            .arg(row)
            .arg(col)
            .toUtf8();
    }

    // A pallet appended to the working copy, shaped like the default pallet.
    static orba::ModuleObject *addLocalPallet(const QString &name, int row, int col, const QString &desc = QString())
    {
        orba::ModuleObject *pallets = tpallet::palletsNode();
        orba::ModuleObject *pallet = pallets->append(nullptr, QStringLiteral("#%1").arg(pallets->cmobjCount()));
        pallet->copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
        pallet->set(nullptr, QStringLiteral("name"), name, true);
        pallet->set(nullptr, QStringLiteral("desc"), desc, true);
        pallet->set(nullptr, QStringLiteral("index"), pallets->cmobjCount() - 1, true);
        pallet->set(nullptr, QStringLiteral("pattern.row"), row, true);
        pallet->set(nullptr, QStringLiteral("pattern.col"), col, true);
        return pallet;
    }

    // A pallet with every place generated and every pose taught; seed varies origin, order and values.
    static orba::ModuleObject *addFullPallet(const QString &name, int rows, int cols, int seed)
    {
        orba::ModuleObject *pallet = addLocalPallet(name, rows, cols, QStringLiteral("desc of %1").arg(name));
        pallet->set(nullptr, QStringLiteral("pattern.s_type"), seed % 2 == 0, true);
        pallet->set(nullptr, QStringLiteral("pattern.origin"), seed % 4, true);
        NewPalletDialog::initPallet(pallet);
        pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 1.2 + seed * 1e-3, true);
        pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.8 + seed / 7.0, true);
        pallet->set(nullptr, QStringLiteral("calibrate.x_offset_13"), 0.013, true);
        pallet->set(nullptr, QStringLiteral("calibrate.x_offset_24"), 0.1 / 3.0, true);
        pallet->set(nullptr, QStringLiteral("calibrate.y_offset_34"), -0.0, true);
        for (const char *key : {"wobj", "approach", "retract"}) {
            orba::ModuleObject *pose = pallet->r(QStringLiteral("waypoint.%1").arg(QLatin1String(key)));
            for (int k = 0; k < 3; ++k) {
                pose->set(nullptr, QStringLiteral("trans.#%1").arg(k), 0.3 + k / 3.0 + seed * 1e-9, true);
                pose->set(nullptr, QStringLiteral("rot.#%1").arg(k), 3.141592653589793 / (k + 2), true);
            }
            for (int k = 0; k < 6; ++k)
                pose->set(nullptr, QStringLiteral("near.#%1").arg(k), -0.1 * k - 1e-17, true);
        }
        tpallet::generatePoints1(pallet, nullptr);
        return pallet;
    }

    static void flushDeletes()
    {
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

private:
    std::unique_ptr<orbat::ScriptedTransport> m_transport;
    std::unique_ptr<TPallet> m_module;
    QList<orba::LogLine> m_lines;
};
