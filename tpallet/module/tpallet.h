#pragma once

#include "tpallet_export.h"

#include <dwel/bmodule.h>

#include <QString>

class QDialog;
class QWidget;
class PalletPage;

namespace orba {
class ModuleObject;
}

// The palletizing module: announces and builds the pallet page; its data lives in the host tree
// under "tpallet.pallets", "tpallet.default" and "tpallet.trigger".
class TPALLET_EXPORT TPallet : public dwel::BModule
{
    Q_OBJECT

public:
    explicit TPallet(QObject *parent = nullptr);
    ~TPallet() override;

    QString name() const override;
    void init() override;
    void setup() override;

    // The page built by setup() (null before).
    PalletPage *page() const;

private:
    PalletPage *m_page = nullptr;
};

namespace tpallet {

// Plug-in interface level the host checks.
TPALLET_EXPORT int api();
// Host-format version text "1.1.<n>".
TPALLET_EXPORT QString version();
// The factory function registered under "tpallet": start-up log line, resource alias, template.
TPALLET_EXPORT dwel::BModule *createModule(QObject *parent);

// --- data tree ---
TPALLET_EXPORT orba::ModuleObject *palletsNode();
TPALLET_EXPORT orba::ModuleObject *triggerNode();
// Exact, case-sensitive match on "name"; the first match wins.
TPALLET_EXPORT bool hasPallet(const QString &name);
// The empty node when the trimmed name is empty or nothing matches the untrimmed name.
TPALLET_EXPORT orba::ModuleObject *getPallet(const QString &name);

// --- controller synchronisation ---
// "tray.set.one" with the whole pallet; the reply is not read.
TPALLET_EXPORT void saveToRC(orba::ModuleObject *pallet);
// "tray.data" write of the whole pallet list.
TPALLET_EXPORT void saveAllToRC();
// "tray.set.name" with a node "temp" {index, name, desc}.
TPALLET_EXPORT void saveNameToRC(int index, const QString &name, const QString &desc);

// --- configuration log and dialog registry ---
// One operator-log entry through "tormo.log.current"; level "error" or "warning".
TPALLET_EXPORT void recordCfgLog(const QString &title, bool error);
// Makes `widget` the one live widget of the registry key, deleting the previous one.
TPALLET_EXPORT void makeUniqueWidget(const QString &key, QWidget *widget);
TPALLET_EXPORT void makeUniqueDialog(QWidget *widget);
TPALLET_EXPORT void makeUniqueMoveDialog(QWidget *widget);
// The dialog is rejected when the node is destroyed.
TPALLET_EXPORT void bindDialogToNode(QDialog *dialog, orba::ModuleObject *node);

} // namespace tpallet
