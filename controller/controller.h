#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace orbat {
class LineEndpoint;
}

class QThread;

namespace rc {

class ControllerPrivate;

// Owns the pallet store, the robot and its motion; lives in one thread (timers included).
class Controller : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        QString dataDir;
        bool legacy = false;
    };

    explicit Controller(const Options &options, QObject *parent = nullptr);
    ~Controller() override;

    // Opens or creates the store; false and the reason on failure.
    bool open(QString *error = nullptr);

    // A new protocol endpoint living in the controller's thread. The caller owns it: deleting it
    // or calling clientClosed() ends the connection and stops the motion it started.
    orbat::LineEndpoint *createSession();

    ControllerPrivate *d_func() const { return d.get(); }

private:
    std::unique_ptr<ControllerPrivate> d;
};

// Runs a Controller in its own QThread; the controller is destroyed in that thread on shutdown.
class EmbeddedController : public QObject
{
    Q_OBJECT

public:
    explicit EmbeddedController(const Controller::Options &options, QObject *parent = nullptr);
    ~EmbeddedController() override;

    // Creates the Controller in the worker thread and opens it.
    bool start(QString *error = nullptr);
    // The same without waiting: opening a large store takes a while, and the caller's thread
    // (the pendant's GUI) keeps running meanwhile. started() follows, in the caller's thread.
    void startAsync();
    // The session for the in-process transport (valid after a successful start, else null).
    orbat::LineEndpoint *endpoint() const;

signals:
    void started(bool ok, const QString &error);

private:
    void launch(bool wait, bool *ok, QString *error);

    Controller::Options m_options;
    QThread *m_thread = nullptr;
    Controller *m_controller = nullptr;
    orbat::LineEndpoint *m_endpoint = nullptr;
    // The same session as the worker thread knows it, before the owner's thread has been told;
    // only touched in the worker thread, so a shutdown queued behind the opening deletes it.
    orbat::LineEndpoint *m_workerEndpoint = nullptr;
};

} // namespace rc
