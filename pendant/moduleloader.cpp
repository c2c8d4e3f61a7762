#include "moduleloader.h"

#include <dwel/bfactory.h>
#include <dwel/bmodule.h>

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QSet>

#include <dlfcn.h>

#include <exception>

namespace {

// dlopen of a library already in the process returns the same handle and its static
// registrations do not run again, so remember what each file registered the first time.
QHash<QString, QStringList> &keysByFile()
{
    static QHash<QString, QStringList> keys;
    return keys;
}

QString exceptionText(std::exception_ptr e)
{
    try {
        std::rethrow_exception(e);
    } catch (const std::exception &ex) {
        return QString::fromLocal8Bit(ex.what());
    } catch (...) {
        return QStringLiteral("unknown exception");
    }
}

} // namespace

ModuleLoader::ModuleLoader(QObject *parent)
    : QObject(parent)
{
}

ModuleLoader::~ModuleLoader() = default;

QStringList ModuleLoader::candidateFiles(const QString &dir, QStringList *skipped)
{
    QStringList files;
    QSet<QString> seen;
    const QFileInfoList entries =
        QDir(dir).entryInfoList({QStringLiteral("lib*.so*")}, QDir::Files | QDir::System, QDir::Name);
    for (const QFileInfo &info : entries) {
        const QString real = info.canonicalFilePath();
        if (real.isEmpty() || !QFileInfo(real).isFile()) {
            if (skipped)
                skipped->append(info.absoluteFilePath());
            continue;
        }
        if (seen.contains(real)) {
            if (skipped)
                skipped->append(info.absoluteFilePath());
            continue;
        }
        seen.insert(real);
        files.append(real);
    }
    return files;
}

QStringList ModuleLoader::loadLibraries(const QString &dir)
{
    QStringList newKeys;
    if (dir.isEmpty())
        return newKeys;
    if (!QFileInfo(dir).isDir()) {
        emit failure(dir, QStringLiteral("module directory not found"));
        return newKeys;
    }
    for (const QString &file : candidateFiles(dir)) {
        Library lib;
        lib.file = file;
        auto known = keysByFile().constFind(file);
        if (known != keysByFile().constEnd()) {
            lib.keys = *known;
        } else {
            const QStringList before = bfactory()->keys();
            dlerror();
            void *handle = dlopen(QFile::encodeName(file).constData(), RTLD_NOW | RTLD_GLOBAL);
            if (!handle) {
                const char *why = dlerror();
                lib.error = why ? QString::fromLocal8Bit(why) : QStringLiteral("dlopen failed");
                emit failure(file, lib.error);
                m_libraries.append(lib);
                continue;
            }
            // The handle stays open: the module's code must outlive every object it created.
            for (const QString &key : bfactory()->keys()) {
                if (!before.contains(key))
                    lib.keys.append(key);
            }
            keysByFile().insert(file, lib.keys);
        }
        if (lib.keys.isEmpty()) {
            lib.error = QStringLiteral("no module factory registered");
            emit failure(file, lib.error);
        }
        for (const QString &key : qAsConst(lib.keys)) {
            if (!newKeys.contains(key))
                newKeys.append(key);
        }
        m_libraries.append(lib);
    }
    return newKeys;
}

QList<dwel::BModule *> ModuleLoader::createModules(const QStringList &keys, QObject *parent)
{
    QList<dwel::BModule *> created;
    for (const QString &key : keys) {
        if (!bfactory()->has(key)) {
            emit failure(key, QStringLiteral("missing factory"));
            continue;
        }
        dwel::BModule *module = nullptr;
        try {
            module = bfactory()->create(key, parent);
        } catch (...) {
            emit failure(key, QStringLiteral("creation failed: ") + exceptionText(std::current_exception()));
            continue;
        }
        if (!module) {
            emit failure(key, QStringLiteral("the factory created no module"));
            continue;
        }
        if (module->parent() != parent)
            module->setParent(parent);
        m_modules.append({key, module});
        created.append(module);
        emit moduleCreated(key, module);
    }
    return created;
}

void ModuleLoader::runPhase(Phase phase, const char *name)
{
    // A module that throws is taken out of the later phases; the others carry on.
    for (int i = 0; i < m_modules.size();) {
        dwel::BModule *module = m_modules.at(i).module;
        if (!module) {
            m_modules.removeAt(i);
            continue;
        }
        try {
            (module->*phase)();
            ++i;
        } catch (...) {
            emit failure(m_modules.at(i).key, QStringLiteral("%1() failed: %2")
                                                  .arg(QLatin1String(name), exceptionText(std::current_exception())));
            m_modules.removeAt(i);
            module->deleteLater();
        }
    }
}

void ModuleLoader::initModules()
{
    runPhase(&dwel::BModule::init, "init");
    runPhase(&dwel::BModule::afterInit, "afterInit");
}

void ModuleLoader::setupModules()
{
    runPhase(&dwel::BModule::setup, "setup");
    runPhase(&dwel::BModule::afterSetup, "afterSetup");
}

void ModuleLoader::renderModules()
{
    runPhase(&dwel::BModule::render, "render");
    runPhase(&dwel::BModule::afterRender, "afterRender");
}

void ModuleLoader::detachModules()
{
    runPhase(&dwel::BModule::beforeDetach, "beforeDetach");
    runPhase(&dwel::BModule::detach, "detach");
    for (const Entry &e : qAsConst(m_modules))
        delete e.module.data();
    m_modules.clear();
}

QList<dwel::BModule *> ModuleLoader::modules() const
{
    QList<dwel::BModule *> list;
    for (const Entry &e : m_modules) {
        if (e.module)
            list.append(e.module);
    }
    return list;
}

QString ModuleLoader::keyOf(dwel::BModule *module) const
{
    for (const Entry &e : m_modules) {
        if (e.module == module)
            return e.key;
    }
    return QString();
}
