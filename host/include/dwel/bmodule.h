#pragma once

#include "orbadwel_export.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

class QWidget;

namespace dwel {

/*
 * Base of host modules (and of their pages, which are sub-modules). The host drives the lifecycle
 * in this order: init, afterInit, setup, afterSetup, render, afterRender; idle/afterIdle when the
 * host is idle; beforeDetach, detach before unloading. Each base implementation forwards the call
 * to the sub-modules in the order they were added.
 */
class ORBADWEL_EXPORT BModule : public QObject
{
    Q_OBJECT

public:
    explicit BModule(QObject *parent = nullptr);
    ~BModule() override;

    virtual QString name() const;

    virtual void init();
    virtual void afterInit();
    virtual void setup();
    virtual void afterSetup();
    virtual void render();
    virtual void afterRender();
    virtual void idle();
    virtual void afterIdle();
    virtual void beforeDetach();
    virtual void detach();

    // The module's widget (null for modules without one; pages return their page widget).
    virtual QWidget *wgt();

    // Takes ownership of a sub-module (it is destroyed with this module).
    void addSubmodule(BModule *module);
    QList<BModule *> submodules() const;

    // Creates (or refreshes) the global node `key` from a JSON template file (ordered, lossless
    // form of orba::json). With replace true existing content under `key` is replaced. Returns
    // false when the file cannot be read or parsed (the reason goes to the host log).
    bool bindMobjJson(const QString &key, const QString &templatePath, bool replace);

private:
    QList<QPointer<BModule>> m_submodules;
};

} // namespace dwel
