#pragma once

#include "tpallet_export.h"

#include <orba/moduleobject.h>

#include <QDialog>
#include <QPointer>
#include <QString>

namespace Ui {
class ImExportDialog;
}

// Moves pallets between the pallet list and an XML file on the USB disk. Export: the ticked
// pallets, each laid over the default pallet, go into one file. Import: the pallets of a file are
// offered, and the ticked ones are added to the list and to the controller one by one, with name
// clashes renamed, replaced or discarded. A file that is not a sound pallet list is refused as a
// whole with a message, and nothing changes.
class TPALLET_EXPORT ImExportDialog : public QDialog
{
    Q_OBJECT

public:
    ImExportDialog(bool import, orba::ModuleObject *pallets, QWidget *parent = nullptr);
    ~ImExportDialog() override;

    bool isImport() const { return m_isImport; }
    // The pallets read from the file (import mode, until work() ends; null afterwards).
    orba::ModuleObject *importList() const { return m_importList; }

    void loadList(orba::ModuleObject *list);

    // The chosen export path with ".xml" appended unless it already contains ".xml".
    static QString withXmlSuffix(const QString &path);
    // "box" gives "box1", "box1" "box2", "box09" "box10".
    static QString getNewName(const QString &name);
    bool hasNode(const QString &name) const;
    void removeNode(const QString &name);
    void importNodeFast(orba::ModuleObject *pallet);

    // Why a pallet read from a file cannot be taken: the path of its first missing or wrong entry
    // ("name", "pattern.row", "points.#12.wobj.trans"), checked against the layout of `layout`
    // (the default pallet) and the pallet rules; empty when it is sound.
    static QString palletDefect(const orba::ModuleObject *pallet, const orba::ModuleObject *layout);

public slots:
    void openFile();
    void work();

protected:
    void changeEvent(QEvent *event) override;

private:
    void setAllChecked(bool on);
    QList<int> checkedRows() const;
    void readImportFile(const QString &path);
    void refuseFile(const QString &message);
    void importSelected();
    void exportSelected();
    orba::ModuleObject *defaultPallet() const;

    Ui::ImExportDialog *m_ui;
    const bool m_isImport;
    QPointer<orba::ModuleObject> m_pallets;
    orba::ModuleObject *m_importList;
    bool m_working = false;
};
