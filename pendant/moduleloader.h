#pragma once

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

namespace dwel {
class BModule;
}

/*
 * Loads modules the way the pendant does: dlopen every lib*.so* of a directory (its static
 * registrations fill the module factory), then create each newly registered factory key with the
 * given parent and drive the lifecycle phase by phase across all modules. A module that fails is
 * reported through failure() and skipped; nothing here is fatal.
 */
class ModuleLoader : public QObject
{
    Q_OBJECT

public:
    struct Library
    {
        QString file;      // the real file loaded (symlinks resolved)
        QStringList keys;  // factory keys it registered
        QString error;     // empty when loaded
    };

    explicit ModuleLoader(QObject *parent = nullptr);
    ~ModuleLoader() override;

    // dlopen of every library of `dir`; returns the factory keys registered by them.
    QStringList loadLibraries(const QString &dir);
    // Creates the module of every key through the factory; returns those created.
    QList<dwel::BModule *> createModules(const QStringList &keys, QObject *parent);
    // Lifecycle calls in the host's order, each phase across all modules before the next.
    void initModules();
    void setupModules();
    void renderModules();
    // beforeDetach and detach, then the modules are deleted.
    void detachModules();

    QList<Library> libraries() const { return m_libraries; }
    QList<dwel::BModule *> modules() const;
    QString keyOf(dwel::BModule *module) const;

    // Files a directory offers, each real file once, in name order.
    static QStringList candidateFiles(const QString &dir, QStringList *skipped = nullptr);

signals:
    void failure(const QString &what, const QString &message);
    void moduleCreated(const QString &key, dwel::BModule *module);

private:
    using Phase = void (dwel::BModule::*)();
    void runPhase(Phase phase, const char *name);

    QList<Library> m_libraries;
    struct Entry
    {
        QString key;
        QPointer<dwel::BModule> module;
    };
    QList<Entry> m_modules;
};
