#pragma once

#include "tcore_export.h"

#include <QList>
#include <QObject>
#include <QQueue>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace orbat {
class ControllerManager;
}

namespace tcore {

/*
 * The host helper: resource aliases and translations, message boxes, the operator log.
 *
 * Message boxes: execMsgOk(kind, text, button) shows a modal, touch-sized box. kind "q" asks
 * (OK / Cancel) and returns true when confirmed; "warning", "info" and "error" inform (OK) and
 * return true. Tests install answers: while a test queue is active (setMsgTestMode(true)) no box
 * is shown; each call records {kind, text, button} and pops the next queued answer (default when
 * the queue is empty: false for "q", true otherwise).
 *
 * Operator log: every entry is a JSON object with "level" ("error", "warning", "info"), "title",
 * "date_time" (yyyy-MM-dd/HH:mm:ss), "rcid" and optional "text". Writing a JSON text or a map into
 * the global node "tormo.log.current" adds an entry; throwLog() builds one and writes it there.
 * The helper keeps the history (newest last, at most historyLimit() entries).
 */
class TCORE_EXPORT ManagerHelper : public QObject
{
    Q_OBJECT

public:
    struct MsgRecord
    {
        QString kind;
        QString text;
        QString button;
    };

    static ManagerHelper *instance();

    // Resources of `module` become reachable under its key: translations
    // ":/<module>/language/<module>_<lang>.qm" are (re)loaded on every language change.
    void registQrcAlias(const QString &module);
    QStringList qrcAliases() const;
    // Installs the translators of every alias for `lang` ("en" removes them). Called by the
    // setting manager when "language" changes.
    void reloadTranslations(const QString &lang);

    bool execMsgOk(const QString &kind, const QString &text, const QString &button = QStringLiteral("_"));

    void throwLog(QObject *sender, const QString &level, const QString &text);
    void throwLog(QObject *sender, const QString &level, const QString &title, const QString &text, int kind);
    QList<QVariantMap> logHistory() const;
    void clearLogHistory();
    static constexpr int historyLimit() { return 1000; }

    orbat::ControllerManager *controllerManager() const;

    // --- test hooks ---
    void setMsgTestMode(bool on);
    bool msgTestMode() const;
    void queueMsgAnswer(bool answer);
    QList<MsgRecord> msgHistory() const;
    void clearMsgHistory();
    // Called with every box about to be shown (real or scripted); tests can inspect or close it.
    void setMsgBoxObserver(std::function<void(const MsgRecord &)> observer);

signals:
    void logEntryAdded(const QVariantMap &entry);
    void messageAsked(const QString &kind, const QString &text);

private:
    ManagerHelper();
    ~ManagerHelper() override;
    void onLogNodeChanged(const QVariant &value);
    struct Private;
    Private *d;
};

} // namespace tcore
