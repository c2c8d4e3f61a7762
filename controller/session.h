#pragma once

#include <orbat/lineendpoint.h>

#include <QElapsedTimer>
#include <QPointer>
#include <QSet>
#include <QString>

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

    bool isClosed() const { return m_closed; }
    bool watches(const QString &name) const { return m_watched.contains(name); }
    void setWatched(const QString &name, bool on);
    // Sends an unsolicited line (event) unless the client has gone.
    void deliver(const QByteArray &line);
    // Time since the client's last line (or since the session began).
    qint64 msSinceHeard() const { return m_heard.elapsed(); }

private:
    QPointer<Controller> m_controller;
    QSet<QString> m_watched;
    bool m_registered = false;
    bool m_closed = false;
    QElapsedTimer m_heard;
};

} // namespace rc
