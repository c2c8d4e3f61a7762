#pragma once

#include "controller.h"
#include "rcsimserver.h"

#include <QElapsedTimer>
#include <QFile>
#include <QHostAddress>
#include <QMutex>
#include <QProcess>
#include <QTcpSocket>
#include <QThread>

#include <csignal>
#include <functional>
#include <unistd.h>

// The rcsim program, started on a data directory and a free port.
struct RcsimProcess
{
    QProcess process;
    quint16 port = 0;

    // `shellPrefix` runs before the program in a shell (limits, for one).
    bool start(const QString &dataDir, const QStringList &extra = {}, const QString &shellPrefix = QString())
    {
        const QStringList args = QStringList{"--listen", "127.0.0.1:0", "--data", dataDir} + extra;
        if (shellPrefix.isEmpty()) {
            process.setProgram(QStringLiteral(RCSIM_PATH));
            process.setArguments(args);
        } else {
            QString cmd = shellPrefix + QStringLiteral(" && exec '%1'").arg(QStringLiteral(RCSIM_PATH));
            for (const QString &a : args)
                cmd += QStringLiteral(" '%1'").arg(a);
            process.setProgram(QStringLiteral("/bin/sh"));
            process.setArguments({"-c", cmd});
        }
        process.setProcessChannelMode(QProcess::SeparateChannels);
        process.start();
        if (!process.waitForStarted(5000))
            return false;
        QByteArray out;
        while (!out.contains('\n')) {
            if (!process.waitForReadyRead(5000))
                return false;
            out += process.readAllStandardOutput();
        }
        const QByteArray line = out.left(out.indexOf('\n'));
        if (!line.startsWith("rcsim listening on 127.0.0.1:"))
            return false;
        port = quint16(line.mid(line.lastIndexOf(':') + 1).toUInt());
        return port != 0;
    }
    // CPU time used so far, in clock ticks.
    qint64 cpuTicks() const
    {
        QFile stat(QStringLiteral("/proc/%1/stat").arg(process.processId()));
        if (!stat.open(QIODevice::ReadOnly))
            return -1;
        const QByteArray text = stat.readAll();
        // Fields after the parenthesised command name; utime and stime are the 14th and 15th.
        const QList<QByteArray> f = text.mid(text.lastIndexOf(')') + 2).split(' ');
        return f.size() > 12 ? f.at(11).toLongLong() + f.at(12).toLongLong() : -1;
    }
    // A "Vm...:" figure of /proc/<pid>/status, in KiB (-1 when unknown).
    qint64 statusKiB(const char *field) const
    {
        QFile status(QStringLiteral("/proc/%1/status").arg(process.processId()));
        if (!status.open(QIODevice::ReadOnly))
            return -1;
        for (const QByteArray &line : status.readAll().split('\n')) {
            if (line.startsWith(field))
                return line.mid(int(qstrlen(field))).trimmed().split(' ').value(0).toLongLong();
        }
        return -1;
    }
    void kill()
    {
        ::kill(pid_t(process.processId()), SIGKILL);
        process.waitForFinished(5000);
    }
    ~RcsimProcess()
    {
        if (process.state() != QProcess::NotRunning)
            kill();
    }
};

// A controller and its TCP server in a thread of their own, so that blocking clients can run in
// the test's thread.
struct ServerThread
{
    QThread thread;
    QObject *anchor = nullptr;
    rc::Controller *controller = nullptr;
    rc::RcsimServer *server = nullptr;
    quint16 port = 0;
    QString error;
    QMutex mutex;
    QStringList dropped;

    bool start(const QString &dataDir, const std::function<void(rc::RcsimServer *)> &setup = {})
    {
        thread.start();
        anchor = new QObject;
        anchor->moveToThread(&thread);
        bool ok = false;
        QMetaObject::invokeMethod(
            anchor,
            [&] {
                rc::Controller::Options o;
                o.dataDir = dataDir;
                controller = new rc::Controller(o);
                if (!controller->open(&error))
                    return;
                server = new rc::RcsimServer(controller);
                if (setup)
                    setup(server);
                QObject::connect(server, &rc::RcsimServer::clientDropped, server, [this](const QString &, const QString &reason) {
                    QMutexLocker lock(&mutex);
                    dropped << reason;
                });
                ok = server->listen(QHostAddress::LocalHost, 0, &error);
                port = server->port();
            },
            Qt::BlockingQueuedConnection);
        return ok;
    }
    QStringList drops()
    {
        QMutexLocker lock(&mutex);
        return dropped;
    }
    int connections()
    {
        int n = 0;
        QMetaObject::invokeMethod(anchor, [&] { n = server ? server->connectionCount() : 0; }, Qt::BlockingQueuedConnection);
        return n;
    }
    ~ServerThread()
    {
        if (anchor) {
            QMetaObject::invokeMethod(
                anchor,
                [this] {
                    delete server;
                    delete controller;
                },
                Qt::BlockingQueuedConnection);
        }
        thread.quit();
        thread.wait();
        delete anchor;
    }
};

// One request as a client sends it, line feed included; params is JSON text or empty.
inline QByteArray requestLine(qint64 id, const char *op, const char *method, const QByteArray &params = QByteArray())
{
    QByteArray line = "{\"id\":" + QByteArray::number(id) + ",\"op\":\"" + op + "\",\"method\":\"" + method + "\"";
    if (!params.isEmpty())
        line += ",\"params\":" + params;
    return line + "}\n";
}

// A blocking line client.
struct LineClient
{
    QTcpSocket socket;
    bool connect(quint16 port)
    {
        socket.connectToHost(QHostAddress::LocalHost, port);
        return socket.waitForConnected(3000);
    }
    bool send(const QByteArray &line)
    {
        const bool ok = socket.write(line + '\n') == line.size() + 1;
        socket.flush();
        return ok;
    }
    QByteArray reply(int timeoutMs = 5000)
    {
        QElapsedTimer t;
        t.start();
        while (!socket.canReadLine()) {
            const int left = timeoutMs - int(t.elapsed());
            if (left <= 0 || socket.state() != QAbstractSocket::ConnectedState || !socket.waitForReadyRead(left))
                return socket.canReadLine() ? socket.readLine().trimmed() : QByteArray();
        }
        return socket.readLine().trimmed();
    }
    QByteArray ping(int id = 1, int timeoutMs = 5000)
    {
        if (!send("{\"id\":" + QByteArray::number(id) + ",\"op\":\"ping\",\"method\":\"ping\"}"))
            return QByteArray();
        return reply(timeoutMs);
    }
    // Waits for the server to close the connection (reading and discarding what comes).
    bool waitClosed(int timeoutMs)
    {
        QElapsedTimer t;
        t.start();
        while (socket.state() == QAbstractSocket::ConnectedState && t.elapsed() < timeoutMs) {
            socket.waitForReadyRead(50);
            socket.readAll();
        }
        return socket.state() != QAbstractSocket::ConnectedState;
    }
};
