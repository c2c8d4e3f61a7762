#pragma once

#include "controller.h"

#include <orbat/lineendpoint.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QTemporaryDir>

#include <memory>

// A controller in the test's thread with one session whose reply and event lines are collected.
class RcTestClient
{
public:
    explicit RcTestClient(bool legacy = false, const QString &dataDir = QString())
    {
        rc::Controller::Options o;
        o.dataDir = dataDir.isEmpty() ? m_dir.path() : dataDir;
        o.legacy = legacy;
        controller = std::make_unique<rc::Controller>(o);
        opened = controller->open(&openError);
        session.reset(controller->createSession());
        QObject::connect(session.get(), &orbat::LineEndpoint::sendLine, session.get(),
                         [this](const QByteArray &line) { lines.append(line); });
    }

    // Sends a raw line; returns the last line answered (replies come synchronously).
    QByteArray send(const QByteArray &line)
    {
        collectEvents();
        session->receiveLine(line);
        QByteArray reply;
        for (const QByteArray &l : qAsConst(lines)) {
            if (!l.startsWith("{\"event\""))
                reply = l;
            else
                events.append(l);
        }
        lines.clear();
        return reply;
    }

    QJsonObject call(const QString &op, const QString &method, const QByteArray &params = QByteArray(),
                     const QString &key = QString())
    {
        QByteArray line = "{\"id\":" + QByteArray::number(++m_id) + ",\"op\":\"" + op.toUtf8() + "\",\"method\":\""
            + method.toUtf8() + "\"";
        if (!params.isEmpty())
            line += ",\"params\":" + params;
        if (!key.isEmpty())
            line += ",\"key\":\"" + key.toUtf8() + "\"";
        line += '}';
        return QJsonDocument::fromJson(send(line)).object();
    }

    static int status(const QJsonObject &reply) { return reply.value("result").toObject().value("status").toInt(-999); }
    static QJsonValue data(const QJsonObject &reply) { return reply.value("result").toObject().value("data"); }
    static int errorCode(const QJsonObject &reply) { return reply.value("error").toObject().value("code").toInt(0); }

    QList<QJsonObject> takeEvents(const QString &name)
    {
        QList<QJsonObject> out;
        QList<QByteArray> rest;
        for (const QByteArray &l : qAsConst(events)) {
            const QJsonObject o = QJsonDocument::fromJson(l).object();
            if (o.value("event").toString() == name)
                out.append(o);
            else
                rest.append(l);
        }
        events = rest;
        return out;
    }

    // Events delivered while the event loop ran (motion ticks).
    void collectEvents()
    {
        for (const QByteArray &l : qAsConst(lines)) {
            if (l.startsWith("{\"event\""))
                events.append(l);
        }
        lines.clear();
    }

    QTemporaryDir m_dir;
    std::unique_ptr<rc::Controller> controller;
    std::unique_ptr<orbat::LineEndpoint> session;
    bool opened = false;
    QString openError;
    QList<QByteArray> lines;
    QList<QByteArray> events;

private:
    qint64 m_id = 0;
};
