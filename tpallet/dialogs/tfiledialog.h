#pragma once

#include "tpallet_export.h"

#include <QDialog>
#include <QList>
#include <QPersistentModelIndex>
#include <QString>

class QFileSystemModel;
class QModelIndex;

namespace Ui {
class tFileDialog;
}

/*
 * The module's touch file dialog, confined to the USB disk: a single list of the disk's contents
 * rooted at its mount point, with home and back buttons and a file-name line. The rest of the
 * module uses only the static getters.
 *
 * Where the disk is. On the pendant the disk is mounted at "/media/korvel" and is present when
 * the partition probe (the last line of /proc/partitions that is neither on-board flash nor a RAM
 * disk) names a device. Elsewhere the host or the environment says so:
 *  - mount root: the host node "tormo.usb.root" when it holds a text, else the environment
 *    variable TPALLET_USB_ROOT when it is set and not empty, else "/media/korvel";
 *  - presence: the host node "tormo.usb.present" when it holds a value (true / false), else
 *    TPALLET_USB_PRESENT when it is set ("1", "true", "yes" present; "0", "false", "no" absent),
 *    else the partition probe;
 *  - a mount root that is not an existing directory is no disk, whatever the presence says.
 * The shell's `tpendant --usb DIR` fills both host nodes (DIR, true), so a folder stands in for
 * the disk. Nothing outside the mount root is ever listed: symbolic links are not shown and the
 * dialog only enters folders that lie inside the root.
 */
class TPALLET_EXPORT tFileDialog : public QDialog
{
    Q_OBJECT

public:
    tFileDialog(QWidget *parent, const QString &caption, const QString &root);
    ~tFileDialog() override;

    // Directory scheme: folders only, the line read-only, OK always enabled.
    void setScheme(bool on);
    // Save mode: the line is editable, OK follows it.
    void setSave(bool on);
    bool isScheme() const { return m_scheme; }
    bool isSave() const { return m_save; }
    int historySize() const { return m_history.size(); }
    QString rootPath() const { return m_root; }

    void refreshOkBtn();
    // The current entry's full path, or the mount root when there is none.
    QString selectedFileName() const;
    // The folder shown, "/", and the line's text; empty when the line is.
    QString saveFileName() const;

    static QString defaultUsbRoot();
    // The mount root in use (see above).
    static QString usbRoot();
    // Runs the partition probe: true when it names a device (waits at most 30 s).
    static bool probeUsbPartition();
    // The mount root when a disk is there, otherwise an empty text after the warning
    // "please insert the USB disk" went to the operator log.
    static QString checkUsbDir();
    // Flushes file buffers to the disks ("sync" twice); the second run's status.
    static int SystemFileSync();

    // The directory and filter arguments are accepted and not used: the dialog always starts at
    // the disk's root and lists every file.
    static QString getOpenFileName(QWidget *parent, const QString &caption, const QString &dir,
                                   const QString &filter);
    static QString getSaveFileName(QWidget *parent, const QString &caption, const QString &dir,
                                   const QString &fileName, const QString &filter);
    static QString getExistingDirectory(QWidget *parent, const QString &caption, const QString &dir);

public slots:
    void goHome();
    void goBack();

protected:
    void changeEvent(QEvent *event) override;

private:
    void selectEntry(const QModelIndex &index);
    void openEntry(const QModelIndex &index);
    bool isInsideRoot(const QString &path) const;
    void onRootLost();
    static QString pickFolder(QWidget *parent, const QString &caption);

    Ui::tFileDialog *m_ui;
    QFileSystemModel *m_model;
    QString m_root;
    QString m_canonicalRoot;
    QList<QPersistentModelIndex> m_history;
    bool m_scheme = false;
    bool m_save = false;
};
