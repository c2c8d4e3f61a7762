#pragma once

#include "rawjson.h"

#include <orbat/lineendpoint.h>

#include <QElapsedTimer>
#include <QPointer>
#include <QSet>
#include <QString>
#include <QVector>

namespace rc {

class Controller;

// One client connection: parses request lines, answers them and forwards watched events.
class Session : public orbat::LineEndpoint
{
    Q_OBJECT

public:
    explicit Session(Controller *controller);
    ~Session() override;

    void receiveLine(const QByteArray &line) override;
    void clientClosed() override;
    // The in-process link opened again after a close: a new connection on the same session.
    void clientOpened() override;

    bool isClosed() const { return m_closed; }
    bool watches(const QString &name) const { return m_watched.contains(name); }
    void setWatched(const QString &name, bool on);
    // Sends an unsolicited line (event) unless the client has gone.
    void deliver(const QByteArray &line);
    // Time since the client's last line (or since the session began).
    qint64 msSinceHeard() const { return m_heard.elapsed(); }
    // The text of "params" of the request being handled, exactly as received (null outside a
    // request or when there are none).
    QByteArray rawParams() const;
    // That text with its top-level "index" set, from what was found while the request line was
    // scanned; null when it cannot be spliced (see rawjson::withIndex()).
    QByteArray rawParamsWithIndex(int index) const;
    // Replies go out through sendPieces() instead of sendLine(): for a link that writes pieces
    // one after the other, so a large reply is never joined into one buffer.
    void setPiecewise(bool on) { m_piecewise = on; }

signals:
    // One reply line (without its end) in pieces, in order; only when piecewise.
    void sendPieces(const QVector<QByteArray> &pieces);

private:
    QPointer<Controller> m_controller;
    QSet<QString> m_watched;
    bool m_registered = false;
    bool m_closed = false;
    bool m_piecewise = false;
    QElapsedTimer m_heard;
    // The line being handled (shared, not copied) and where its "params" are.
    QByteArray m_line;
    rawjson::Span m_params;
    rawjson::ObjectInfo m_paramsObject;
    rawjson::Span m_paramsIndex;
};

} // namespace rc
