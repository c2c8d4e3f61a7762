#pragma once

#include "orbat_export.h"
#include "transport.h"

#include <QHash>
#include <QList>
#include <QStringList>
#include <QVariant>

#include <functional>
#include <memory>

namespace orba {
class ModuleObject;
}

namespace orbat {

/*
 * A transport for tests: records every request and answers from a script.
 *
 * Each recorded request keeps the op ("exec", "get", "set", "watch", "ping"), the command name,
 * the key (getAt with a key) and a deep copy of the parameter node as it was sent. Replies come,
 * in this order of preference, from: the queue of replies for that command (one popped per
 * request), the standing reply for it, the handler, or a default success reply (status 0, no
 * data). A reply is a status and a data node given as lossless JSON text (orba::json), or raw
 * line text for testing garbage. A command marked silent never answers: the request waits out
 * its deadline and fails, as a controller that hangs would.
 */
class ORBAT_EXPORT ScriptedTransport : public Transport
{
    Q_OBJECT

public:
    struct Request
    {
        QString op;
        QString method;
        QString key;
        QByteArray paramsJson; // lossless JSON of the parameter node ("null" when none)
        std::shared_ptr<orba::ModuleObject> params; // deep copy of the parameter node (null when none)
    };
    struct Reply
    {
        int status = 0;
        QByteArray dataJson;     // lossless JSON of the "data" node; empty = no data
        QByteArray rawLine;      // when set, sent as is instead of a well-formed reply
        bool silent = false;     // never answer
        int errorCode = 0;       // when non-zero, an error reply {"error": {code, message}}
        QString errorMessage;
    };
    using Handler = std::function<Reply(const Request &)>;

    explicit ScriptedTransport(QObject *parent = nullptr);
    ~ScriptedTransport() override;

    void queueReply(const QString &method, const Reply &reply);
    void queueReply(const QString &method, int status, const QByteArray &dataJson = QByteArray());
    void setReply(const QString &method, const Reply &reply);
    void setReply(const QString &method, int status, const QByteArray &dataJson = QByteArray());
    void setSilent(const QString &method, bool silent = true);
    void setHandler(Handler handler);

    QList<Request> requests() const;
    QStringList methods() const; // the command names in the order they were sent
    void clearRequests();

    // Link state as seen by the service; setConnected(true) emits connected(), false disconnected().
    void setConnected(bool on);
    // Emit an event line for a watched name, as a controller would.
    void emitEvent(const QString &name, const QByteArray &dataJson);

    bool isConnected() const override;
    void open() override;
    void close() override;
    std::optional<QByteArray> request(qint64 id, const QByteArray &line, int timeoutMs) override;
    bool post(const QByteArray &line) override;
    QString peerName() const override;

private:
    std::optional<QByteArray> answer(const QByteArray &line);
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace orbat
